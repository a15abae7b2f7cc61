#include "command/output_paths.h"

#include "cli/format_names.h"
#include "lib/base/printable.h"

#include <map>
#include <sys/stat.h>

namespace pfsdoc::cli {

namespace {

using Paths = Result<std::vector<std::string>>;

bool exists(const std::string &path)
{
    struct stat status {};
    return ::lstat(path.c_str(), &status) == 0;
}

// The second of two names may have been meant as the output.
std::string remedy_for(const std::vector<std::string> &paths, const std::string &output)
{
    const std::string &last = paths.back();
    return paths.size() == 2 && output.empty() && !exists(last) && format_of_file(last) != nullptr
               ? "did you mean -o " + last + "?"
               : "name one with -o FOLDER/, or see pfsdoc batch --help";
}

Paths paths_in_folder(const Arguments &arguments, std::string_view extension)
{
    const std::string folder =
        arguments.output.ends_with('/') ? arguments.output : arguments.output + "/";
    std::map<std::string, std::string> inputs_of;
    std::vector<std::string> paths;
    for (const std::string &file : arguments.paths) {
        if (file == "-") {
            return Error{ErrorKind::usage, "standard input has no name for a file in " + folder,
                         "name a file with -o"};
        }
        std::string path = folder;
        path.append(base::base_name(file)).append(".").append(extension);
        const auto [entry, is_new] = inputs_of.emplace(path, file);
        if (!is_new) {
            return Error{ErrorKind::usage,
                         entry->second + " and " + file + " have the same output " + path,
                         "convert them into two folders, or see pfsdoc batch --help"};
        }
        paths.push_back(path);
    }
    return paths;
}

} // namespace

bool is_folder(const std::string &output)
{
    struct stat status {};
    return output.ends_with('/') ||
           (::stat(output.c_str(), &status) == 0 && S_ISDIR(status.st_mode));
}

Status check_output(const Arguments &arguments, bool may_be_joined)
{
    const std::string output = arguments.output == "-" ? "" : arguments.output;
    if (arguments.paths.size() == 1 || is_folder(output) || (output.empty() && may_be_joined)) {
        return {};
    }
    const std::string what = output.empty() ? "for their outputs" : "and " + output + " is not one";
    return Error{ErrorKind::usage, "several documents need a folder " + what,
                 remedy_for(arguments.paths, output)};
}

Paths output_paths(const Arguments &arguments, std::string_view extension)
{
    return is_folder(arguments.output)
               ? paths_in_folder(arguments, extension)
               : std::vector<std::string>(arguments.paths.size(),
                                          arguments.output == "-" ? "" : arguments.output);
}

} // namespace pfsdoc::cli

#include "command/document_job.h"

#include "cli/interruption.h"
#include "lib/reading/read_document.h"

#include <sys/stat.h>
#include <utility>

namespace pfsdoc::cli {

namespace {

// Whether both names lead to the same file, by whatever way.
bool is_same_file(const std::string &one, const std::string &other)
{
    struct stat first {};
    struct stat second {};
    return ::stat(one.c_str(), &first) == 0 && ::stat(other.c_str(), &second) == 0 &&
           S_ISREG(first.st_mode) && first.st_dev == second.st_dev && first.st_ino == second.st_ino;
}

} // namespace

std::string subject_of(const std::string &file)
{
    return file.empty() ? "\"\"" : file;
}

bool writes_to_standard_output(const Arguments &arguments)
{
    return arguments.output.empty() || arguments.output == "-";
}

Result<Input> open_input(const Arguments &arguments)
{
    if (is_same_file(arguments.file, arguments.output)) {
        return Error{ErrorKind::usage, "would be replaced by its own output",
                     "name another file with -o"};
    }
    Result<std::unique_ptr<ByteSource>> source = open_source(arguments.file);
    if (!source.ok()) {
        return source.error();
    }
    const Result<Identity> identity = identify(*source.value());
    if (!identity.ok()) {
        return identity.error();
    }
    const Result<Module> module = find_module(arguments.module, PFSDOC_LIBRARY_DIRECTORY);
    if (!module.ok()) {
        return module.error();
    }
    return Input{std::move(source.value()), identity.value(), module.value()};
}

Result<std::unique_ptr<base::FileOutput>> make_output(const Arguments &arguments)
{
    return create_interruptible(arguments.output, arguments.max_output.value_or(UINT64_MAX));
}

Status finish(base::FileOutput &output, const Status &failure)
{
    if (!reading::is_read_to_end(failure)) {
        output.flush();
        return failure;
    }
    const Status unwritten = output.commit();
    return unwritten.ok() ? failure : unwritten;
}

} // namespace pfsdoc::cli

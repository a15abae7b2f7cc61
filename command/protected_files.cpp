#include "command/protected_files.h"

#include "lib/reading/diskette_image.h"
#include "lib/reading/relatives.h"
#include "pfsdoc/byte_source.h"
#include "pfsdoc/identify.h"

#include <algorithm>
#include <cstdint>
#include <fcntl.h>
#include <string_view>
#include <unistd.h>

namespace pfsdoc::cli {

namespace {

constexpr const char *remedy = "name another file with -o";

Error is(const std::string &what)
{
    return {ErrorKind::usage, "is " + what + ", which is never replaced", remedy};
}

} // namespace

ProtectedFiles::ProtectedFiles(const std::vector<std::string> &inputs)
{
    for (const std::string &input : inputs) {
        struct stat status {};
        const int failed =
            input == "-" ? ::fstat(STDIN_FILENO, &status) : ::stat(input.c_str(), &status);
        if (failed == 0) {
            inputs_.emplace_back(status.st_dev, status.st_ino);
        }
    }
}

void ProtectedFiles::add_output(const std::string &output)
{
    struct stat status {};
    if (!output.empty() && ::stat(output.c_str(), &status) == 0 && S_ISREG(status.st_mode)) {
        outputs_.emplace_back(status.st_dev, status.st_ino);
    }
}

Status ProtectedFiles::check(const base::ExistingFile &file) const
{
    const std::pair own(file.status.st_dev, file.status.st_ino);
    if (std::find(inputs_.begin(), inputs_.end(), own) != inputs_.end()) {
        return is("an input");
    }
    if (std::find(outputs_.begin(), outputs_.end(), own) != outputs_.end()) {
        return is("the output of another document");
    }
    // What has 4 GiB or more is none of these.
    if (file.descriptor < 0 || static_cast<uint64_t>(file.status.st_size) >= input_size_limit) {
        return {};
    }
    DescriptorSource source(::fcntl(file.descriptor, F_DUPFD_CLOEXEC, 0),
                            static_cast<uint32_t>(file.status.st_size));
    if (const Result<Identity> identity = identify(source); identity.ok()) {
        return is("a document (" + std::string(display_name(identity.value().kind)) + ")");
    }
    if (const std::string_view relative = reading::relative_of_documents(source);
        !relative.empty()) {
        return is(std::string(relative));
    }
    return reading::is_diskette_image(source) ? Status(is("the image of a diskette")) : Status();
}

} // namespace pfsdoc::cli

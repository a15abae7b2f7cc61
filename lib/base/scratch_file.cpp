#include "lib/base/scratch_file.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <string>
#include <unistd.h>

namespace pfsdoc::base {

namespace {

std::string temporary_folder()
{
    const char *named = std::getenv("TMPDIR");
    return named != nullptr && *named != '\0' ? named : "/tmp";
}

} // namespace

int open_scratch_file()
{
    std::string path = temporary_folder() + "/pfsdoc-XXXXXX";
    const int descriptor = ::mkostemp(path.data(), O_CLOEXEC);
    if (descriptor >= 0) {
        ::unlink(path.c_str());
    }
    return descriptor;
}

// A file's size is limited by the user, through the shell or a batch, as an output's is.
Error scratch_error(int error_number)
{
    if (error_number == EFBIG) {
        return {ErrorKind::limit, "needs a temporary file larger than the limit",
                "allow larger files: with --max-output of pfsdoc batch, or ulimit -f"};
    }
    return {ErrorKind::output,
            std::string("a temporary file cannot be written: ") + std::strerror(error_number),
            "name a folder with room for it in the environment variable TMPDIR"};
}

} // namespace pfsdoc::base

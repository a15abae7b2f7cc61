#include "lib/base/file_output.h"

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace pfsdoc::base {

namespace {

constexpr mode_t new_file_mode = 0666; // less what the user's mask takes away
constexpr mode_t permission_bits = 0777;
constexpr int temporary_name_attempts = 100;

// Where a rename must go so that a symbolic link stays one.
std::string resolved(const std::string &path)
{
    char *real = ::realpath(path.c_str(), nullptr);
    std::string result = real != nullptr ? real : path;
    std::free(real);
    return result;
}

struct Opened {
    Descriptor descriptor; // not open: errno says why
    std::string temporary; // the name it has for now, empty when it is written to directly
};

// A new file in the target's directory. Its short name fits wherever the target's does.
Opened open_beside(const std::string &target)
{
    const std::size_t slash = target.rfind('/');
    const std::string directory = slash == std::string::npos ? "" : target.substr(0, slash + 1);
    const std::string stem = directory + ".pfsdoc-" + std::to_string(::getpid()) + "-";
    for (int attempt = 0; attempt < temporary_name_attempts; ++attempt) {
        const std::string path = stem + std::to_string(attempt);
        Descriptor descriptor(
            ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, new_file_mode));
        if (descriptor.is_open() || errno != EEXIST) {
            return {std::move(descriptor), path};
        }
    }
    return {};
}

// For a file that is to take the place of one with these permissions.
Opened open_to_replace(const std::string &target, mode_t permissions)
{
    Opened opened = open_beside(target);
    if (opened.descriptor.is_open() && ::fchmod(opened.descriptor.get(), permissions) != 0) {
        const int error_number = errno;
        ::unlink(opened.temporary.c_str());
        errno = error_number;
        return {};
    }
    return opened;
}

Opened open_target(const std::string &target)
{
    struct stat status {};
    if (::stat(target.c_str(), &status) != 0) {
        return open_beside(target);
    }
    if (S_ISREG(status.st_mode)) {
        return open_to_replace(target, status.st_mode & permission_bits);
    }
    return {Descriptor(::open(target.c_str(), O_WRONLY | O_CLOEXEC)), ""};
}

} // namespace

FileOutput::FileOutput(Descriptor descriptor, std::string temporary, std::string target,
                       uint64_t max_bytes)
    : descriptor_(std::move(descriptor)), output_(descriptor_.get(), max_bytes),
      temporary_(std::move(temporary)), target_(std::move(target))
{
}

FileOutput::~FileOutput()
{
    if (!temporary_.empty()) {
        ::unlink(temporary_.c_str());
    }
}

Result<std::unique_ptr<FileOutput>> FileOutput::create(const std::string &path, uint64_t max_bytes)
{
    const bool is_standard_output = path.empty() || path == "-";
    const std::string target = is_standard_output ? "" : resolved(path);
    Opened opened = is_standard_output
                        ? Opened{Descriptor(::fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 0)), ""}
                        : open_target(target);
    if (!opened.descriptor.is_open()) {
        return output_error(errno, target);
    }
    return Result<std::unique_ptr<FileOutput>>(std::unique_ptr<FileOutput>(
        new FileOutput(std::move(opened.descriptor), opened.temporary, target, max_bytes)));
}

Status FileOutput::failure() const
{
    return commit_error_ != 0 ? Status(output_error(commit_error_, target_))
                              : output_.failure(target_);
}

Status FileOutput::commit()
{
    output_.flush();
    if (!temporary_.empty() && !failed()) {
        if (::fsync(descriptor_.get()) != 0 || ::rename(temporary_.c_str(), target_.c_str()) != 0) {
            commit_error_ = errno;
        } else {
            temporary_.clear();
        }
    }
    return failure();
}

} // namespace pfsdoc::base

#include "lib/base/file_output.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace pfsdoc::base {

namespace {

constexpr std::size_t buffer_size = 65536;
constexpr mode_t new_file_mode = 0666; // less what the user's mask takes away
constexpr mode_t permission_bits = 0777;
constexpr int temporary_name_attempts = 100;

std::string output_remedy(int error_number)
{
    switch (error_number) {
    case ENOSPC:
    case EDQUOT: return "make room, or write elsewhere with -o";
    case EPIPE: return "let the program that reads the output read all of it";
    case EACCES:
    case EPERM:
    case EROFS: return "write elsewhere with -o";
    case ENOENT:
    case ENOTDIR: return "make its directory first";
    default: return "check where the output goes";
    }
}

Error not_written(const std::string &target, int error_number)
{
    const std::string name = target.empty() ? "the output" : "the output " + target;
    return {ErrorKind::output, name + " cannot be written: " + std::strerror(error_number),
            output_remedy(error_number)};
}

// Where a rename must go so that a symbolic link stays one.
std::string resolved(const std::string &path)
{
    char *real = ::realpath(path.c_str(), nullptr);
    std::string result = real != nullptr ? real : path;
    std::free(real);
    return result;
}

struct Opened {
    int descriptor;        // below 0: errno tells why
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
        const int descriptor =
            ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, new_file_mode);
        if (descriptor >= 0 || errno != EEXIST) {
            return {descriptor, path};
        }
    }
    return {-1, ""};
}

// For a file that is to take the place of one with these permissions.
Opened open_to_replace(const std::string &target, mode_t permissions)
{
    Opened opened = open_beside(target);
    if (opened.descriptor >= 0 && ::fchmod(opened.descriptor, permissions) != 0) {
        const int error_number = errno;
        ::close(opened.descriptor);
        ::unlink(opened.temporary.c_str());
        errno = error_number;
        return {-1, ""};
    }
    return opened;
}

Error over_limit(uint64_t max_bytes)
{
    return {ErrorKind::limit,
            "gives more output than the " + std::to_string(max_bytes) + " bytes that are allowed",
            "allow more with --max-output"};
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
    return {::open(target.c_str(), O_WRONLY | O_CLOEXEC), ""};
}

} // namespace

FileOutput::FileOutput(int descriptor, std::string temporary, std::string target,
                       uint64_t max_bytes)
    : descriptor_(descriptor), temporary_(std::move(temporary)), target_(std::move(target)),
      max_bytes_(max_bytes)
{
    buffer_.reserve(buffer_size);
}

FileOutput::~FileOutput()
{
    ::close(descriptor_);
    if (!temporary_.empty()) {
        ::unlink(temporary_.c_str());
    }
}

Result<std::unique_ptr<FileOutput>> FileOutput::create(const std::string &path, uint64_t max_bytes)
{
    const bool is_standard_output = path.empty() || path == "-";
    const std::string target = is_standard_output ? "" : resolved(path);
    const Opened opened = is_standard_output
                              ? Opened{::fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 0), ""}
                              : open_target(target);
    if (opened.descriptor < 0) {
        return not_written(target, errno);
    }
    return Result<std::unique_ptr<FileOutput>>(std::unique_ptr<FileOutput>(
        new FileOutput(opened.descriptor, opened.temporary, target, max_bytes)));
}

void FileOutput::note_failure(int error_number)
{
    if (error_number_ == 0) {
        error_number_ = error_number;
    }
}

void FileOutput::flush()
{
    std::string_view rest = buffer_;
    while (!rest.empty() && error_number_ == 0) {
        const ssize_t count = ::write(descriptor_, rest.data(), rest.size());
        if (count >= 0) {
            rest.remove_prefix(static_cast<std::size_t>(count));
        } else if (errno != EINTR) {
            note_failure(errno);
        }
    }
    buffer_.clear();
}

void FileOutput::write(std::string_view bytes)
{
    if (failed()) {
        return;
    }
    const uint64_t allowed = max_bytes_ - bytes_;
    over_limit_ = bytes.size() > allowed;
    const std::string_view part = bytes.substr(0, allowed);
    bytes_ += part.size();
    buffer_.append(part);
    if (buffer_.size() >= buffer_size) {
        flush();
    }
}

Status FileOutput::failure() const
{
    if (error_number_ != 0) {
        return not_written(target_, error_number_);
    }
    return over_limit_ ? Status(over_limit(max_bytes_)) : Status();
}

Status FileOutput::commit()
{
    flush();
    if (!temporary_.empty() && !failed()) {
        if (::fsync(descriptor_) != 0 || ::rename(temporary_.c_str(), target_.c_str()) != 0) {
            note_failure(errno);
        } else {
            temporary_.clear();
        }
    }
    return failure();
}

} // namespace pfsdoc::base

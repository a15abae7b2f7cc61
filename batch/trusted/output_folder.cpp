#include "batch/trusted/output_folder.h"

#include "batch/wire/sha256.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace pfsdoc::batch {

namespace {

constexpr mode_t new_file_mode = 0666;
constexpr std::size_t temporary_digits = 16;

// Whether an error is about this one name, and not about all that could be written.
bool is_about_name(int error_number)
{
    switch (error_number) {
    case EISDIR:
    case ENOTDIR:
    case EEXIST:
    case ENOTEMPTY:
    case EILSEQ:
    case EINVAL:
    case ELOOP:
    case ENAMETOOLONG: return true;
    default: return false;
    }
}

Error not_written(const std::string &target, int error_number)
{
    return {is_about_name(error_number) ? ErrorKind::usage : ErrorKind::output,
            target + " cannot be written: " + std::strerror(error_number),
            error_number == ENOSPC || error_number == EDQUOT
                ? "free some space; the next run continues from here"
                : "check the folder and the right to write there"};
}

base::Descriptor open_new(const std::string &path)
{
    return base::Descriptor(
        ::open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, new_file_mode));
}

} // namespace

PendingOutput::~PendingOutput()
{
    if (!temporary_.empty()) {
        ::unlink(temporary_.c_str());
    }
}

PendingOutput::PendingOutput(PendingOutput &&other) noexcept
    : file_(std::move(other.file_)), temporary_(std::exchange(other.temporary_, std::string())),
      target_(std::move(other.target_))
{
}

Status PendingOutput::commit()
{
    if (::rename(temporary_.c_str(), target_.c_str()) != 0) {
        return not_written(target_, errno);
    }
    temporary_.clear();
    return {};
}

Result<OutputFolder> OutputFolder::open(const std::string &path)
{
    std::error_code failure;
    std::filesystem::create_directories(path, failure);
    if (failure) {
        return Error{ErrorKind::output, path + " cannot be made: " + failure.message(),
                     "check the folder and the right to write there"};
    }
    base::Descriptor folder(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (folder.get() < 0) {
        return Error{ErrorKind::output, path + " cannot be opened: " + std::strerror(errno),
                     "check the folder and the right to write there"};
    }
    return OutputFolder(path, std::move(folder));
}

// The folders are there, but for the first file in each; what a killed run left is not.
Result<PendingOutput> OutputFolder::create(const std::string &name) const
{
    const std::filesystem::path target = std::filesystem::path(path_) / name;
    const std::string digits = hex_of(sha256_of(name)).substr(0, temporary_digits);
    const std::string temporary = target.parent_path() / (".pfsdoc-" + digits);
    base::Descriptor file = open_new(temporary);
    if (file.get() < 0 && errno == ENOENT) {
        std::error_code failure;
        std::filesystem::create_directories(target.parent_path(), failure);
        if (failure) {
            return not_written(target, failure.value());
        }
        file = open_new(temporary);
    }
    if (file.get() < 0 && errno == EEXIST) {
        ::unlink(temporary.c_str());
        file = open_new(temporary);
    }
    if (file.get() < 0) {
        return not_written(target, errno);
    }
    return PendingOutput(std::move(file), temporary, target);
}

int OutputFolder::sync() const
{
    return ::syncfs(folder_.get()) == 0 ? 0 : errno;
}

Error OutputFolder::sync_error(int error_number) const
{
    return not_written(path_, error_number);
}

base::Descriptor OutputFolder::open_existing(const std::string &name, uint64_t size) const
{
    const std::string path = std::filesystem::path(path_) / name;
    base::Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat status {};
    const bool is_it = file.get() >= 0 && ::fstat(file.get(), &status) == 0 &&
                       S_ISREG(status.st_mode) && static_cast<uint64_t>(status.st_size) == size;
    return is_it ? std::move(file) : base::Descriptor();
}

} // namespace pfsdoc::batch

#include "batch/trusted/output_folder.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <sys/file.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace pfsdoc::batch {

namespace {

constexpr mode_t mode_before_umask = 0666;
constexpr int folder_flags = O_RDONLY | O_DIRECTORY | O_CLOEXEC;

// It can only be asked for by setting it; nothing here has a second thread that would notice.
mode_t new_file_mode()
{
    const mode_t mask = ::umask(0);
    ::umask(mask);
    return mode_before_umask & ~mask;
}

Error not_opened(const std::string &path, const std::string &what)
{
    return {ErrorKind::output, path + what, "check the folder and the right to write there"};
}

// A lock of its own for the folder, which processes that are started later do not get: they may
// live on for a moment when a run is killed. Not every file system has such locks; the manifest
// is locked as well.
bool is_locked_by_others(int lock)
{
    return ::flock(lock, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
}

} // namespace

Result<OutputFolder> OutputFolder::open(const std::string &path)
{
    std::error_code failure;
    std::filesystem::create_directories(path, failure);
    if (failure) {
        return not_opened(path, " cannot be made: " + failure.message());
    }
    base::Descriptor lock(::open(path.c_str(), folder_flags));
    base::Descriptor folder(lock.is_open() ? ::openat(lock.get(), ".", folder_flags) : -1);
    if (!folder.is_open()) {
        return not_opened(path, std::string(" cannot be opened: ") + std::strerror(errno));
    }
    if (is_locked_by_others(lock.get())) {
        return Error{ErrorKind::output, "another run is writing to " + path,
                     "wait until it has finished"};
    }
    auto place =
        std::make_shared<OutputPlace>(path, std::move(folder), std::move(lock), new_file_mode());
    Result<RunMarker> marker = RunMarker::put(place->tree, path);
    if (!marker.ok()) {
        return marker.error();
    }
    place->marker.emplace(std::move(marker.value()));
    return OutputFolder(std::move(place));
}

Error OutputFolder::sync_error(int error_number) const
{
    return not_written(place_->path, error_number);
}

base::Descriptor OutputFolder::open_existing(const std::string &name, uint64_t size) const
{
    const auto [folder, file_name] = split_name(name);
    const int opened = place_->tree.open(folder, FolderTree::Missing::refused);
    base::Descriptor file(
        opened < 0 ? -1
                   : ::openat(opened, file_name.c_str(),
                              O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    struct stat status {};
    const bool is_it = file.is_open() && ::fstat(file.get(), &status) == 0 &&
                       S_ISREG(status.st_mode) && static_cast<uint64_t>(status.st_size) == size;
    return is_it ? std::move(file) : base::Descriptor();
}

int sync_volumes(const std::vector<int> &volumes)
{
    for (const int volume : volumes) {
        if (::syncfs(volume) != 0) {
            return errno;
        }
    }
    return 0;
}

} // namespace pfsdoc::batch

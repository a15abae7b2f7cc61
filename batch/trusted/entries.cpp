#include "batch/trusted/entries.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace pfsdoc::batch {

namespace {

std::string read_remedy(int error_number)
{
    switch (error_number) {
    case EACCES:
    case EPERM: return "ask its owner for the right to read it";
    case ENOENT:
    case ENOTDIR: return "check its name";
    case EMFILE:
    case ENFILE: return "allow more open files";
    default: return "check where it lies";
    }
}

// What was named is expected to be read; what lies in a folder need not be a document.
Error not_a_file(mode_t mode, Links links)
{
    const ErrorKind kind = links == Links::refused ? ErrorKind::not_a_document : ErrorKind::input;
    switch (mode & S_IFMT) {
    case S_IFLNK:
        return {kind, "is a symbolic link, which is not followed inside a folder",
                "name it itself to read what it leads to"};
    case S_IFIFO: return {kind, "is a pipe", "name files and folders"};
    case S_IFSOCK: return {kind, "is a socket", "name files and folders"};
    default: return {kind, "is a device", "name files and folders"};
    }
}

bool is_file_or_folder(mode_t mode)
{
    return S_ISREG(mode) || S_ISDIR(mode);
}

} // namespace

Error cannot_be_read(int error_number)
{
    return {ErrorKind::input, std::string("cannot be read: ") + std::strerror(error_number),
            read_remedy(error_number)};
}

Result<Entry> open_entry(int folder, const std::string &path, Links links)
{
    const bool refused = links == Links::refused;
    struct stat status {};
    if (::fstatat(folder, path.c_str(), &status, refused ? AT_SYMLINK_NOFOLLOW : 0) != 0) {
        return cannot_be_read(errno);
    }
    if (!is_file_or_folder(status.st_mode)) {
        return not_a_file(status.st_mode, links);
    }
    const int flags = O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC | (refused ? O_NOFOLLOW : 0);
    base::Descriptor file(::openat(folder, path.c_str(), flags));
    if (file.get() < 0 || ::fstat(file.get(), &status) != 0) {
        return cannot_be_read(errno);
    }
    if (!is_file_or_folder(status.st_mode)) {
        return not_a_file(status.st_mode, links);
    }
    return Entry{std::move(file),
                 S_ISDIR(status.st_mode),
                 static_cast<uint64_t>(status.st_size),
                 {status.st_dev, status.st_ino}};
}

std::optional<FileIdentity> identity_of(const std::string &path)
{
    struct stat status {};
    if (path.empty() || ::stat(path.c_str(), &status) != 0) {
        return std::nullopt;
    }
    return FileIdentity{status.st_dev, status.st_ino};
}

} // namespace pfsdoc::batch

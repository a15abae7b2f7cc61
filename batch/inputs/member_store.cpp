#include "member_store.h"

#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

namespace pfsdoc {

namespace {

constexpr std::size_t part_size = 65536;

// Some file systems know no files without names: there it loses its name at once.
OpenFile unnamed_file()
{
    const char *set = std::getenv("TMPDIR");
    const std::string folder = set != nullptr && *set != '\0' ? set : "/tmp";
    OpenFile file(::open(folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, S_IRUSR | S_IWUSR));
    if (file.get() >= 0) {
        return file;
    }
    std::string path = folder + "/pfsdoc-XXXXXX";
    OpenFile named(::mkostemp(path.data(), O_CLOEXEC));
    if (named.get() >= 0) {
        ::unlink(path.c_str());
    }
    return named;
}

} // namespace

MemberStore::MemberStore() : file_(::memfd_create("pfsdoc-member", MFD_CLOEXEC))
{
    if (file_.get() < 0) {
        error_number_ = errno;
    }
}

void MemberStore::append(std::string_view bytes)
{
    while (!bytes.empty() && error_number_ == 0) {
        const ssize_t count = ::write(file_.get(), bytes.data(), bytes.size());
        if (count >= 0) {
            bytes.remove_prefix(static_cast<std::size_t>(count));
        } else if (errno != EINTR) {
            error_number_ = errno;
        }
    }
}

void MemberStore::move_to_disk()
{
    on_disk_ = true;
    const OpenFile memory = std::move(file_);
    file_ = unnamed_file();
    if (file_.get() < 0) {
        error_number_ = errno;
        return;
    }
    std::array<char, part_size> part{};
    off_t offset = 0;
    while (error_number_ == 0) {
        const ssize_t count = ::pread(memory.get(), part.data(), part.size(), offset);
        if (count <= 0) {
            return;
        }
        append({part.data(), static_cast<std::size_t>(count)});
        offset += count;
    }
}

void MemberStore::write(std::string_view bytes)
{
    if (error_number_ == 0 && !on_disk_ && size_ + bytes.size() > largest_in_memory) {
        move_to_disk();
    }
    append(bytes);
    size_ += bytes.size();
}

Result<OpenFile> MemberStore::take()
{
    if (error_number_ == 0 && ::lseek(file_.get(), 0, SEEK_SET) != 0) {
        error_number_ = errno;
    }
    if (error_number_ != 0) {
        return Error{ErrorKind::input,
                     std::string("cannot be unpacked: ") + std::strerror(error_number_),
                     "make room, or set TMPDIR to a folder with more of it"};
    }
    return std::move(file_);
}

} // namespace pfsdoc

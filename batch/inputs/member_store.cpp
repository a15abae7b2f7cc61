#include "batch/inputs/member_store.h"

#include "lib/base/scratch_file.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <sys/mman.h>
#include <unistd.h>

namespace pfsdoc::batch {

namespace {

constexpr std::size_t part_size = 65536;

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
    file_ = OpenFile(base::open_scratch_file());
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

} // namespace pfsdoc::batch

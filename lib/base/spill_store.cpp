#include "lib/base/spill_store.h"

#include "lib/base/scratch_file.h"
#include "pfsdoc/reading_stopped.h"

#include <algorithm>
#include <cerrno>
#include <sys/types.h>
#include <unistd.h>

namespace pfsdoc::base {

namespace {

constexpr std::size_t copied_at_once = 65536;
constexpr int file_was_truncated = EIO; // by somebody else, since it was written

[[noreturn]] void fail(int error_number)
{
    throw ReadingStopped(scratch_error(error_number));
}

} // namespace

SpillStore::~SpillStore()
{
    if (!file_is_given_ && file_ != none) {
        ::close(file_);
    } else if (is_in_file_) {
        // Where it fails the bytes stay, and are written over by whoever is given the file.
        static_cast<void>(::ftruncate(file_, 0) == 0);
    }
}

void SpillStore::write(std::string_view bytes)
{
    if (!is_in_file_ && memory_.size() + bytes.size() > most_in_memory) {
        move_to_file();
    }
    if (is_in_file_) {
        write_to_file(bytes);
    } else {
        memory_.append(bytes);
        size_ = memory_.size();
    }
}

void SpillStore::move_to_file()
{
    if (file_ == none) {
        file_ = open_scratch_file();
    }
    if (file_ == none) {
        fail(errno);
    }
    is_in_file_ = true;
    size_ = 0;
    write_to_file(memory_);
    std::string().swap(memory_);
}

void SpillStore::write_to_file(std::string_view bytes)
{
    while (!bytes.empty()) {
        const ssize_t count =
            ::pwrite(file_, bytes.data(), bytes.size(), static_cast<off_t>(size_));
        if (count >= 0) {
            bytes.remove_prefix(static_cast<std::size_t>(count));
            size_ += static_cast<uint64_t>(count);
        } else if (errno != EINTR) {
            fail(errno);
        }
    }
}

void SpillStore::copy_to(Output &output) const
{
    if (is_in_file_) {
        copy_file_to(output);
    } else if (!memory_.empty()) {
        output.write(memory_);
    }
}

void SpillStore::copy_file_to(Output &output) const
{
    std::string buffer(copied_at_once, '\0');
    uint64_t offset = 0;
    while (offset < size_) {
        const auto wanted =
            static_cast<std::size_t>(std::min<uint64_t>(copied_at_once, size_ - offset));
        const ssize_t count = ::pread(file_, buffer.data(), wanted, static_cast<off_t>(offset));
        if (count == 0 || (count < 0 && errno != EINTR)) {
            fail(count == 0 ? file_was_truncated : errno);
        }
        const auto length = static_cast<std::size_t>(std::max<ssize_t>(count, 0));
        output.write(std::string_view(buffer).substr(0, length));
        offset += length;
    }
}

} // namespace pfsdoc::base

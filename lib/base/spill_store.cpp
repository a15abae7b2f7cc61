#include "lib/base/spill_store.h"

#include "lib/base/scratch_file.h"
#include "lib/base/transfers.h"
#include "pfsdoc/reading_stopped.h"

#include <algorithm>
#include <cerrno>
#include <sys/mman.h>
#include <sys/types.h>
#include <unistd.h>

namespace pfsdoc::base {

namespace {

constexpr std::size_t copied_at_once = 65536;
constexpr int file_was_truncated = EIO; // by somebody else, since it was written

} // namespace

SpillStore::SpillStore() : SpillStore(scratch_error) {}

SpillStore::SpillStore(int file) : SpillStore(scratch_error)
{
    file_ = file;
}

SpillStore::~SpillStore()
{
    if (is_in_file_ && !own_file_.is_open()) {
        // Where it fails the bytes stay, and are written over by whoever is given the file.
        static_cast<void>(::ftruncate(file_, 0) == 0);
    }
}

void SpillStore::fail(int error_number) const
{
    throw ReadingStopped(error_of_(error_number));
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
        own_file_ = Descriptor(open_scratch_file());
        file_ = own_file_.get();
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
    if (!write_all_at(file_, bytes, size_)) {
        fail(errno);
    }
    size_ += bytes.size();
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
        const ssize_t count = read_some_at(file_, buffer.data(), wanted, offset);
        if (count <= 0) {
            fail(count == 0 ? file_was_truncated : errno);
        }
        const auto length = static_cast<std::size_t>(count);
        output.write(std::string_view(buffer).substr(0, length));
        offset += length;
    }
}

Descriptor SpillStore::take()
{
    if (is_in_file_) {
        is_in_file_ = false; // its position has never moved from the start
        file_ = none;
        return std::move(own_file_);
    }
    Descriptor file(::memfd_create("pfsdoc", MFD_CLOEXEC));
    if (!file.is_open() || !write_all(file.get(), memory_) ||
        ::lseek(file.get(), 0, SEEK_SET) != 0) {
        fail(errno);
    }
    return file;
}

} // namespace pfsdoc::base

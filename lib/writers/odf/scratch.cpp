#include "lib/writers/odf/scratch.h"

#include "lib/base/scratch_file.h"

#include <algorithm>
#include <cerrno>
#include <sys/types.h>
#include <unistd.h>

namespace pfsdoc::writers {

namespace {

constexpr std::size_t copied_at_once = 65536;
constexpr int file_is_cut = EIO; // by somebody else, since it was written

} // namespace

Scratch::~Scratch()
{
    if (!file_is_given_ && file_ != none) {
        ::close(file_);
    } else if (is_in_file_) {
        // Where it fails the bytes stay, and are written over by whoever is given the file.
        static_cast<void>(::ftruncate(file_, 0) == 0);
    }
}

void Scratch::write_at(uint64_t offset, std::string_view bytes)
{
    const uint64_t end = offset + bytes.size();
    if (!is_in_file_ && end > most_in_memory) {
        move_to_file();
    }
    if (is_in_file_) {
        write_to_file(offset, bytes);
    } else {
        memory_.resize(std::max(memory_.size(), static_cast<std::size_t>(end)));
        bytes.copy(memory_.data() + offset, bytes.size());
    }
    size_ = std::max(size_, end);
}

void Scratch::move_to_file()
{
    if (file_ == none) {
        file_ = base::open_scratch_file();
    }
    if (file_ == none) {
        throw ScratchFailure{errno};
    }
    is_in_file_ = true;
    write_to_file(0, memory_);
    std::string().swap(memory_);
}

void Scratch::write_to_file(uint64_t offset, std::string_view bytes) const
{
    while (!bytes.empty()) {
        const ssize_t count =
            ::pwrite(file_, bytes.data(), bytes.size(), static_cast<off_t>(offset));
        if (count >= 0) {
            bytes.remove_prefix(static_cast<std::size_t>(count));
            offset += static_cast<uint64_t>(count);
        } else if (errno != EINTR) {
            throw ScratchFailure{errno};
        }
    }
}

void Scratch::copy_to(Output &output) const
{
    if (!is_in_file_) {
        output.write(memory_);
        return;
    }
    std::string buffer;
    for (uint64_t offset = 0; offset < size_; offset += buffer.size()) {
        buffer.resize(static_cast<std::size_t>(std::min<uint64_t>(copied_at_once, size_ - offset)));
        const ssize_t count =
            ::pread(file_, buffer.data(), buffer.size(), static_cast<off_t>(offset));
        if (count == 0 || (count < 0 && errno != EINTR)) {
            throw ScratchFailure{count == 0 ? file_is_cut : errno};
        }
        buffer.resize(static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
        output.write(buffer);
    }
}

} // namespace pfsdoc::writers

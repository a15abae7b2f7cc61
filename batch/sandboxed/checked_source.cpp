#include "batch/sandboxed/checked_source.h"

#include "lib/base/transfers.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

namespace pfsdoc::batch {

namespace {

Error unreadable(int error_number)
{
    return {ErrorKind::input, std::string("cannot be read: ") + std::strerror(error_number),
            "check that it is a readable file"};
}

Error changed()
{
    return {ErrorKind::input, "was changed while it was read",
            "run again when nothing writes to it; the next run reads it anew"};
}

} // namespace

Result<std::unique_ptr<CheckedSource>> CheckedSource::read(base::Descriptor file, uint64_t size)
{
    std::unique_ptr<CheckedSource> source(new CheckedSource(std::move(file), size));
    const Status fault = source->read_all();
    return fault.ok() ? Result<std::unique_ptr<CheckedSource>>(std::move(source)) : fault.error();
}

// No more than the size that is expected and one block: who appends to a file must not keep this
// busy for ever. What is read at once has room for a byte that must not be there.
Status CheckedSource::read_all()
{
    Sha256 sum;
    std::string block(std::min<uint64_t>(block_size, size_ + 1), '\0');
    for (uint64_t offset = 0; offset <= size_;) {
        const auto count = base::read_full_at(file_.get(), block.data(), block.size(), offset);
        if (!count) {
            return unreadable(errno);
        }
        const std::string_view part(block.data(), *count);
        sum.update(part);
        keep(part);
        offset += part.size();
        if (part.size() < block.size()) {
            digest_ = sum.finish();
            return offset == size_ ? Status() : Status(changed());
        }
    }
    return changed();
}

void CheckedSource::keep(std::string_view block)
{
    if (size_ <= most_in_memory) {
        bytes_.append(block);
    } else if (size_ < input_size_limit) {
        blocks_.push_back(digest_of(block));
    }
}

CheckedSource::BlockDigest CheckedSource::digest_of(std::string_view block)
{
    const Digest whole = sha256_of(block);
    BlockDigest digest{};
    std::copy_n(whole.begin(), digest.size(), digest.begin());
    return digest;
}

// Null where it cannot be read as it was.
const std::string *CheckedSource::block(uint64_t index)
{
    const auto cached = std::find_if(cache_.begin(), cache_.end(), [index](const CachedBlock &one) {
        return one.index == index;
    });
    if (cached != cache_.end()) {
        return &cached->bytes;
    }
    CachedBlock &replaced = cache_[replaced_next_];
    replaced_next_ = (replaced_next_ + 1) % cached_blocks;
    replaced.index = UINT64_MAX;
    replaced.bytes.resize(block_size);
    const auto count =
        base::read_full_at(file_.get(), replaced.bytes.data(), block_size, index * block_size);
    if (!count) {
        failure_ = unreadable(errno);
        return nullptr;
    }
    replaced.bytes.resize(*count);
    if (digest_of(replaced.bytes) != blocks_[index]) {
        failure_ = changed();
        return nullptr;
    }
    replaced.index = index;
    return &replaced.bytes;
}

std::optional<uint32_t> CheckedSource::read_at(uint32_t position, std::span<uint8_t> destination)
{
    if (!failure_.ok()) {
        return std::nullopt;
    }
    const std::size_t end = std::min<uint64_t>(size_, uint64_t{position} + destination.size());
    std::size_t copied = 0;
    for (std::size_t at = position; at < end;) {
        const bool is_small = size_ <= most_in_memory;
        const std::string *bytes = is_small ? &bytes_ : block(at / block_size);
        if (bytes == nullptr) {
            return std::nullopt;
        }
        const std::size_t start = is_small ? at : at % block_size;
        const std::size_t count = std::min(end - at, bytes->size() - start);
        std::memcpy(destination.data() + copied, bytes->data() + start, count);
        copied += count;
        at += count;
    }
    return static_cast<uint32_t>(copied);
}

} // namespace pfsdoc::batch

#include "lib/reading/after_end.h"

#include "formats/text.h"

#include <algorithm>
#include <span>
#include <vector>

namespace pfsdoc::reading {

namespace {

constexpr std::size_t read_at_once = 65536;

// What has been seen so far of the bytes that are no fill.
class Rest {
public:
    void add(uint32_t offset, std::span<const uint8_t> bytes)
    {
        if (!begun_) {
            const auto first = std::find_if_not(bytes.begin(), bytes.end(), formats::is_fill);
            const auto skipped = static_cast<std::size_t>(first - bytes.begin());
            bytes = bytes.subspan(skipped);
            offset += static_cast<uint32_t>(skipped);
        }
        if (!bytes.empty()) {
            note(offset, bytes);
        }
    }
    std::optional<AfterEnd> result() const
    {
        const bool is_repeated = is_uniform_ && end_ - begin_ > 1;
        return begun_ && !is_repeated ? std::optional(AfterEnd{begin_, end_ - begin_})
                                      : std::nullopt;
    }

private:
    void note(uint32_t offset, std::span<const uint8_t> bytes)
    {
        if (!begun_) {
            begun_ = true;
            begin_ = offset;
            first_ = bytes.front();
        }
        const auto last = std::find_if_not(bytes.rbegin(), bytes.rend(), formats::is_fill);
        const auto count = static_cast<std::size_t>(bytes.rend() - last);
        if (count == 0) {
            return;
        }
        // Fill that stands between other bytes is no padding, and makes them differ.
        is_uniform_ = is_uniform_ && (offset == begin_ || end_ == offset) &&
                      std::all_of(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(count),
                                  [this](uint8_t byte) { return byte == first_; });
        end_ = offset + static_cast<uint32_t>(count);
    }

    bool begun_ = false;
    bool is_uniform_ = true;
    uint8_t first_ = 0;
    uint32_t begin_ = 0;
    uint32_t end_ = 0; // behind the last byte that is no fill
};

} // namespace

Result<std::optional<AfterEnd>> find_after_end(ByteSource &source, uint32_t end)
{
    const uint32_t size = source.size();
    std::vector<uint8_t> buffer(std::min<std::size_t>(read_at_once, size - std::min(end, size)));
    Rest rest;
    for (uint32_t offset = end; offset < size;) {
        const std::optional<uint32_t> count = source.read_at(offset, buffer);
        if (!count) {
            const Status failure = source.failure();
            return failure.ok() ? Error{ErrorKind::input, "cannot be read", ""} : failure.error();
        }
        if (*count == 0) {
            break; // the file has become shorter
        }
        rest.add(offset, std::span<const uint8_t>(buffer).first(*count));
        offset += *count;
    }
    return rest.result();
}

} // namespace pfsdoc::reading

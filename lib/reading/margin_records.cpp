#include "lib/reading/margin_records.h"

#include "formats/write_family.h"

#include <algorithm>
#include <utility>

namespace pfsdoc::reading {

namespace {

constexpr char mark = formats::write::record_mark;
constexpr std::size_t type_offset = 2; // from the mark

// Whether a record that begins at the mark may set margins: its type says so, or is not among the
// bytes.
bool may_set_margins(std::string_view bytes, std::size_t mark_at)
{
    const std::size_t type_at = mark_at + type_offset;
    return type_at >= bytes.size() || bytes[type_at] == formats::write::record_margins;
}

} // namespace

std::optional<uint32_t> MarginRecordSource::read_at(uint32_t position,
                                                    std::span<uint8_t> destination)
{
    const std::optional<uint32_t> count = source_.read_at(position, destination);
    const std::string_view bytes(reinterpret_cast<const char *>(destination.data()),
                                 count.value_or(0));
    if (!marks_.empty()) {
        earlier_marks_end_ = std::max(earlier_marks_end_, marks_.back() + 1);
        marks_.clear();
    }
    for (std::size_t at = bytes.find(mark); at != std::string_view::npos;
         at = bytes.find(mark, at + 1)) {
        if (may_set_margins(bytes, at)) {
            marks_.push_back(position + static_cast<uint32_t>(at));
        }
    }
    return count;
}

bool MarginRecordSource::may_have_record_in(uint32_t begin, uint32_t end) const
{
    const auto next = std::lower_bound(marks_.begin(), marks_.end(), begin);
    return begin < earlier_marks_end_ || (next != marks_.end() && *next < end);
}

int32_t MarginStops::on_event(const Event &event, uint32_t offset)
{
    const int32_t wanted_stop = stitcher_.on_event(event, offset);
    if (wanted_stop == 0) {
        return 0;
    }
    const uint32_t position = session_.tell();
    const uint32_t begin = std::exchange(paragraph_begin_, position);
    // Header lines stand elsewhere in the file: where the text goes on before them, marks may
    // have been passed.
    const bool has_jumped_back = position < begin;
    return has_jumped_back || source_.may_have_record_in(begin, position) ? wanted_stop : 0;
}

void MarginStops::on_characters(std::string_view bytes)
{
    stitcher_.on_characters(bytes);
}

} // namespace pfsdoc::reading

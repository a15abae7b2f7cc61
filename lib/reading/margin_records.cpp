#include "lib/reading/margin_records.h"

#include "formats/write_family.h"

#include <algorithm>
#include <utility>

namespace pfsdoc::reading {

namespace {

constexpr char mark = formats::write::record_mark;
constexpr std::size_t type_offset = 2; // from the mark

// Where the last record that may set margins begins, if any does: one whose type says so, or is not
// among the bytes.
std::size_t last_record(std::string_view bytes)
{
    std::size_t at = bytes.rfind(mark);
    while (at != std::string_view::npos && at + type_offset < bytes.size() &&
           bytes[at + type_offset] != formats::write::record_margins) {
        at = at == 0 ? std::string_view::npos : bytes.rfind(mark, at - 1);
    }
    return at;
}

} // namespace

std::optional<uint32_t> MarginRecordSource::read_at(uint32_t position,
                                                    std::span<uint8_t> destination)
{
    const std::optional<uint32_t> count = source_.read_at(position, destination);
    const std::string_view bytes(reinterpret_cast<const char *>(destination.data()),
                                 count.value_or(0));
    if (const std::size_t at = last_record(bytes); at != std::string_view::npos) {
        marks_end_ = std::max(marks_end_, position + static_cast<uint32_t>(at) + 1);
    }
    return count;
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
    return has_jumped_back || source_.may_have_record_from(begin) ? wanted_stop : 0;
}

void MarginStops::on_characters(std::string_view bytes)
{
    stitcher_.on_characters(bytes);
}

} // namespace pfsdoc::reading

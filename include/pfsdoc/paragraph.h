// A paragraph: the model that all writers work on.
//
// A paragraph is one string of the document's own bytes, and a list of pieces that divide it:
// text with one set of attributes, an embedded command, or the position of a page break inside
// the paragraph. A piece ends where the next one begins, so that even in a hostile document,
// where every character may have different attributes, a piece costs little memory.
// Tests: tests/lib/reading/paragraph_collector_test.cpp.
#pragma once

#include "pfsdoc/attribute_names.h"
#include "pfsdoc/events.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace pfsdoc {

// A set of attributes: bit n stands for code n of AttributeChange (attribute_names.h).
using AttributeSet = uint16_t;

inline constexpr int32_t attribute_codes_end = 16;

// 0 for a code outside the set, which no document reports.
constexpr AttributeSet attribute_bit(int32_t code)
{
    const bool known = code >= 0 && code < attribute_codes_end;
    return known ? static_cast<AttributeSet>(1U << static_cast<unsigned>(code)) : AttributeSet{0};
}

constexpr AttributeSet attribute_bit(AttributeCode code)
{
    return attribute_bit(static_cast<int32_t>(code));
}

// Far more than any real paragraph has, and little enough that no format takes more than 64 MB for
// one. A larger one ends reading with ErrorKind::limit.
inline constexpr std::size_t max_paragraph_bytes = std::size_t{8} << 20;
inline constexpr std::size_t max_paragraph_pieces = std::size_t{512} << 10;
inline constexpr std::size_t max_paragraph_lines = std::size_t{512} << 10; // with source offsets

enum class PieceKind : uint8_t {
    text,
    command,    // its bytes as stored, including the asterisks, as far as the document has them
    page_break, // no bytes
};

struct Piece {
    std::size_t begin; // index into the paragraph's bytes
    uint32_t source;   // offset of the piece's first byte in the file
    AttributeSet attributes;
    PieceKind kind;
    bool cut; // a command that was too long and has been truncated

    bool operator==(const Piece &) const = default;
    bool has(AttributeCode code) const
    {
        return (attributes & attribute_bit(code)) != 0;
    }
};

// A list that paragraphs share: copying one copies no stops.
class TabStops {
public:
    TabStops() = default;
    TabStops(std::vector<TabStop> stops)
        : stops_(std::make_shared<const std::vector<TabStop>>(std::move(stops)))
    {
    }
    TabStops(std::initializer_list<TabStop> stops) : TabStops(std::vector<TabStop>(stops)) {}

    const TabStop *begin() const
    {
        return stops_ != nullptr ? stops_->data() : nullptr;
    }
    const TabStop *end() const
    {
        return begin() + size();
    }
    std::size_t size() const
    {
        return stops_ != nullptr ? stops_->size() : 0;
    }
    bool empty() const
    {
        return size() == 0;
    }
    const TabStop &operator[](std::size_t index) const
    {
        return (*stops_)[index];
    }
    // The very same list, not one with the same stops.
    bool is_shared_with(const TabStops &other) const
    {
        return stops_ == other.stops_;
    }
    friend bool operator==(const TabStops &a, const TabStops &b)
    {
        return a.is_shared_with(b) || std::equal(a.begin(), a.end(), b.begin(), b.end());
    }

private:
    std::shared_ptr<const std::vector<TabStop>> stops_;
};

struct Paragraph {
    std::string bytes;
    std::vector<Piece> pieces;
    // Indexes of the bytes that begin a new line in the file. A space that joins two lines may
    // be the end of one or the start of the other. Empty if offsets were not requested.
    std::vector<std::size_t> line_starts;

    int32_t left_indent = 0;       // twips from the left margin, of all lines but the first
    int32_t first_line_indent = 0; // twips from the left margin too, not from left_indent
    int32_t alignment = 0;         // VwAlignment
    int32_t line_spacing = 0;      // VW_SINGLE_SPACING or VW_DOUBLE_SPACING, by LineSpacingRule
    Margins margins{};             // twips from the page's left edge; both 0 if none were reported
    TabStops tab_stops;

    // Byte offsets in the file. Body paragraphs are contiguous: one ends where the next begins,
    // including line ends and rulers. For a header or footer line they enclose its text only.
    uint32_t source_begin = 0;
    uint32_t source_end = 0;

    uint64_t omitted_command_bytes = 0; // of truncated commands

    bool operator==(const Paragraph &) const = default;
    std::string_view piece_bytes(std::size_t index) const
    {
        const std::size_t begin = pieces[index].begin;
        const std::size_t end = index + 1 < pieces.size() ? pieces[index + 1].begin : bytes.size();
        return std::string_view(bytes).substr(begin, end - begin);
    }
    // Of one of this paragraph's own pieces, not of a copy.
    std::string_view piece_bytes(const Piece &piece) const
    {
        return piece_bytes(static_cast<std::size_t>(&piece - pieces.data()));
    }
};

} // namespace pfsdoc

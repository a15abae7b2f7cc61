// A paragraph as the collector hands it on: the model that every writer is written against.
//
// A paragraph is one string of the document's own bytes, and a list of pieces that cut the
// string up: text under one set of attributes, an embedded command, or the place of a page
// break in mid-paragraph. A piece ends where the next one begins, so that a hostile
// document, whose every character may have attributes of its own, costs little per piece.
// Tests: tests/lib/reading/paragraph_collector_test.cpp.
#pragma once

#include "pfsdoc/events.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace pfsdoc {

// Attributes that are on together: bit n stands for code n of AttributeChange, whose meaning
// attribute_names.h tells.
using AttributeSet = uint16_t;

inline constexpr int32_t attribute_codes_end = 16;

// 0 for a code that the set has no room for: no document reports one.
constexpr AttributeSet attribute_bit(int32_t code)
{
    const bool known = code >= 0 && code < attribute_codes_end;
    return known ? static_cast<AttributeSet>(1U << static_cast<unsigned>(code)) : AttributeSet{0};
}

// Nothing that people wrote comes near these. A larger paragraph ends the reading with
// ErrorKind::limit.
inline constexpr std::size_t max_paragraph_bytes = std::size_t{64} << 20;
inline constexpr std::size_t max_paragraph_pieces = std::size_t{4} << 20;

enum class PieceKind : uint8_t {
    text,
    command,    // its bytes as stored, both asterisks included where the document has them
    page_break, // no bytes
};

struct Piece {
    std::size_t begin; // index into the paragraph's bytes
    uint32_t source;   // offset of the piece's first byte in the file
    AttributeSet attributes;
    PieceKind kind;
    bool cut; // a command that was too long to be kept whole

    bool operator==(const Piece &) const = default;
};

struct Paragraph {
    std::string bytes;
    std::vector<Piece> pieces;
    // Indexes of the bytes that begin a new line in the file. A blank that joins two lines may
    // be the end of one or the start of the other. Empty where offsets were not asked for.
    std::vector<std::size_t> line_starts;

    int32_t left_indent = 0;       // twips from the left margin, of all lines but the first
    int32_t first_line_indent = 0; // twips from the left margin too, not from left_indent
    int32_t alignment = 0;         // VwAlignment
    int32_t line_spacing = 0;      // VW_SINGLE_SPACING or VW_DOUBLE_SPACING, by LineSpacingRule
    Margins margins{};             // both 0 where none were reported
    std::vector<TabStop> tab_stops;

    // Body paragraphs meet: one ends where the next begins, line ends and rulers included. A
    // header or footer line lies elsewhere in the file, and these enclose its text alone.
    uint32_t source_begin = 0;
    uint32_t source_end = 0;

    uint64_t omitted_command_bytes = 0; // of cut commands

    bool operator==(const Paragraph &) const = default;
    std::string_view piece_bytes(std::size_t index) const
    {
        const std::size_t begin = pieces[index].begin;
        const std::size_t end = index + 1 < pieces.size() ? pieces[index + 1].begin : bytes.size();
        return std::string_view(bytes).substr(begin, end - begin);
    }
};

} // namespace pfsdoc

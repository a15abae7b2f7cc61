// What several writers ask of a paragraph's pieces, so that all of them answer alike: what shows
// that a command has been cut, and whether a paragraph that shows nothing is an empty line.
// Tests: tests/lib/writers/*_writer_test.cpp.
#pragma once

#include "pfsdoc/paragraph.h"

#include <algorithm>
#include <string_view>

namespace pfsdoc::page {

// What a writer puts behind the piece's own text.
inline std::string_view cut_mark(const Piece &piece)
{
    return piece.cut ? "..." : "";
}

// Whether nothing that may be hidden is in the paragraph. Without text it is then an empty line
// that the author made, and is written.
inline bool is_text_only(const Paragraph &paragraph)
{
    return std::all_of(paragraph.pieces.begin(), paragraph.pieces.end(),
                       [](const Piece &piece) { return piece.kind == PieceKind::text; });
}

} // namespace pfsdoc::page

#include "lib/page/page_geometry.h"

#include "lib/page/blank_bytes.h"
#include "lib/reading/text_commands.h"
#include "vs_pfs.h"

#include <algorithm>
#include <optional>
#include <string_view>
#include <vector>

namespace pfsdoc::page {

namespace {

// Of the commands in front of a paragraph's text.
std::optional<int32_t> leading_alignment_command(const Paragraph &paragraph)
{
    for (std::size_t i = 0; i < paragraph.pieces.size(); ++i) {
        const std::string_view bytes = paragraph.piece_bytes(i);
        if (paragraph.pieces[i].kind == PieceKind::command) {
            if (const std::optional<int32_t> alignment = reading::alignment_command(bytes)) {
                return alignment;
            }
        } else if (bytes.find_first_not_of(blank_bytes) != std::string_view::npos) {
            break;
        }
    }
    return std::nullopt;
}

std::size_t indent_columns(int32_t twips, int32_t width)
{
    return static_cast<std::size_t>(std::clamp(twips / VW_TWIPS_PER_COLUMN, 0, width - 1));
}

} // namespace

PageColumns page_columns(const Margins &margins)
{
    const PageColumns columns{margins.left / VW_TWIPS_PER_COLUMN,
                              margins.right / VW_TWIPS_PER_COLUMN};
    const bool possible =
        margins.left >= 0 && columns.left < columns.right && columns.right <= widest_page_columns;
    return possible ? columns : PageColumns{default_left_column, default_right_column};
}

LineAlignment line_alignment(const Paragraph &paragraph)
{
    switch (leading_alignment_command(paragraph).value_or(paragraph.alignment)) {
    case VW_ALIGN_RIGHT: return LineAlignment::right;
    case VW_ALIGN_CENTRE: return LineAlignment::centre;
    default: return LineAlignment::left;
    }
}

std::vector<TabColumn> tab_columns(const Paragraph &paragraph)
{
    const PageColumns page = page_columns(paragraph.margins);
    std::vector<TabColumn> columns;
    columns.reserve(paragraph.tab_stops.size());
    const auto left = static_cast<uint32_t>(page.left);
    const auto right = static_cast<uint32_t>(page.right);
    for (const TabStop &stop : paragraph.tab_stops) {
        const uint32_t column = stop.position / VW_TWIPS_PER_COLUMN;
        if (column > left && column <= right) {
            columns.push_back({column - left, stop.kind == VW_TAB_DECIMAL});
        }
    }
    return columns;
}

LineGeometry line_geometry(const Paragraph &paragraph)
{
    const PageColumns page = page_columns(paragraph.margins);
    const int32_t width = page.width();
    LineGeometry geometry;
    geometry.left_margin = static_cast<std::size_t>(page.left);
    geometry.width = static_cast<std::size_t>(width);
    geometry.first_line_indent = indent_columns(paragraph.first_line_indent, width);
    geometry.indent = indent_columns(paragraph.left_indent, width);
    if (paragraph.bytes.find(tab_byte) != std::string::npos) {
        geometry.tab_stops = tab_columns(paragraph);
    }
    geometry.alignment = line_alignment(paragraph);
    if (geometry.alignment != LineAlignment::left) {
        geometry.first_line_indent = geometry.indent = 0;
    }
    return geometry;
}

} // namespace pfsdoc::page

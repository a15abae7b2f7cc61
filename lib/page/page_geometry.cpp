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

// All but the tab stops.
void set_columns(LineGeometry &geometry, const Paragraph &paragraph, const PageColumns &page)
{
    const int32_t width = page.width();
    geometry.left_margin = static_cast<std::size_t>(page.left);
    geometry.width = static_cast<std::size_t>(width);
    geometry.first_line_indent = indent_columns(paragraph.first_line_indent, width);
    geometry.indent = indent_columns(paragraph.left_indent, width);
    geometry.alignment = line_alignment(paragraph);
    if (geometry.alignment != LineAlignment::left) {
        geometry.first_line_indent = geometry.indent = 0;
    }
}

// The stops that are between the margins, in their order.
std::vector<TabColumn> tab_columns(const TabStops &stops, const PageColumns &page)
{
    std::vector<TabColumn> columns;
    columns.reserve(stops.size());
    const auto left = static_cast<uint32_t>(page.left);
    const auto right = static_cast<uint32_t>(page.right);
    for (const TabStop &stop : stops) {
        const uint32_t column = stop.position / VW_TWIPS_PER_COLUMN;
        if (column > left && column <= right) {
            columns.push_back({column - left, stop.kind == VW_TAB_DECIMAL});
        }
    }
    return columns;
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

LineGeometry &LineGeometries::of(const Paragraph &paragraph)
{
    const PageColumns page = page_columns(paragraph.margins);
    set_columns(geometry_, paragraph, page);
    if (!tab_stops_.is_shared_with(paragraph.tab_stops) || page_ != page) {
        geometry_.tab_stops = tab_columns(paragraph.tab_stops, page);
        tab_stops_ = paragraph.tab_stops;
        page_ = page;
        ++tab_stop_changes_;
    }
    return geometry_;
}

} // namespace pfsdoc::page

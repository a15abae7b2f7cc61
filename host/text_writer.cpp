#include "text_writer.h"

#include "text_commands.h"
#include "vs_pfs.h"

#include <algorithm>
#include <optional>

namespace pfsdoc {

namespace {

constexpr std::string_view blank_bytes{" \0", 2};
constexpr std::string_view cut_mark = "...";

// The first and the last that text may occupy.
struct PageColumns {
    int32_t left;
    int32_t right;
};

PageColumns page_columns(const Margins &margins)
{
    const PageColumns columns{margins.left / VW_TWIPS_PER_COLUMN,
                              margins.right / VW_TWIPS_PER_COLUMN};
    const bool possible =
        margins.left >= 0 && columns.left < columns.right && columns.right <= widest_page_columns;
    return possible ? columns : PageColumns{default_left_column, default_right_column};
}

// Of the commands in front of a paragraph's text.
std::optional<int32_t> leading_alignment_command(const Paragraph &paragraph)
{
    for (std::size_t i = 0; i < paragraph.pieces.size(); ++i) {
        const std::string_view bytes = paragraph.piece_bytes(i);
        if (paragraph.pieces[i].kind == PieceKind::command) {
            if (const std::optional<int32_t> alignment = alignment_command(bytes)) {
                return alignment;
            }
        } else if (bytes.find_first_not_of(blank_bytes) != std::string_view::npos) {
            break;
        }
    }
    return std::nullopt;
}

LineAlignment line_alignment(const Paragraph &paragraph)
{
    switch (leading_alignment_command(paragraph).value_or(paragraph.alignment)) {
    case VW_ALIGN_RIGHT: return LineAlignment::right;
    case VW_ALIGN_CENTRE: return LineAlignment::centre;
    default: return LineAlignment::left;
    }
}

std::size_t indent_columns(int32_t twips, int32_t width)
{
    return static_cast<std::size_t>(std::clamp(twips / VW_TWIPS_PER_COLUMN, 0, width - 1));
}

std::vector<TabColumn> tab_columns(const std::vector<TabStop> &stops, const PageColumns &page)
{
    std::vector<TabColumn> columns;
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

LineGeometry line_geometry(const Paragraph &paragraph)
{
    const PageColumns page = page_columns(paragraph.margins);
    const int32_t width = page.right - page.left + 1;
    LineGeometry geometry;
    geometry.left_margin = static_cast<std::size_t>(page.left);
    geometry.width = static_cast<std::size_t>(width);
    geometry.first_line_indent = indent_columns(paragraph.first_line_indent, width);
    geometry.indent = indent_columns(paragraph.left_indent, width);
    geometry.tab_stops = tab_columns(paragraph.tab_stops, page);
    geometry.alignment = line_alignment(paragraph);
    if (geometry.alignment != LineAlignment::left) {
        geometry.first_line_indent = geometry.indent = 0;
    }
    return geometry;
}

bool is_text_only(const Paragraph &paragraph)
{
    return std::all_of(paragraph.pieces.begin(), paragraph.pieces.end(),
                       [](const Piece &piece) { return piece.kind == PieceKind::text; });
}

} // namespace

// ---------------------------------------------------------------- TextBlockWriter -----

TextBlockWriter::TextBlockWriter(Output &output, const TextOptions &options)
    : options_(options), text_(output), layout_(text_), footer_text_(footers_),
      footer_layout_(footer_text_)
{
}

void TextBlockWriter::paragraph(const Paragraph &paragraph)
{
    LineLayout &layout = place_ == Place::footer ? footer_layout_ : layout_;
    layout.begin(line_geometry(paragraph));
    for (std::size_t i = 0; i < paragraph.pieces.size(); ++i) {
        lay_out_piece(paragraph, i, layout);
    }
    layout.end(place_ == Place::body && is_text_only(paragraph));
}

void TextBlockWriter::lay_out_piece(const Paragraph &paragraph, std::size_t index,
                                    LineLayout &layout)
{
    const Piece &piece = paragraph.pieces[index];
    switch (piece.kind) {
    case PieceKind::text: lay_out_text(paragraph.piece_bytes(index), layout); break;
    case PieceKind::command:
        if (options_.commands) {
            lay_out_text(paragraph.piece_bytes(index), layout);
            lay_out_text(piece.cut ? cut_mark : std::string_view(), layout);
        }
        break;
    case PieceKind::page_break:
        if (options_.page_breaks && place_ == Place::body) {
            layout.end_line();
            text_.form_feed();
        }
        break;
    }
}

void TextBlockWriter::lay_out_text(std::string_view bytes, LineLayout &layout)
{
    if (place_ == Place::footer) {
        bytes = bytes.substr(0, max_footer_bytes - footer_bytes_);
        footer_bytes_ += bytes.size();
    }
    layout.text(bytes);
}

void TextBlockWriter::page_break(uint32_t)
{
    if (options_.page_breaks && place_ == Place::body) {
        text_.form_feed();
    }
}

void TextBlockWriter::block_begin(BlockKind kind)
{
    place_ = kind == BlockKind::header ? Place::header : Place::footer;
}

void TextBlockWriter::block_end()
{
    if (place_ == Place::header && !text_.empty()) {
        text_.separate();
    }
    place_ = Place::body;
}

void TextBlockWriter::end_of_document()
{
    footer_text_.finish();
    if (!footers_.text.empty() && !text_.empty()) {
        text_.separate();
    }
    text_.utf8(footers_.text);
    text_.finish();
}

// --------------------------------------------------------------------- TextWriter -----

TextWriter::TextWriter(Output &output, const TextOptions &options)
    : blocks_(output, options), collector_(blocks_)
{
}

int32_t TextWriter::on_event(const Event &event, uint32_t offset)
{
    return collector_.on_event(event, offset);
}

void TextWriter::on_characters(std::string_view bytes)
{
    collector_.on_characters(bytes);
}

void TextWriter::finish()
{
    collector_.finish();
}

} // namespace pfsdoc

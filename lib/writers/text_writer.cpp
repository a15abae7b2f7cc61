#include "lib/writers/text_writer.h"

#include "lib/page/paragraph_pieces.h"
#include "lib/writers/formats.h"
#include "pfsdoc/attribute_names.h"
#include "vs_pfs.h"

#include <algorithm>

namespace pfsdoc::writers {

namespace {

// Wider than any line, and far from where sums of columns wrap around.
constexpr std::size_t unlimited_columns = std::size_t{1} << 30;

// As the options want it.
void adapt(page::LineGeometry &geometry, const WriterOptions &options)
{
    if (options.raw_lines && geometry.alignment == page::LineAlignment::left) {
        geometry.width = unlimited_columns;
    }
    if (!options.wrap) {
        return;
    }
    geometry.left_margin = 0;
    geometry.width = std::min(*options.wrap, max_wrap_columns);
    if (*options.wrap == 0) {
        geometry.width = unlimited_columns;
        geometry.first_line_indent = geometry.indent = 0;
        geometry.alignment = page::LineAlignment::left;
    }
    geometry.first_line_indent = std::min(geometry.first_line_indent, geometry.width - 1);
    geometry.indent = std::min(geometry.indent, geometry.width - 1);
}

} // namespace

// ---------------------------------------------------------------- TextBlockWriter -----

TextBlockWriter::TextBlockWriter(Output &output, const WriterOptions &options)
    : options_(options), text_(output, *options.code_page)
{
}

void TextBlockWriter::Lines::text(std::size_t spaces, std::string_view bytes)
{
    output_.spaces(spaces);
    output_.text(bytes);
}

void TextBlockWriter::Lines::line_end()
{
    output_.line_end();
}

void TextBlockWriter::paragraph(const Paragraph &paragraph)
{
    const bool is_running_line = running_lines_.block().has_value();
    if (is_running_line && !options_.headers) {
        losses_.add(Loss::header_footer, paragraph.source_begin, paragraph.bytes.empty() ? 0 : 1);
        return;
    }
    add_losses(paragraph);
    if (!running_lines_.in_footer()) {
        write_paragraph(paragraph);
    } else if (!paragraph.bytes.empty() &&
               !running_lines_.keep(page::without_page_breaks(paragraph))) {
        losses_.add(Loss::header_footer, paragraph.source_begin);
    }
}

void TextBlockWriter::write_paragraph(const Paragraph &paragraph)
{
    next_line_ = 0;
    page::LineGeometry &geometry = geometries_.of(paragraph);
    adapt(geometry, options_);
    layout_.begin(geometry);
    for (std::size_t i = 0; i < paragraph.pieces.size(); ++i) {
        lay_out_piece(paragraph, i);
    }
    layout_.end(!running_lines_.block() && page::is_text_only(paragraph));
}

void TextBlockWriter::lay_out_piece(const Paragraph &paragraph, std::size_t index)
{
    const Piece &piece = paragraph.pieces[index];
    switch (piece.kind) {
    case PieceKind::text: lay_out_lines(paragraph, index); break;
    case PieceKind::command:
        if (options_.commands) {
            lay_out_lines(paragraph, index);
            layout_.text(page::cut_mark(piece));
        }
        break;
    case PieceKind::page_break:
        if (shows_page_breaks()) {
            layout_.end_line();
            text_.form_feed();
        }
        break;
    }
}

// In stretches, where lines end as they do in the file.
void TextBlockWriter::lay_out_lines(const Paragraph &paragraph, std::size_t index)
{
    const std::string_view bytes = paragraph.piece_bytes(index);
    const std::size_t begin = paragraph.pieces[index].begin;
    std::size_t done = 0;
    while (options_.raw_lines && next_line_ < paragraph.line_starts.size() &&
           paragraph.line_starts[next_line_] < begin + bytes.size()) {
        // A hidden command may have begun the line.
        const std::size_t end = std::max(paragraph.line_starts[next_line_], begin) - begin;
        layout_.text(bytes.substr(done, end - done));
        layout_.end_line();
        done = end;
        ++next_line_;
    }
    layout_.text(bytes.substr(done));
}

void TextBlockWriter::page_break(uint32_t source)
{
    if (shows_page_breaks()) {
        text_.form_feed();
    } else {
        losses_.add(Loss::page_break, source);
    }
}

bool TextBlockWriter::shows_page_breaks() const
{
    return options_.page_breaks && !running_lines_.block();
}

// Lines that are filled anew lose where the page had them.
void TextBlockWriter::add_losses(const Paragraph &paragraph)
{
    add_common_losses(paragraph, options_);
    add_attribute_losses(paragraph, all_attributes);
    for (const Piece &piece : paragraph.pieces) {
        const bool is_lost = piece.kind == PieceKind::page_break && !shows_page_breaks();
        losses_.add(Loss::page_break, piece.source, is_lost ? 1 : 0);
    }
    const bool is_double_spaced = paragraph.line_spacing == VW_DOUBLE_SPACING;
    losses_.add(Loss::line_spacing, paragraph.source_begin, is_double_spaced ? 1 : 0);
    if (options_.wrap == 0U) {
        const bool is_aligned = page::line_alignment(paragraph) != page::LineAlignment::left;
        const bool is_indented = paragraph.left_indent != 0 || paragraph.first_line_indent != 0;
        losses_.add(Loss::alignment, paragraph.source_begin, is_aligned ? 1 : 0);
        losses_.add(Loss::indents, paragraph.source_begin, is_indented && !is_aligned ? 1 : 0);
    }
}

void TextBlockWriter::block_begin(BlockKind kind)
{
    running_lines_.begin(kind);
}

void TextBlockWriter::block_end()
{
    if (running_lines_.block() == BlockKind::header && !text_.empty()) {
        text_.separate();
    }
    running_lines_.end();
}

void TextBlockWriter::end_of_document()
{
    if (!text_.empty()) {
        text_.separate();
    }
    running_lines_.begin(BlockKind::footer);
    for (const Paragraph &line : running_lines_.footers()) {
        write_paragraph(line);
    }
    text_.finish();
}

// --------------------------------------------------------------------- TextWriter -----

TextWriter::TextWriter(Output &output, const WriterOptions &options)
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

// ------------------------------------------------------------------------ format ------

namespace {

Result<std::unique_ptr<Writer>> make_writer(Output &output, const DocumentInfo &,
                                            const WriterOptions &options)
{
    return std::unique_ptr<Writer>(std::make_unique<TextBlockWriter>(output, options));
}

} // namespace

const Format text_format = {
    .name = "text",
    .extension = "txt",
    .description = "plain text in UTF-8, as the page shows it",
    .options = WriterOption::page_breaks | WriterOption::headers | WriterOption::commands |
               WriterOption::wrap | WriterOption::raw_lines,
    .make_writer = make_writer,
    .make_event_writer = nullptr,
    .wants_offsets = false,
};

} // namespace pfsdoc::writers

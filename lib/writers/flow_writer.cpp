#include "lib/writers/flow_writer.h"

#include "lib/page/blank_bytes.h"
#include "lib/page/page_geometry.h"
#include "vs_pfs.h"

namespace pfsdoc::writers {

namespace {

bool has_tabs(const Paragraph &paragraph)
{
    for (std::size_t i = 0; i < paragraph.pieces.size(); ++i) {
        if (paragraph.pieces[i].kind == PieceKind::text &&
            paragraph.piece_bytes(i).find(page::tab_byte) != std::string_view::npos) {
            return true;
        }
    }
    return false;
}

} // namespace

FlowWriter::FlowWriter(Output &output, const WriterOptions &options, const Abilities &abilities)
    : options_(options), abilities_(abilities), text_(output)
{
}

void FlowWriter::paragraph(const Paragraph &paragraph)
{
    if (!is_written(paragraph)) {
        return;
    }
    add_common_losses(paragraph, options_);
    add_attribute_losses(paragraph, static_cast<AttributeSet>(~abilities_.attributes));
    add_layout_losses(paragraph);
    if (!running_lines_.in_footer()) {
        write_paragraph(paragraph);
    }
}

// Now, or behind the text.
bool FlowWriter::is_written(const Paragraph &paragraph)
{
    if (running_lines_.block() && (!options_.headers || paragraph.pieces.empty())) {
        return false;
    }
    if (running_lines_.in_footer() && !running_lines_.keep(paragraph)) {
        losses_.add(Loss::header_footer, paragraph.source_begin);
        return false;
    }
    return true;
}

void FlowWriter::add_layout_losses(const Paragraph &paragraph)
{
    const uint32_t source = paragraph.source_begin;
    if (last_margins_ && *last_margins_ != paragraph.margins) {
        losses_.add(Loss::margins, source);
    }
    last_margins_ = paragraph.margins;
    if (paragraph.bytes.empty()) {
        return;
    }
    const bool left_aligned = page::line_alignment(paragraph) == page::LineAlignment::left;
    const bool indented = paragraph.left_indent != 0 || paragraph.first_line_indent != 0;
    losses_.add(Loss::alignment, source, !left_aligned && !abilities_.alignment ? 1 : 0);
    losses_.add(Loss::indents, source, left_aligned && indented ? 1 : 0);
    losses_.add(Loss::tab_stops, source, has_tabs(paragraph) ? 1 : 0);
    losses_.add(Loss::line_spacing, source, paragraph.line_spacing != VW_SINGLE_SPACING ? 1 : 0);
}

void FlowWriter::page_break(uint32_t)
{
    if (options_.page_breaks && !running_lines_.block()) {
        begin_block();
        write_page_break();
    }
}

void FlowWriter::block_begin(BlockKind kind)
{
    running_lines_.begin(kind);
}

void FlowWriter::block_end()
{
    running_lines_.end();
}

void FlowWriter::end_of_document()
{
    running_lines_.begin(BlockKind::footer);
    for (const Paragraph &line : running_lines_.footers()) {
        write_paragraph(line);
    }
    running_lines_.end();
    write_end();
    text_.finish();
}

void FlowWriter::begin_block()
{
    if (has_blocks_) {
        text_.utf8(abilities_.separator);
    }
    has_blocks_ = true;
}

} // namespace pfsdoc::writers

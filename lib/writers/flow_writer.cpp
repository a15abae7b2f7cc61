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
    : options_(options), abilities_(abilities), text_(output), footer_text_(footers_)
{
}

void FlowWriter::paragraph(const Paragraph &paragraph)
{
    if (!is_kept(paragraph)) {
        return;
    }
    add_common_losses(paragraph, options_);
    add_attribute_losses(paragraph, static_cast<AttributeSet>(~abilities_.attributes));
    add_layout_losses(paragraph);
    write_paragraph(paragraph);
}

bool FlowWriter::is_kept(const Paragraph &paragraph)
{
    if (place_ == Place::body) {
        return true;
    }
    if (!options_.headers || paragraph.pieces.empty()) {
        return false;
    }
    if (place_ == Place::footer) {
        footer_bytes_ += paragraph.bytes.size() + 1;
        if (footer_bytes_ > max_footer_bytes) {
            losses_.add(Loss::header_footer, paragraph.source_begin);
            return false;
        }
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
    if (options_.page_breaks && place_ == Place::body) {
        begin_block();
        write_page_break();
    }
}

void FlowWriter::block_begin(BlockKind kind)
{
    place_ = kind == BlockKind::header ? Place::header : Place::footer;
}

void FlowWriter::block_end()
{
    place_ = Place::body;
}

void FlowWriter::end_of_document()
{
    footer_text_.finish();
    if (has_footer_blocks_) {
        begin_block();
        text_.utf8(footers_.text);
    }
    write_end();
    text_.finish();
}

void FlowWriter::begin_block()
{
    bool &has_blocks = place_ == Place::footer ? has_footer_blocks_ : has_blocks_;
    if (has_blocks) {
        out().utf8(abilities_.separator);
    }
    has_blocks = true;
}

} // namespace pfsdoc::writers

#include "revenge_writer.h"

#include "attribute_names.h"
#include "blank_bytes.h"
#include "paragraph_pieces.h"
#include "vs_pfs.h"

#include <algorithm>

namespace pfsdoc {

namespace {

using librevenge::RVNGPropertyList;
using librevenge::RVNGString;

constexpr AttributeSet underline = attribute_bit(static_cast<int32_t>(AttributeCode::underline));

constexpr AttributeSet known_attributes()
{
    AttributeSet all = 0;
    for (const AttributeName &entry : attribute_names) {
        all = static_cast<AttributeSet>(all | attribute_bit(static_cast<int32_t>(entry.code)));
    }
    return all;
}

RVNGPropertyList on_all_pages()
{
    RVNGPropertyList occurrence;
    occurrence.insert("librevenge:occurrence", "all");
    return occurrence;
}

// The empty lines between a header or footer and the text.
std::size_t lines_beside(std::size_t lines)
{
    return lines < header_lines ? header_lines - lines : 1;
}

// Without the blanks that nobody sees at its end.
std::size_t visible_end(const Paragraph &paragraph)
{
    const bool ends_in_plain_text = !paragraph.pieces.empty() &&
                                    paragraph.pieces.back().kind == PieceKind::text &&
                                    (paragraph.pieces.back().attributes & underline) == 0;
    if (!ends_in_plain_text) {
        return paragraph.bytes.size();
    }
    const std::size_t last = paragraph.bytes.find_last_not_of(blank_bytes);
    const std::size_t end = last == std::string::npos ? 0 : last + 1;
    return std::max(end, paragraph.pieces.back().begin);
}

} // namespace

RevengeWriter::RevengeWriter(librevenge::RVNGTextInterface &document, const DocumentInfo &info,
                             const WriterOptions &options, const GeneratorTraits &traits)
    : document_(document), options_(options), styles_(document, traits.keeps_styles),
      traits_(traits)
{
    RVNGPropertyList metadata;
    metadata.insert("meta:generator", "pfsdoc " PFSDOC_VERSION);
    if (!info.title.empty()) {
        metadata.insert("dc:title", info.title.c_str());
    }
    document_.setDocumentMetaData(metadata);
    document_.startDocument(RVNGPropertyList());
}

// -------------------------------------------------------------------- the document -----

void RevengeWriter::paragraph(const Paragraph &paragraph)
{
    page_ = page_.value_or(page_columns(paragraph.margins));
    if (block_) {
        hold_line(paragraph);
        return;
    }
    add_common_losses(paragraph, options_);
    begin_page();
    write_paragraph(paragraph);
}

void RevengeWriter::hold_line(const Paragraph &paragraph)
{
    std::vector<Paragraph> &lines = *block_ == BlockKind::header ? headers_ : footers_;
    const bool is_empty = paragraph.bytes.find_first_not_of(gap_bytes) == std::string::npos;
    if (!options_.headers || is_empty) {
        return;
    }
    if (in_body_ || lines.size() == max_block_lines) {
        losses_.add(Loss::header_footer, paragraph.source_begin);
        return;
    }
    add_common_losses(paragraph, options_);
    lines.push_back(paragraph);
}

void RevengeWriter::page_break(uint32_t)
{
    if (options_.page_breaks && !block_) {
        ++breaks_pending_;
    }
}

void RevengeWriter::block_begin(BlockKind kind)
{
    block_ = kind;
}

void RevengeWriter::block_end()
{
    block_.reset();
}

void RevengeWriter::end_of_document()
{
    begin_page();
    if (breaks_pending_ != 0) {
        end_pages_pending();
        write_empty_paragraph(true);
    }
    document_.closePageSpan();
    document_.endDocument();
}

void RevengeWriter::begin_page()
{
    if (in_body_) {
        return;
    }
    page_ = page_.value_or(PageColumns());
    document_.openPageSpan(page_properties(*page_, !headers_.empty(), !footers_.empty()));
    write_header();
    write_footer();
    styles_.begin_body();
    in_body_ = true;
}

void RevengeWriter::write_header()
{
    if (headers_.empty()) {
        return;
    }
    document_.openHeader(on_all_pages());
    for (const Paragraph &line : headers_) {
        write_paragraph(line);
    }
    write_empty_lines(lines_beside(headers_.size()));
    document_.closeHeader();
}

void RevengeWriter::write_footer()
{
    if (footers_.empty()) {
        return;
    }
    document_.openFooter(on_all_pages());
    write_empty_lines(lines_beside(footers_.size()));
    for (const Paragraph &line : footers_) {
        write_paragraph(line);
    }
    document_.closeFooter();
}

void RevengeWriter::write_empty_lines(std::size_t count)
{
    for (std::size_t i = 0; i < count; ++i) {
        write_empty_paragraph(false);
    }
}

// All pages but the one that the next paragraph begins.
void RevengeWriter::end_pages_pending()
{
    if (body_is_empty_) {
        write_empty_paragraph(false);
    }
    for (; breaks_pending_ > 1; --breaks_pending_) {
        write_empty_paragraph(true);
    }
}

void RevengeWriter::write_empty_paragraph(bool page_break_before)
{
    Paragraph empty;
    empty.margins = {page_->left * VW_TWIPS_PER_COLUMN, page_->right * VW_TWIPS_PER_COLUMN};
    empty.line_spacing = VW_SINGLE_SPACING;
    ParagraphStart start;
    start.page_break_before = page_break_before;
    count_elements(1);
    document_.openParagraph(styles_.paragraph_properties(empty, *page_, start));
    document_.closeParagraph();
    body_is_empty_ = body_is_empty_ && !in_body_;
}

// ------------------------------------------------------------------- one paragraph -----

void RevengeWriter::write_paragraph(const Paragraph &paragraph)
{
    current_ = &paragraph;
    start_ = {};
    start_.has_tab = paragraph.bytes.find(tab_byte) != std::string::npos;
    visible_end_ = visible_end(paragraph);
    held_blanks_ = 0;
    for (std::size_t i = 0; i < paragraph.pieces.size(); ++i) {
        write_piece(paragraph, i);
    }
    if (!paragraph_open_ && is_text_only(paragraph)) {
        open_paragraph();
    }
    close_paragraph();
}

void RevengeWriter::write_piece(const Paragraph &paragraph, std::size_t index)
{
    const Piece &piece = paragraph.pieces[index];
    const auto attributes = static_cast<AttributeSet>(piece.attributes & known_attributes());
    const std::string_view bytes = paragraph.piece_bytes(index);
    switch (piece.kind) {
    case PieceKind::text:
        write_text(bytes.substr(0, std::max(visible_end_, piece.begin) - piece.begin), attributes);
        break;
    case PieceKind::command:
        if (options_.commands) {
            write_text(bytes, attributes);
            write_text(cut_mark(piece), attributes);
        }
        break;
    case PieceKind::page_break:
        if (options_.page_breaks && in_body_) {
            break_paragraph();
        }
        break;
    }
}

void RevengeWriter::break_paragraph()
{
    start_.continues = start_.continues || paragraph_open_;
    close_paragraph();
    held_blanks_ = 0;
    ++breaks_pending_;
}

void RevengeWriter::open_paragraph()
{
    if (in_body_ && breaks_pending_ != 0) {
        end_pages_pending();
    }
    start_.page_break_before = in_body_ && breaks_pending_ != 0;
    count_elements(1);
    document_.openParagraph(styles_.paragraph_properties(*current_, *page_, start_));
    paragraph_open_ = true;
    after_gap_ = true;
    if (in_body_) {
        breaks_pending_ = 0;
        body_is_empty_ = false;
    }
}

void RevengeWriter::close_paragraph()
{
    if (paragraph_open_) {
        close_span();
        document_.closeParagraph();
        paragraph_open_ = false;
    }
}

void RevengeWriter::open_span(AttributeSet attributes)
{
    if (span_ != attributes) {
        close_span();
        count_elements(1);
        document_.openSpan(styles_.span_properties(attributes));
        span_ = attributes;
    }
}

void RevengeWriter::close_span()
{
    if (span_) {
        flush_text();
        document_.closeSpan();
        span_.reset();
    }
}

// ------------------------------------------------------------------------ its text -----

void RevengeWriter::write_text(std::string_view bytes, AttributeSet attributes)
{
    if (!paragraph_open_) {
        bytes = hold_blanks(bytes, attributes);
    }
    if (bytes.empty()) {
        return;
    }
    if (!paragraph_open_) {
        open_paragraph();
        if (held_blanks_ != 0) {
            open_span(0);
            write_spaces(held_blanks_);
        }
    }
    open_span(attributes);
    while (!bytes.empty()) {
        const std::size_t word = std::min(bytes.find_first_of(gap_bytes), bytes.size());
        options_.code_page->append_utf8(text_, bytes.substr(0, word));
        after_gap_ = after_gap_ && word == 0;
        bytes = write_gap(bytes.substr(word));
    }
}

// What is left of the bytes without the blanks that they begin with. An underlined blank is
// seen.
std::string_view RevengeWriter::hold_blanks(std::string_view bytes, AttributeSet attributes)
{
    if ((attributes & underline) != 0) {
        return bytes;
    }
    const std::size_t count = std::min(bytes.find_first_not_of(blank_bytes), bytes.size());
    const bool are_kept = !start_.continues && line_alignment(*current_) == LineAlignment::left;
    held_blanks_ += are_kept ? count : 0;
    return bytes.substr(count);
}

// The blanks, or the tab, that the bytes begin with.
std::string_view RevengeWriter::write_gap(std::string_view bytes)
{
    if (bytes.starts_with(tab_byte)) {
        flush_text();
        count_elements(1);
        document_.insertTab();
        after_gap_ = true;
        return bytes.substr(1);
    }
    std::size_t blanks = std::min(bytes.find_first_not_of(blank_bytes), bytes.size());
    bytes.remove_prefix(blanks);
    if (blanks != 0 && !after_gap_) {
        text_.push_back(' ');
        --blanks;
        after_gap_ = true;
    }
    write_spaces(blanks);
    return bytes;
}

void RevengeWriter::write_spaces(std::size_t count)
{
    if (count != 0) {
        flush_text();
        count_elements(count);
    }
    for (std::size_t i = 0; i < count; ++i) {
        document_.insertSpace();
    }
}

void RevengeWriter::flush_text()
{
    if (!text_.empty()) {
        document_.insertText(RVNGString(text_.c_str()));
        text_.clear();
    }
}

void RevengeWriter::count_elements(std::size_t count)
{
    elements_ += count;
    if (elements_ + styles_.elements() > traits_.most_elements) {
        throw TooManyElements();
    }
}

} // namespace pfsdoc

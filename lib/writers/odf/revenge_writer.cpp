#include "lib/writers/odf/revenge_writer.h"

#include "lib/page/blank_bytes.h"
#include "lib/page/paragraph_pieces.h"
#include "pfsdoc/attribute_names.h"
#include "vs_pfs.h"

#include <algorithm>
#include <utility>

namespace pfsdoc::writers {

namespace {

using librevenge::RVNGPropertyList;
using librevenge::RVNGString;

// What takes as much memory as one of the other elements.
constexpr std::size_t element_text_bytes = 256;

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
    const std::size_t last = paragraph.bytes.find_last_not_of(page::blank_bytes);
    const std::size_t end = last == std::string::npos ? 0 : last + 1;
    return std::max(end, paragraph.pieces.back().begin);
}

} // namespace

RevengeWriter::RevengeWriter(librevenge::RVNGTextInterface &document, const DocumentInfo &info,
                             const WriterOptions &options, const GeneratorTraits &traits)
    : document_(&document), options_(options), styles_(traits.keeps_styles), traits_(traits)
{
    metadata_.insert("meta:generator", "pfsdoc " PFSDOC_VERSION);
    if (!info.title.empty()) {
        metadata_.insert("dc:title", info.title.c_str());
    }
    begin_document();
}

// -------------------------------------------------------------------- the document -----

void RevengeWriter::paragraph(const Paragraph &paragraph)
{
    page_ = page_.value_or(page::page_columns(paragraph.margins));
    if (block_) {
        hold_line(paragraph);
        return;
    }
    add_common_losses(paragraph, options_);
    begin_body();
    write_paragraph(paragraph);
}

void RevengeWriter::hold_line(const Paragraph &paragraph)
{
    std::vector<Paragraph> &lines = *block_ == BlockKind::header ? headers_ : footers_;
    const bool is_empty = paragraph.bytes.find_first_not_of(page::gap_bytes) == std::string::npos;
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
    begin_body();
    if (breaks_pending_ != 0) {
        end_pages_pending();
        write_empty_paragraph(true);
    }
    end_document();
}

void RevengeWriter::begin_document()
{
    document_->setDocumentMetaData(metadata_);
    document_->startDocument(RVNGPropertyList());
    styles_.begin_generator(*document_);
}

void RevengeWriter::end_document()
{
    document_->closePageSpan();
    document_->endDocument();
}

void RevengeWriter::begin_body()
{
    if (!in_body_) {
        page_ = page_.value_or(page::PageColumns());
        open_page();
    }
}

void RevengeWriter::open_page()
{
    document_->openPageSpan(page_properties(*page_, !headers_.empty(), !footers_.empty()));
    write_header();
    write_footer();
    styles_.begin_body();
    in_body_ = true;
    repeated_elements_ = elements();
}

bool RevengeWriter::portion_is_full() const
{
    return traits_.portions != nullptr && in_body_ &&
           elements() - repeated_elements_ >=
               std::max(traits_.portion_elements, repeated_elements_);
}

// Between paragraphs, of which the one to be opened next may be a part of one that a page
// break has cut.
void RevengeWriter::begin_portion()
{
    const InParagraph interrupted = std::exchange(now_, {});
    end_document();
    document_ = &traits_.portions->next();
    in_body_ = false;
    elements_ = 0;
    begin_document();
    open_page();
    count_elements(1);
    styles_.repeat_spans();
    repeated_elements_ = elements();
    now_ = interrupted;
}

void RevengeWriter::write_header()
{
    if (headers_.empty()) {
        return;
    }
    document_->openHeader(on_all_pages());
    for (const Paragraph &line : headers_) {
        write_paragraph(line);
    }
    write_empty_lines(lines_beside(headers_.size()));
    document_->closeHeader();
}

void RevengeWriter::write_footer()
{
    if (footers_.empty()) {
        return;
    }
    document_->openFooter(on_all_pages());
    write_empty_lines(lines_beside(footers_.size()));
    for (const Paragraph &line : footers_) {
        write_paragraph(line);
    }
    document_->closeFooter();
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
    tell_paragraph(empty, start);
    document_->closeParagraph();
    body_is_empty_ = body_is_empty_ && !in_body_;
}

void RevengeWriter::tell_paragraph(const Paragraph &paragraph, ParagraphStart start)
{
    if (portion_is_full()) {
        begin_portion();
    }
    count_elements(1);
    document_->openParagraph(styles_.paragraph_properties(paragraph, *page_, start));
}

// ------------------------------------------------------------------- one paragraph -----

void RevengeWriter::write_paragraph(const Paragraph &paragraph)
{
    now_.paragraph = &paragraph;
    now_.start = {};
    now_.start.has_tab = paragraph.bytes.find(page::tab_byte) != std::string::npos;
    now_.visible_end = visible_end(paragraph);
    now_.held_blanks = 0;
    for (std::size_t i = 0; i < paragraph.pieces.size(); ++i) {
        write_piece(paragraph, i);
    }
    if (!now_.is_open && page::is_text_only(paragraph)) {
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
        write_text(bytes.substr(0, std::max(now_.visible_end, piece.begin) - piece.begin),
                   attributes);
        break;
    case PieceKind::command:
        if (options_.commands) {
            write_text(bytes, attributes);
            write_text(page::cut_mark(piece), attributes);
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
    now_.start.continues = now_.start.continues || now_.is_open;
    close_paragraph();
    now_.held_blanks = 0;
    ++breaks_pending_;
}

void RevengeWriter::open_paragraph()
{
    if (in_body_ && breaks_pending_ != 0) {
        end_pages_pending();
    }
    now_.start.page_break_before = in_body_ && breaks_pending_ != 0;
    tell_paragraph(*now_.paragraph, now_.start);
    now_.is_open = true;
    now_.after_gap = true;
    if (in_body_) {
        breaks_pending_ = 0;
        body_is_empty_ = false;
    }
}

void RevengeWriter::close_paragraph()
{
    if (now_.is_open) {
        close_span();
        document_->closeParagraph();
        now_.is_open = false;
    }
}

void RevengeWriter::open_span(AttributeSet attributes)
{
    if (now_.span != attributes) {
        close_span();
        count_elements(1);
        document_->openSpan(styles_.span_properties(attributes));
        now_.span = attributes;
    }
}

void RevengeWriter::close_span()
{
    if (now_.span) {
        flush_text();
        document_->closeSpan();
        now_.span.reset();
    }
}

// ------------------------------------------------------------------------ its text -----

void RevengeWriter::write_text(std::string_view bytes, AttributeSet attributes)
{
    if (!now_.is_open) {
        bytes = hold_blanks(bytes, attributes);
    }
    if (bytes.empty()) {
        return;
    }
    if (!now_.is_open) {
        open_paragraph();
        if (now_.held_blanks != 0) {
            open_span(0);
            write_spaces(now_.held_blanks);
        }
    }
    open_span(attributes);
    while (!bytes.empty()) {
        const std::size_t word = std::min(bytes.find_first_of(page::gap_bytes), bytes.size());
        options_.code_page->append_utf8(now_.text, bytes.substr(0, word));
        now_.after_gap = now_.after_gap && word == 0;
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
    const std::size_t count = std::min(bytes.find_first_not_of(page::blank_bytes), bytes.size());
    const bool are_kept =
        !now_.start.continues && page::line_alignment(*now_.paragraph) == page::LineAlignment::left;
    now_.held_blanks += are_kept ? count : 0;
    return bytes.substr(count);
}

// The blanks, or the tab, that the bytes begin with.
std::string_view RevengeWriter::write_gap(std::string_view bytes)
{
    if (bytes.starts_with(page::tab_byte)) {
        flush_text();
        count_elements(1);
        document_->insertTab();
        now_.after_gap = true;
        return bytes.substr(1);
    }
    std::size_t blanks = std::min(bytes.find_first_not_of(page::blank_bytes), bytes.size());
    bytes.remove_prefix(blanks);
    if (blanks != 0 && !now_.after_gap) {
        now_.text.push_back(' ');
        --blanks;
        now_.after_gap = true;
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
        document_->insertSpace();
    }
}

void RevengeWriter::flush_text()
{
    if (!now_.text.empty()) {
        count_elements(now_.text.size() / element_text_bytes);
        document_->insertText(RVNGString(now_.text.c_str()));
        now_.text.clear();
    }
}

void RevengeWriter::count_elements(std::size_t count)
{
    elements_ += count;
    if (elements() > traits_.most_elements) {
        throw TooManyElements();
    }
}

} // namespace pfsdoc::writers

#include "lib/writers/odf_writer.h"

#include "lib/base/spill_store.h"
#include "lib/page/blank_bytes.h"
#include "lib/page/page_geometry.h"
#include "lib/page/paragraph_pieces.h"
#include "lib/page/running_lines.h"
#include "lib/writers/odf_styles.h"
#include "lib/writers/odf_text.h"
#include "pfsdoc/attribute_names.h"
#include "vs_pfs.h"

#include <algorithm>
#include <optional>
#include <utility>
#include <vector>

namespace pfsdoc::writers {

namespace {

using base::SpillStore;
using page::LineAlignment;
using page::LineGeometry;
using page::PageColumns;

// A document has two lines of each; more than this are not held.
constexpr std::size_t max_block_lines = 16;

constexpr AttributeSet underline = attribute_bit(AttributeCode::underline);

// The empty lines between a header or footer and the text.
std::size_t lines_beside(std::size_t lines)
{
    return lines < header_lines ? header_lines - lines : 1;
}

SpillStore store_in(std::span<const int> files, std::size_t index)
{
    return index < files.size() ? SpillStore(files[index]) : SpillStore();
}

class OdfWriter final : public Writer {
public:
    OdfWriter(WriteOdfDocument write_document, Output &output, const DocumentInfo &info,
              const WriterOptions &options)
        : write_document_(write_document), output_(output), title_(info.title), options_(options),
          paragraph_styles_(store_in(options.scratch_files, 0)),
          body_(store_in(options.scratch_files, 1))
    {
    }
    OdfWriter(const OdfWriter &) = delete;
    OdfWriter &operator=(const OdfWriter &) = delete;

    void paragraph(const Paragraph &paragraph) override;
    void page_break(uint32_t source) override;
    void block_begin(BlockKind kind) override;
    void block_end() override;
    void end_of_document() override;

private:
    void hold_line(const Paragraph &paragraph);
    void begin_body();
    std::string running_text(BlockKind kind, const std::vector<Paragraph> &lines);
    void write_empty_lines(std::size_t count);
    void write_empty_paragraph(bool page_break_before);
    void end_pages_pending();

    void write_paragraph(const Paragraph &paragraph);
    void write_piece(const Paragraph &paragraph, std::size_t index);
    void write_text(std::string_view bytes, AttributeSet attributes);
    std::string_view hold_leading_spaces(std::string_view bytes, AttributeSet attributes);
    void open_paragraph();
    void close_paragraph();
    void break_paragraph();

    WriteOdfDocument write_document_;
    Output &output_;
    std::string title_;
    WriterOptions options_;

    // The document so far.
    SpillStore paragraph_styles_;
    SpillStore body_;
    OdfStyles body_styles_{"", paragraph_styles_};
    OdfText body_text_{body_, body_styles_, *options_.code_page};
    StringOutput page_styles_;
    OdfStyles running_styles_{"Running-", page_styles_};
    StringOutput running_xml_;
    OdfText running_text_{running_xml_, running_styles_, *options_.code_page};
    std::string header_;
    std::string footer_;

    page::RunningLines running_lines_{max_block_lines};
    std::optional<PageColumns> page_; // of the first paragraph
    bool in_body_ = false;            // the header and footer are written
    bool body_is_empty_ = true;
    uint64_t breaks_pending_ = 0; // before the next paragraph

    // The paragraph.
    OdfText *text_ = &running_text_;
    OdfStyles *styles_ = &running_styles_;
    page::LineGeometries geometries_;
    const LineGeometry *geometry_ = nullptr; // of the paragraph at hand
    ParagraphLooks looks_;
    int32_t line_spacing_ = VW_SINGLE_SPACING;
    ParagraphStart start_;
    bool is_open_ = false;
    std::size_t leading_spaces_ = 0; // before it is open
};

// -------------------------------------------------------------------- the document -----

void OdfWriter::paragraph(const Paragraph &paragraph)
{
    page_ = page_.value_or(page::page_columns(paragraph.margins));
    if (running_lines_.block()) {
        hold_line(paragraph);
        return;
    }
    add_common_losses(paragraph, options_);
    begin_body();
    write_paragraph(paragraph);
}

void OdfWriter::hold_line(const Paragraph &paragraph)
{
    const bool is_empty = paragraph.bytes.find_first_not_of(page::gap_bytes) == std::string::npos;
    if (!options_.headers || is_empty) {
        return;
    }
    if (in_body_ || !running_lines_.keep(paragraph)) {
        losses_.add(Loss::header_footer, paragraph.source_begin);
        return;
    }
    add_common_losses(paragraph, options_);
}

void OdfWriter::page_break(uint32_t)
{
    if (options_.page_breaks && !running_lines_.block()) {
        ++breaks_pending_;
    }
}

void OdfWriter::block_begin(BlockKind kind)
{
    running_lines_.begin(kind);
}

void OdfWriter::block_end()
{
    running_lines_.end();
}

void OdfWriter::end_of_document()
{
    begin_body();
    if (breaks_pending_ != 0) {
        end_pages_pending();
        write_empty_paragraph(true);
    }
    body_text_.finish();
    std::string text_styles;
    body_styles_.append_text_styles(text_styles);
    write_document_({.title = title_,
                     .paragraph_styles = paragraph_styles_,
                     .text_styles = std::move(text_styles),
                     .page_styles = std::move(page_styles_.text),
                     .header = std::move(header_),
                     .footer = std::move(footer_),
                     .body = body_},
                    output_);
}

void OdfWriter::begin_body()
{
    if (in_body_) {
        return;
    }
    page_ = page_.value_or(PageColumns());
    append_page_layout(page_styles_.text, *page_, !running_lines_.headers().empty(),
                       !running_lines_.footers().empty());
    header_ = running_text(BlockKind::header, running_lines_.headers());
    footer_ = running_text(BlockKind::footer, running_lines_.footers());
    running_styles_.append_text_styles(page_styles_.text);
    text_ = &body_text_;
    styles_ = &body_styles_;
    in_body_ = true;
}

// With the empty lines that part them from the body.
std::string OdfWriter::running_text(BlockKind kind, const std::vector<Paragraph> &lines)
{
    if (lines.empty()) {
        return {};
    }
    if (kind == BlockKind::footer) {
        write_empty_lines(lines_beside(lines.size()));
    }
    for (const Paragraph &line : lines) {
        write_paragraph(line);
    }
    if (kind == BlockKind::header) {
        write_empty_lines(lines_beside(lines.size()));
    }
    running_text_.finish();
    return std::exchange(running_xml_.text, {});
}

void OdfWriter::write_empty_lines(std::size_t count)
{
    for (std::size_t i = 0; i < count; ++i) {
        write_empty_paragraph(false);
    }
}

void OdfWriter::write_empty_paragraph(bool page_break_before)
{
    ParagraphLook look;
    look.page_break_before = page_break_before;
    text_->begin_paragraph(styles_->paragraph_style(look));
    text_->end_paragraph();
    body_is_empty_ = body_is_empty_ && !in_body_;
}

// All pages but the one that the next paragraph begins.
void OdfWriter::end_pages_pending()
{
    if (body_is_empty_) {
        write_empty_paragraph(false);
    }
    for (; breaks_pending_ > 1; --breaks_pending_) {
        write_empty_paragraph(true);
    }
}

// ------------------------------------------------------------------- one paragraph -----

void OdfWriter::write_paragraph(const Paragraph &paragraph)
{
    geometry_ = &geometries_.of(paragraph);
    line_spacing_ = paragraph.line_spacing;
    start_ = {};
    start_.has_tab = paragraph.bytes.find(page::tab_byte) != std::string::npos;
    leading_spaces_ = 0;
    for (std::size_t i = 0; i < paragraph.pieces.size(); ++i) {
        write_piece(paragraph, i);
    }
    if (!is_open_ && page::is_text_only(paragraph)) {
        open_paragraph();
    }
    close_paragraph();
}

void OdfWriter::write_piece(const Paragraph &paragraph, std::size_t index)
{
    const Piece &piece = paragraph.pieces[index];
    switch (piece.kind) {
    case PieceKind::text: write_text(paragraph.piece_bytes(index), piece.attributes); break;
    case PieceKind::command:
        if (options_.commands) {
            write_text(paragraph.piece_bytes(index), piece.attributes);
            write_text(page::cut_mark(piece), piece.attributes);
        }
        break;
    case PieceKind::page_break:
        if (options_.page_breaks && in_body_) {
            break_paragraph();
        }
        break;
    }
}

void OdfWriter::write_text(std::string_view bytes, AttributeSet attributes)
{
    if (!is_open_) {
        bytes = hold_leading_spaces(bytes, attributes);
        if (bytes.empty()) {
            return;
        }
        open_paragraph();
        text_->leading_spaces(leading_spaces_);
    }
    text_->text(bytes, attributes & attributes_with_look);
}

// What is left of the bytes without the spaces that they begin with. Underlined ones are seen.
std::string_view OdfWriter::hold_leading_spaces(std::string_view bytes, AttributeSet attributes)
{
    if ((attributes & underline) != 0) {
        return bytes;
    }
    const std::size_t count = std::min(bytes.find_first_not_of(page::blank_bytes), bytes.size());
    const bool are_kept = !start_.continues && geometry_->alignment == LineAlignment::left;
    leading_spaces_ += are_kept ? count : 0;
    return bytes.substr(count);
}

void OdfWriter::open_paragraph()
{
    if (in_body_ && breaks_pending_ != 0) {
        end_pages_pending();
        start_.page_break_before = true;
        breaks_pending_ = 0;
    }
    // With its tab stops also where the text has no tab, for whoever goes on writing.
    text_->begin_paragraph(styles_->paragraph_style(
        looks_.of(*geometry_, geometries_.tab_stop_changes(), line_spacing_, *page_, start_)));
    is_open_ = true;
    body_is_empty_ = body_is_empty_ && !in_body_;
}

void OdfWriter::close_paragraph()
{
    if (is_open_) {
        text_->end_paragraph();
        is_open_ = false;
    }
}

void OdfWriter::break_paragraph()
{
    start_.continues = start_.continues || is_open_;
    start_.page_break_before = false;
    close_paragraph();
    leading_spaces_ = 0;
    ++breaks_pending_;
}

} // namespace

Result<std::unique_ptr<Writer>> make_odf_writer(WriteOdfDocument write_document, Output &output,
                                                const DocumentInfo &info,
                                                const WriterOptions &options)
{
    return std::unique_ptr<Writer>(
        std::make_unique<OdfWriter>(write_document, output, info, options));
}

} // namespace pfsdoc::writers

// HTML: one page by itself, which looks on the screen as the document's own page of fixed
// pitch does and prints as it.
//
// Each paragraph is a `p`, as wide as its text lines are in the document, so that a browser
// breaks the lines where the document has them. What the stylesheet cannot know stands in
// style attributes: see html_style.h. A page allows nothing but its stylesheet and these
// attributes; there is no script, and nothing is fetched.
//
//   header, footer  their lines are elements of these names: at the beginning and the end on
//                   the screen, on every page on paper. Footer lines have to wait for the
//                   document's end. A document has two lines of each at most, before its
//                   body; what is more, or later, counts as lost.
//   page breaks     an `hr`, which ends the page on paper. In the middle of a paragraph it
//                   cuts it into two `p`, the second one without a first line.
//   margins         those of the first paragraph of the body are the page's; a paragraph that
//                   has others tells them.
//   tab stops       a tab is as wide as LineLayout says: which stop it goes to depends on
//                   where the line was broken. In one thing browsers differ: a word longer
//                   than the line leaves the blanks and tabs before it on a line of their own.
//   commands        as in the text format: shown if they are asked for; a paragraph of
//                   nothing but hidden commands leaves nothing.
//   language        is not known, so none is claimed.
//
// Time is in proportion to the document. Held are one paragraph and the header and footer
// lines. Tests: tests/lib/writers/html_writer_test.cpp; tests/judges/html.sh prints pages.
#include "lib/base/printable.h"
#include "lib/base/utf8_output.h"
#include "lib/page/blank_bytes.h"
#include "lib/page/page_geometry.h"
#include "lib/page/paragraph_pieces.h"
#include "lib/page/running_lines.h"
#include "lib/writers/formats.h"
#include "lib/writers/html_style.h"
#include "lib/writers/html_text.h"
#include "vs_pfs.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace pfsdoc::writers {

namespace {

constexpr std::size_t usual_running_rows = 2;

// A style attribute, if it comes to hold anything.
class StyleAttribute {
public:
    void add(std::string_view property, std::size_t value)
    {
        text_.append(text_.empty() ? " style=\"" : ";").append(property).push_back(':');
        text_.append(std::to_string(value));
    }
    void add_unless(std::size_t usual, std::string_view property, std::size_t value)
    {
        if (value != usual) {
            add(property, value);
        }
    }
    std::string take()
    {
        if (!text_.empty()) {
            text_.push_back('"');
        }
        return std::exchange(text_, {});
    }

private:
    std::string text_;
};

void append_class(std::string &tag, page::LineAlignment alignment, bool is_double_spaced)
{
    std::string_view name;
    switch (alignment) {
    case page::LineAlignment::left: break;
    case page::LineAlignment::centre: name = "center"; break;
    case page::LineAlignment::right: name = "right"; break;
    }
    if (!name.empty() || is_double_spaced) {
        tag.append(" class=\"").append(name);
        tag.append(is_double_spaced && !name.empty() ? " " : "");
        tag.append(is_double_spaced ? "double\"" : "\"");
    }
}

// A browser lays out the lines itself: of ours only the tab gaps are wanted. They are made as they
// are asked for, since a text may have more than can be held.
class LaidOutTabs final : public TabWidths, private page::LineSink {
public:
    // The text, which must stay where it is, and whether lines of its paragraph come before it.
    void begin(std::string_view bytes, const page::LineGeometry &geometry, bool continues)
    {
        if (bytes.find(page::tab_byte) == std::string_view::npos) {
            return;
        }
        layout_.begin(geometry);
        rest_ = bytes;
        gaps_.clear();
        next_ = 0;
        first_word_ = 0;
        last_word_ = bytes.size();
        if (continues) {
            layout_.end_line(); // which leaves out the blanks that come next
        }
        if (geometry.alignment != page::LineAlignment::left) {
            first_word_ = bytes.find_first_not_of(page::gap_bytes); // npos: no words
            last_word_ = bytes.find_last_not_of(page::gap_bytes);
        }
    }

    // Those before and behind all words of a line that is not left-aligned are nothing: blanks
    // there do not count for alignment.
    page::TabGap next(std::size_t at) override
    {
        while (next_ == gaps_.size() && !rest_.empty()) {
            lay_out_more();
        }
        const page::TabGap gap = gaps_.at(next_++);
        return at < first_word_ || at > last_word_ ? page::TabGap{0, true} : gap;
    }

private:
    static constexpr std::size_t stretch_size = 4096;

    void lay_out_more()
    {
        gaps_.clear();
        next_ = 0;
        const std::string_view stretch = rest_.substr(0, stretch_size);
        layout_.text(stretch);
        rest_.remove_prefix(stretch.size());
        if (rest_.empty()) {
            layout_.end(false);
        }
    }
    void text(std::size_t, std::string_view) override {}
    void line_end() override {}
    void tab_gap(const page::TabGap &gap) override
    {
        gaps_.push_back(gap);
    }

    page::LineLayout layout_{*this};
    std::string_view rest_;
    std::vector<page::TabGap> gaps_; // of the stretch that was laid out last
    std::size_t next_ = 0;
    std::size_t first_word_ = 0;
    std::size_t last_word_ = 0;
};

class HtmlWriter final : public Writer {
public:
    HtmlWriter(Output &output, DocumentInfo info, const WriterOptions &options)
        : options_(options), info_(std::move(info)), html_(output, *options.code_page),
          text_(html_, *options.code_page)
    {
    }
    HtmlWriter(const HtmlWriter &) = delete;
    HtmlWriter &operator=(const HtmlWriter &) = delete;

    void paragraph(const Paragraph &paragraph) override;
    void page_break(uint32_t source) override;
    void block_begin(BlockKind kind) override;
    void block_end() override;
    void end_of_document() override;

private:
    void keep_running_line(const Paragraph &paragraph);
    void begin_page(const Paragraph *first);
    void write_head();
    void write_running_lines(std::string_view element, const std::vector<Paragraph> &lines);
    std::size_t running_rows(const std::vector<Paragraph> &lines);

    void write_paragraph(const Paragraph &paragraph);
    void show_piece(const Paragraph &paragraph, std::size_t index);
    void write_part(const Paragraph &paragraph, const page::LineGeometry &geometry);

    WriterOptions options_;
    DocumentInfo info_;
    base::Utf8Output html_;
    HtmlText text_;

    page::LineGeometries geometries_;
    LaidOutTabs tabs_;
    page::RunningLines running_lines_{page::usual_running_lines};
    uint64_t page_breaks_before_body_ = 0;
    bool page_begun_ = false;
    page::PageColumns page_; // the page's own

    ShownText shown_; // of the part of a paragraph that is at hand
    bool part_continues_ = false;
    bool has_only_text_ = false; // the paragraph
    std::string tag_;            // of one call
};

// ------------------------------------------------------------------------- blocks -----

void HtmlWriter::paragraph(const Paragraph &paragraph)
{
    if (running_lines_.block()) {
        keep_running_line(paragraph);
        return;
    }
    begin_page(&paragraph);
    write_paragraph(paragraph);
}

void HtmlWriter::keep_running_line(const Paragraph &paragraph)
{
    const bool is_empty = paragraph.bytes.find_first_not_of(page::blank_bytes) == std::string::npos;
    if (!options_.headers || is_empty) {
        return;
    }
    const bool is_late = page_begun_ && !running_lines_.in_footer();
    if (is_late || !running_lines_.keep(page::without_page_breaks(paragraph))) {
        losses_.add(Loss::header_footer, paragraph.source_begin);
    }
}

void HtmlWriter::page_break(uint32_t)
{
    if (!options_.page_breaks || running_lines_.block()) {
        return;
    }
    if (page_begun_) {
        html_.utf8("<hr class=\"page\">\n");
    } else {
        ++page_breaks_before_body_;
    }
}

void HtmlWriter::block_begin(BlockKind kind)
{
    running_lines_.begin(kind);
}

void HtmlWriter::block_end()
{
    running_lines_.end();
}

void HtmlWriter::end_of_document()
{
    const std::vector<Paragraph> &headers = running_lines_.headers();
    begin_page(headers.empty() ? nullptr : &headers.front());
    html_.utf8("</main>\n");
    write_running_lines("footer", running_lines_.footers());
    html_.utf8("</body>\n</html>\n");
    html_.finish();
}

// -------------------------------------------------------------------------- page ------

// Everything before the body's first paragraph, unless it is written. `first` tells the
// page's margins.
void HtmlWriter::begin_page(const Paragraph *first)
{
    if (page_begun_) {
        return;
    }
    page_ = first != nullptr ? page::page_columns(first->margins) : page::PageColumns{};
    write_head();
    html_.utf8("<body>\n");
    write_running_lines("header", running_lines_.headers());
    html_.utf8("<main>\n");
    page_begun_ = true;
    for (; page_breaks_before_body_ > 0; --page_breaks_before_body_) {
        page_break(0);
    }
}

void HtmlWriter::write_head()
{
    StyleAttribute style;
    style.add("--left", static_cast<std::size_t>(page_.left));
    style.add("--width", static_cast<std::size_t>(page_.width()));
    style.add_unless(usual_running_rows, "--head",
                     std::max(running_rows(running_lines_.headers()), usual_running_rows));
    style.add_unless(usual_running_rows, "--foot",
                     std::max(running_rows(running_lines_.footers()), usual_running_rows));
    std::string head = "<!DOCTYPE html>\n<html" + style.take() + ">\n<head>\n";
    head.append("<meta charset=\"utf-8\">\n"
                "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; "
                "style-src-elem 'sha256-")
        .append(html_stylesheet_hash)
        .append("'; style-src-attr 'unsafe-inline'; base-uri 'none'; form-action 'none'\">\n"
                "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
                "<meta name=\"color-scheme\" content=\"light dark\">\n"
                "<meta name=\"generator\" content=\"pfsdoc\">\n<title>");
    append_html_escaped(head, info_.title.empty() ? std::string(display_name(info_.kind))
                                                  : base::printable(info_.title));
    head.append("</title>\n<style>").append(html_stylesheet).append("</style>\n</head>\n");
    html_.utf8(head);
}

void HtmlWriter::write_running_lines(std::string_view element, const std::vector<Paragraph> &lines)
{
    if (lines.empty()) {
        return;
    }
    html_.utf8(std::string("<").append(element).append(">\n"));
    for (const Paragraph &line : lines) {
        write_paragraph(line);
    }
    html_.utf8(std::string("</").append(element).append(">\n"));
}

// Rows that the lines take at most.
std::size_t HtmlWriter::running_rows(const std::vector<Paragraph> &lines)
{
    std::size_t rows = 0;
    for (const Paragraph &line : lines) {
        const auto width = static_cast<std::size_t>(page::page_columns(line.margins).width());
        rows += 1 + (line.bytes.size() - 1) / width;
    }
    return rows;
}

// -------------------------------------------------------------------- paragraphs ------

void HtmlWriter::write_paragraph(const Paragraph &paragraph)
{
    add_common_losses(paragraph, options_);
    page::LineGeometry &geometry = geometries_.of(paragraph);
    part_continues_ = false;
    has_only_text_ = page::is_text_only(paragraph);
    shown_.clear();
    for (std::size_t i = 0; i < paragraph.pieces.size(); ++i) {
        const bool breaks_page = paragraph.pieces[i].kind == PieceKind::page_break;
        if (breaks_page && options_.page_breaks) {
            write_part(paragraph, geometry);
            html_.utf8("<hr class=\"page\">\n");
            geometry.first_line_indent = geometry.indent;
            part_continues_ = true;
            shown_.clear();
        } else if (!breaks_page) {
            show_piece(paragraph, i);
        }
    }
    write_part(paragraph, geometry);
}

void HtmlWriter::show_piece(const Paragraph &paragraph, std::size_t index)
{
    const Piece &piece = paragraph.pieces[index];
    if (piece.kind != PieceKind::command || options_.commands) {
        shown_.add(paragraph.piece_bytes(index), piece.attributes);
        shown_.add(page::cut_mark(piece), piece.attributes);
    }
}

void HtmlWriter::write_part(const Paragraph &paragraph, const page::LineGeometry &geometry)
{
    if (!has_only_text_ && !shown_.has_word()) {
        return;
    }
    const auto left = static_cast<std::size_t>(page_.left);
    const auto width = static_cast<std::size_t>(page_.width());
    StyleAttribute style;
    style.add_unless(left, "--left", geometry.left_margin);
    style.add_unless(width, "--width", geometry.width);
    style.add_unless(0, "--i", geometry.indent);
    style.add_unless(0, "--f", geometry.first_line_indent);
    const bool is_double_spaced = paragraph.line_spacing == VW_DOUBLE_SPACING;
    tag_.assign("<p");
    append_class(tag_, geometry.alignment, is_double_spaced);
    html_.utf8(tag_.append(style.take()).append(shown_.bytes().empty() ? "><br>" : ">"));
    if (!shown_.bytes().empty()) {
        tabs_.begin(shown_.bytes(), geometry, part_continues_);
        text_.write(shown_, tabs_,
                    geometry.alignment == page::LineAlignment::left && !part_continues_,
                    geometry.width);
    }
    html_.utf8("</p>\n");
}

// ------------------------------------------------------------------------ format ------

Result<std::unique_ptr<Writer>> make_writer(Output &output, const DocumentInfo &info,
                                            const WriterOptions &options)
{
    return std::unique_ptr<Writer>(std::make_unique<HtmlWriter>(output, info, options));
}

} // namespace

const Format html_format = {
    .name = "html",
    .extension = "html",
    .description = "a page for the browser, which also prints well",
    .options = WriterOption::page_breaks | WriterOption::headers | WriterOption::commands,
    .make_writer = make_writer,
    .make_event_writer = nullptr,
    .wants_offsets = false,
};

} // namespace pfsdoc::writers

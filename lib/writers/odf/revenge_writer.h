// Tells blocks to any document generator of librevenge.
//
// Such a generator wants to know a page before the first thing on it, so the header and footer
// lines, of which a document has few, are held until the body begins: then the page's margins
// are the ones of the first paragraph that came, and the margins above and below it leave room
// for the lines. Everything else goes out as it comes.
//
//   page breaks   a property of the paragraph after the break. A break in mid-paragraph cuts
//                 it in two, the second without a first-line indent. Breaks that follow each
//                 other, and those at either end of the document, have empty paragraphs
//                 between or around them, as their pages do.
//   blanks        all but the first of a run are told one by one, as generators want it; so
//                 are those at a paragraph's start. Blanks at a paragraph's end are left out,
//                 and those at the start of one that is not left-aligned.
//   commands      hidden unless WriterOptions::commands asks for them. A paragraph of nothing
//                 but hidden commands is left out, and so is an empty header or footer line.
//
// A generator that holds what it is told until the document ends would hold the document, so
// it can be given a portion of the body only: when that is full, the next paragraph goes to
// another generator. Each is told a whole document, the page with its header and footer as
// much as the first, and then a paragraph that the document does not have, in which the styles
// of runs so far are repeated.
//
// Calls balance whatever the blocks are. Tests: tests/lib/writers/revenge_writer_test.cpp and,
// for the portions, tests/lib/writers/odf_portions_test.cpp.
#pragma once

#include "lib/page/page_geometry.h"
#include "lib/writers/odf/revenge_styles.h"
#include "pfsdoc/writer.h"

#include <librevenge/librevenge.h>

#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace pfsdoc::writers {

// Gives a writer one generator after the other.
class Portions {
public:
    virtual ~Portions() = default;
    // The generator for the next portion; the one before it has been told its endDocument.
    // In all but the first the body begins with a paragraph that is not part of the document:
    // it begins the page, and its runs have the styles that runs have had before.
    virtual librevenge::RVNGTextInterface &next() = 0;
};

// What to know of a generator. It may hold what it is told in memory, which is counted in
// elements: paragraphs, runs of text that look alike, tabs and blanks that are told one by
// one, and every 256 bytes of text. Styles count as several.
struct GeneratorTraits {
    static constexpr uint64_t unlimited = std::numeric_limits<uint64_t>::max();

    // TooManyElements is thrown where one generator would be told more.
    uint64_t most_elements = unlimited;
    // Properties need not be told again once a style with a number has been defined.
    bool keeps_styles = false;
    // For generators that keep styles. Where these many elements of the body have been told,
    // the next paragraph goes to the next generator, unless there is more than these to be
    // repeated in it: a document with a large header costs what its size says too.
    Portions *portions = nullptr;
    uint64_t portion_elements = unlimited;
};

class TooManyElements {};

class RevengeWriter final : public Writer {
public:
    // A document has two lines of each; more than this are not held.
    static constexpr std::size_t max_block_lines = 16;

    // The document must outlive the writer, or the call for the next portion.
    RevengeWriter(librevenge::RVNGTextInterface &document, const DocumentInfo &info,
                  const WriterOptions &options, const GeneratorTraits &traits = {});
    RevengeWriter(const RevengeWriter &) = delete;
    RevengeWriter &operator=(const RevengeWriter &) = delete;

    void paragraph(const Paragraph &paragraph) override;
    void page_break(uint32_t source) override;
    void block_begin(BlockKind kind) override;
    void block_end() override;
    void end_of_document() override;

private:
    void hold_line(const Paragraph &paragraph);
    void begin_document();
    void end_document();
    void begin_body();
    void open_page();
    bool portion_is_full() const;
    void begin_portion();
    void write_header();
    void write_footer();
    void write_empty_lines(std::size_t count);
    void end_pages_pending();
    void write_empty_paragraph(bool page_break_before);
    void tell_paragraph(const Paragraph &paragraph, ParagraphStart start);

    void write_paragraph(const Paragraph &paragraph);
    void write_piece(const Paragraph &paragraph, std::size_t index);
    void break_paragraph();
    void open_paragraph();
    void close_paragraph();
    void open_span(AttributeSet attributes);
    void close_span();

    void write_text(std::string_view bytes, AttributeSet attributes);
    std::string_view hold_blanks(std::string_view bytes, AttributeSet attributes);
    std::string_view write_gap(std::string_view bytes);
    void write_spaces(std::size_t count);
    void flush_text();
    void count_elements(std::size_t count);
    uint64_t elements() const
    {
        return elements_ + styles_.elements();
    }

    librevenge::RVNGTextInterface *document_;
    librevenge::RVNGPropertyList metadata_;
    WriterOptions options_;
    RevengeStyles styles_;
    GeneratorTraits traits_;

    // The portion.
    uint64_t elements_ = 0; // without styles
    // With styles, what stands in the other portions too: the header and footer first of all.
    uint64_t repeated_elements_ = 0;

    // The document.
    std::optional<BlockKind> block_; // that lines belong to
    std::vector<Paragraph> headers_;
    std::vector<Paragraph> footers_;
    std::optional<page::PageColumns> page_; // of the first paragraph
    bool in_body_ = false;                  // the page is open, its header and footer are written
    bool body_is_empty_ = true;
    uint64_t breaks_pending_ = 0; // before the next paragraph

    struct InParagraph {
        const Paragraph *paragraph = nullptr;
        ParagraphStart start;
        std::size_t visible_end = 0; // of its bytes, without the blanks that nobody sees
        bool is_open = false;
        std::size_t held_blanks = 0; // before its first character
        bool after_gap = false;      // or at its start
        std::optional<AttributeSet> span;
        std::string text; // not told yet, UTF-8
    };
    InParagraph now_;
};

} // namespace pfsdoc::writers

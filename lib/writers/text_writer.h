// Plain text, UTF-8, as the page shows it: the writer behind `pfsdoc text`.
//
// Paragraphs have come as one string each; here they are wrapped to the document's margins
// again, with the left margin and the indents as spaces, so that the columns are the page's.
// The right margin is the last column of the text: it is what the stored lines are judged by
// when they are joined, so a paragraph that was stored in full lines falls into the same
// lines again. Header lines come first, then an empty line, the body, an empty line and the
// footer lines. Lines never end in spaces; text that is not empty ends with a line end.
//
//   page breaks   a form feed, directly before the next line. Without WriterOptions::page_breaks
//                 they leave no trace: a paragraph goes on over them.
//   commands      hidden unless WriterOptions::commands asks for them; then text like any
//                 other, one that is cut ending in "...". A paragraph of nothing but hidden
//                 commands leaves no line. A centre or right-align command in front of a
//                 paragraph's text aligns all of it, shown or not.
//   empty lines   empty paragraphs are empty lines; empty header and footer lines are left
//                 out, since they are often reported where the document has none.
//   margins       that cannot be (right not beyond left, negative, or beyond
//                 widest_page_columns) count as the ones that new documents start with. An
//                 indent leaves at least one column of the line.
//   not shown     attributes and double spacing: plain text has no way to say them that is
//                 not in the way of reading and searching.
//
// How lines are filled, tab stops included, is line_layout.h's matter; which character a byte
// is, code_page.h's. The writer takes time in proportion to the document and holds one
// paragraph and one line, never the text. Tests: tests/lib/writers/text_writer_test.cpp and, for
// hostile documents, tests/lib/writers/text_limits_test.cpp.
#pragma once

#include "lib/base/utf8_output.h"
#include "lib/page/line_layout.h"
#include "lib/page/page_geometry.h"
#include "lib/page/running_lines.h"
#include "lib/reading/paragraph_collector.h"
#include "pfsdoc/events.h"
#include "pfsdoc/output.h"
#include "pfsdoc/writer.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace pfsdoc::writers {

// Writes blocks as text.
class TextBlockWriter final : public Writer {
public:
    TextBlockWriter(Output &output, const WriterOptions &options);
    TextBlockWriter(const TextBlockWriter &) = delete;
    TextBlockWriter &operator=(const TextBlockWriter &) = delete;

    void paragraph(const Paragraph &paragraph) override;
    void page_break(uint32_t source) override;
    void block_begin(BlockKind kind) override;
    void block_end() override;
    void end_of_document() override;

private:
    class Lines final : public page::LineSink {
    public:
        explicit Lines(base::Utf8Output &output) : output_(output) {}

        void text(std::size_t spaces, std::string_view bytes) override;
        void line_end() override;
        void tab_gap(const page::TabGap &) override {}

    private:
        base::Utf8Output &output_;
    };

    void add_losses(const Paragraph &paragraph);
    bool shows_page_breaks() const;
    void write_paragraph(const Paragraph &paragraph);
    void lay_out_piece(const Paragraph &paragraph, std::size_t index);
    void lay_out_lines(const Paragraph &paragraph, std::size_t index);

    WriterOptions options_;
    base::Utf8Output text_;
    Lines lines_{text_};
    page::LineGeometries geometries_;
    page::LineLayout layout_{lines_, page::TabGaps::not_wanted};
    page::RunningLines running_lines_; // the footers
    std::size_t next_line_ = 0;        // of the paragraph's line starts
};

// The same from events.
class TextWriter final : public EventSink {
public:
    explicit TextWriter(Output &output, const WriterOptions &options = {});

    // Always 0: no reason to stop.
    int32_t on_event(const Event &event, uint32_t offset) override;
    void on_characters(std::string_view bytes) override;

    // Writes out what is held back. The end of the document does so too; once is enough.
    void finish();

private:
    TextBlockWriter blocks_;
    reading::ParagraphCollector collector_;
};

} // namespace pfsdoc::writers

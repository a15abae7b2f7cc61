// The document tree of pandoc as JSON, for everything that pandoc can write:
// `pfsdoc convert -t pandoc LETTER | pandoc -f json -o letter.docx`.
//
//   paragraphs       Para, an empty one with nothing in it: pandoc leaves those out unless its
//                    extension empty_paragraphs is on
//   attributes       Strong, Emph, Underline, Superscript, Subscript, in this order from the
//                    outside where they begin together
//   alignment        a Div around the paragraph with the class "center" or "right", the CSS
//                    that does it in HTML and EPUB, and a custom-style ("Center", "Right"),
//                    which DOCX and ODT take for a style's name
//   page breaks      a Div of the class "page-break" with a HorizontalRule in it, so that
//                    every format shows something and a filter can do better
//   header, footer   a Div of the class "header" or "footer" for each line, at the top and at
//                    the bottom
//   title            the document's name
//   blanks           a Space, however many, as everywhere in pandoc; a no-break space stays
//                    part of its word
//   tabs             become a Space each, and count as lost
//   not shown        indents, spacing and margins: counted
//
// The tree is that of pandoc 2.17 (API 1.22); later versions read it too. It is written as it
// comes, a block a line, and never held. Tests: tests/lib/writers/pandoc_writer_test.cpp,
// tests/judges/pandoc.sh.
#pragma once

#include "lib/page/attribute_nesting.h"
#include "lib/page/line_layout.h"
#include "lib/page/paragraph_words.h"
#include "lib/writers/flow_writer.h"

#include <cstddef>
#include <string>

namespace pfsdoc::writers {

class PandocWriter final : public FlowWriter, private page::WordSink {
public:
    PandocWriter(Output &output, const DocumentInfo &info, const WriterOptions &options);

private:
    void write_paragraph(const Paragraph &paragraph) override;
    void write_page_break() override;
    void write_end() override;
    void word(const page::Word &word) override;
    void blanks(std::size_t count, AttributeSet attributes) override;
    void page_break_in_text() override;

    void begin_paragraph();
    void end_paragraph();
    bool begin_div();
    void begin_inline();
    void write_str(std::string_view utf8);
    void close_unwanted(AttributeSet wanted);
    void open_wanted(AttributeSet wanted);

    page::AttributeNesting nesting_;
    page::LineAlignment alignment_ = page::LineAlignment::left;
    bool paragraph_open_ = false;
    bool in_div_ = false;
    bool has_elder_ = false; // something stands before the next element of the list
    std::string json_;       // what one call writes
};

} // namespace pfsdoc::writers

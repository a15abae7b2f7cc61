// Markdown, as CommonMark reads it, with the extensions of GitHub in mind: a line for each
// paragraph, an empty line between two.
//
//   bold, italic     emphasis; see below
//   page breaks      a rule, "***". The other way to write one, "---", makes a heading of the
//                    text above it and metadata of what follows at the top of a file
//   header, footer   paragraphs at the top and at the bottom. No rule sets them apart, since a
//                    rule is a page break
//   blanks           stay as they are between words, where whatever shows the text makes one
//                    of several; at the edges of a line they would mean code or a line break
//                    and are left out. A no-break space is "&nbsp;"
//   tabs             become a blank each, and count as lost
//   empty lines      leave no trace: an empty line between paragraphs stands there anyway
//   not shown        all other attributes, alignment, indents, spacing and margins: counted
//
// Everything else that could mean something is escaped, but only where it could: a file that
// nobody reads as it stands needs no Markdown. A bracket that opens is what makes a link, so
// one that closes is harmless; "<" and "&" matter in front of what could be a tag, an address or
// an entity; "#", "-", "+", ">" and "1." at the beginning of a line; "www." and "://" where readers
// make links of bare addresses. Mail's bare addresses GitHub finds however they are written.
//
// Emphasis. Whether asterisks open or close depends on their neighbours: they open only if no
// blank follows, and they must not stand between a letter and a punctuation mark, which would
// then belong to the other side. Blanks are outside of the marks already (paragraph_words.h).
// For the rest a letter in the way is written as a character reference, which ends and begins
// with punctuation and reads as the letter: 4&#48;**%**. Bold is two asterisks. Italic is one,
// but an underscore in a paragraph that has bold text too: so two runs of marks that meet
// never become one, and no mark can be taken for the end of another. An underscore needs
// punctuation or a blank outside of it on top.
//
// Tests: tests/lib/writers/markdown_writer_test.cpp for what is written, and with libcmark for
// what is read again tests/lib/writers/markdown_reread_test.cpp; tests/judges/markdown.sh.
#pragma once

#include "lib/page/attribute_nesting.h"
#include "lib/page/paragraph_words.h"
#include "lib/writers/flow_writer.h"

#include <cstddef>
#include <string>

namespace pfsdoc::writers {

class MarkdownWriter final : public FlowWriter, private page::WordSink {
public:
    MarkdownWriter(Output &output, const WriterOptions &options);

private:
    void write_paragraph(const Paragraph &paragraph) override;
    void write_page_break() override;
    void write_end() override;
    void word(const page::Word &word) override;
    void blanks(std::size_t count, AttributeSet attributes) override;
    void page_break_in_text() override;

    void begin_word(const page::Word &word);
    void change_attributes(const page::Word &word, std::size_t part);
    bool opening_needs_punctuation(std::string_view marks, const page::Word &word,
                                   std::size_t part) const;
    bool closing_needs_punctuation(std::string_view marks) const;
    void append_part(const page::Word &word, std::size_t part);
    void append_character(const page::Word &word, std::size_t at, std::size_t length);
    void append_reference(unsigned character);
    void end_line();
    std::string_view mark(AttributeCode code) const;

    page::AttributeNesting nesting_;
    std::string_view italic_mark_;
    bool line_open_ = false;

    // The word in progress, as it is written; of a long one the end.
    std::string raw_;
    std::string closing_marks_;
    std::string opening_marks_;
    std::size_t escaped_at_ = 0; // in the word: what the beginning of a line needs
    bool word_has_at_sign_ = false;
    bool next_as_reference_ = false;       // the part's first character
    std::size_t last_character_begin_ = 0; // in raw_
    unsigned last_character_ = 0;
};

} // namespace pfsdoc::writers

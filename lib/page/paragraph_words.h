// A paragraph as words and the blanks between them, for formats in which blanks only separate:
// what such a format needs to know at a blank is what stands on both sides of it.
//
// A word is everything between two blanks, in UTF-8, cut into parts where its attributes
// change; it comes whole, so that a writer can look ahead within it. Blanks come once for
// each gap, and never at the beginning or the end of a line. They have the attributes that
// the characters on both sides and all of themselves share: a blank at the edge of a bold
// phrase belongs to neither side, and is written outside of the phrase.
//
// A tab counts as one blank. Commands are words of the text where WriterOptions::commands
// shows them, one that is cut ending in "...". Where they are hidden the text on both sides
// meets. A page break ends a word, and is reported where WriterOptions::page_breaks asks for it.
// Holds one word. Tests: tests/lib/page/paragraph_words_test.cpp.
#pragma once

#include "pfsdoc/paragraph.h"
#include "pfsdoc/writer.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace pfsdoc::page {

struct WordPart {
    std::size_t begin; // index into the word's text
    AttributeSet attributes;

    bool operator==(const WordPart &) const = default;
};

// At least one character, and one part.
struct Word {
    std::string utf8;
    std::vector<WordPart> parts; // one ends where the next begins

    std::size_t part_end(std::size_t index) const
    {
        return index + 1 < parts.size() ? parts[index + 1].begin : utf8.size();
    }
    std::string_view part_text(std::size_t index) const
    {
        const std::size_t begin = parts[index].begin;
        return std::string_view(utf8).substr(begin, part_end(index) - begin);
    }
};

// What it is given is valid during the call.
class WordSink {
public:
    virtual ~WordSink() = default;
    virtual void word(const Word &word) = 0;
    // Between two words of a line.
    virtual void blanks(std::size_t count, AttributeSet attributes) = 0;
    // Ends a line: what follows is the next one's beginning.
    virtual void page_break_in_text() = 0;
};

// Attributes that are not in `supported` are as if they were not there.
void split_into_words(const Paragraph &paragraph, const WriterOptions &options,
                      AttributeSet supported, WordSink &sink);

} // namespace pfsdoc::page

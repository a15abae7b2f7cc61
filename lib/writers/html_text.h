// The text of one block as HTML: characters that mean something there escaped, attributes as
// elements, tabs and hidden blanks as spans, words that a browser would break kept whole.
//
// Most text needs none of it, so it is looked through for bytes that do, and what lies
// between them is written as it is. A tab is written by itself, everything else together
// with the word around it: whether a browser would break a word shows in its neighbouring
// bytes, and the element that forbids it must begin before the word.
//
// What complicates it is that attributes may change anywhere, in a word too. Elements are
// not written where an attribute changes but before the next text, in one fixed order from
// the outside in, so that they nest whatever the document does, and none is empty.
//
//   attributes  b, i, u: the documents tell how text looks, not what it means, which
//               is what these elements say. sub, sup.
//   breaks      the documents break lines at blanks alone. Browsers also break after hyphens
//               and other characters, as Unicode's line breaking has it; where two bytes may
//               be parted, the word is kept whole. A word too many costs nothing but its
//               element, so characters that are not letters are taken for breakable.
//
// Tests: tests/lib/writers/html_writer_test.cpp.
#pragma once

#include "lib/base/utf8_output.h"
#include "lib/page/line_layout.h"
#include "pfsdoc/code_page.h"
#include "pfsdoc/paragraph.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace pfsdoc::writers {

// Appends UTF-8 with the characters escaped that mean something in HTML text.
void append_html_escaped(std::string &html, std::string_view utf8);

// What is shown of a paragraph, or of what stands between two page breaks in it: a view of the
// paragraph's bytes, or a copy where something between them is hidden.
class ShownText {
public:
    struct Run {
        std::size_t begin; // it ends where the next one begins
        AttributeSet attributes;
    };

    void clear();
    // The bytes must stay where they are for as long as this is used.
    void add(std::string_view bytes, AttributeSet attributes);

    std::string_view bytes() const
    {
        return bytes_;
    }
    const std::vector<Run> &runs() const
    {
        return runs_;
    }
    bool has_word() const;

private:
    std::string_view bytes_;
    std::string copy_; // empty while the bytes are the paragraph's
    std::vector<Run> runs_;
};

// The widths of a text's tabs, one after the other.
class TabWidths {
public:
    virtual ~TabWidths() = default;
    // Of the next tab, which is at this position.
    virtual page::TabGap next(std::size_t at) = 0;
};

class HtmlText {
public:
    // The output must outlive it.
    HtmlText(base::Utf8Output &output, const CodePage &code_page);

    // `outer_blanks_shown` is false where blanks before the text and behind it have no width. A
    // word of more columns than a line has may be broken.
    void write(const ShownText &text, TabWidths &tabs, bool outer_blanks_shown,
               std::size_t line_columns);

private:
    // What a byte is for the line breaking of browsers.
    enum class ByteClass : uint8_t {
        blank,
        tab,
        letter,
        neutral,     // parted from what follows only if that opens
        closing,     // never parted from what is before it
        exclamation, // closing, but parted from what follows
        opening,     // never parted from what follows
        hyphen,      // parted from all that follows but what closes
        other,       // parted from anything
    };
    struct ClassOfAscii;
    static const std::array<ClassOfAscii, 7> ascii_classes;
    struct Range {
        std::size_t begin;
        std::size_t end;
    };

    static ByteClass class_of(uint8_t byte, char16_t character);
    static bool may_part(ByteClass before, ByteClass after);
    ByteClass byte_class(std::size_t at) const;
    bool ends_word(std::size_t at) const;

    Range visible_range(bool outer_blanks_shown) const;
    std::size_t next_stop(std::size_t at) const;
    Range word_around(std::size_t at, std::size_t written) const;
    bool may_be_broken(const Range &word) const;
    void write_visible(const Range &range, TabWidths &tabs);
    void write_word(const Range &word);
    std::size_t write_tab(const Range &range, const page::TabGap &gap);
    void write_hidden(const Range &blanks);
    void write_plain(const Range &range);
    void write_escaped(std::size_t at);
    // The attributes at a place, which must not lie before the last one asked for.
    void go_to(std::size_t at);
    void set_elements(uint8_t wanted);

    base::Utf8Output &output_;
    std::array<ByteClass, 256> classes_{};
    std::array<bool, 256> is_stop_{}; // bytes that writing has to look at

    const ShownText *text_ = nullptr; // during a call of write
    std::size_t line_columns_ = 0;
    std::size_t run_ = 0;
    uint8_t open_elements_ = 0; // bit n stands for entry n of the table of elements
    bool in_word_ = false;
    std::string tags_; // of one call
};

} // namespace pfsdoc::writers

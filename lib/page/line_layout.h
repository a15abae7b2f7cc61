// Fills the lines of one paragraph after the other: wrapping, indents, alignment, tab stops.
//
// Text comes in stretches of any size and is cut into words. A word is put on the line when
// it is complete; if it does not fit, the line is written and the word begins the next one.
// Blanks between words are only counted until the word after them is put down, so that those
// at a wrap, and at a line's end, vanish. A zero byte is a blank of the code page and is
// treated as one.
//
// What complicates it:
//   Long words    A word longer than the line stands alone, unbroken. It is written as it
//                 comes, so that it need not be held.
//   Tabs          A tab goes to the next stop beyond the column reached, or, where there is
//                 none before the right margin, to the next multiple of fallback_tab_columns
//                 from the left margin; where that is not on the line either, the tab ends
//                 the line. A word that does not fit after a tab that nothing precedes drops
//                 the tab rather than leave an empty line.
//   Decimal stops The word after the tab ends at the stop, or has its first point there;
//                 blanks before the word are dropped. Where there is no room to the left, the
//                 word begins a blank after the text before.
//   Alignment     Centred and right-aligned lines lie between the margins; their own
//                 outer blanks and the indents do not count.
//
// Time is in proportion to the text, whatever it holds. Tests: tests/lib/page/line_layout_test.cpp.
#pragma once

#include "lib/base/utf8_output.h"

#include <compare>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace pfsdoc::page {

enum class LineAlignment { left, centre, right };

struct TabColumn {
    std::size_t column; // from the left margin
    bool decimal;

    auto operator<=>(const TabColumn &) const = default;
};

// What became of a tab, for hosts that draw it as a space of its own.
struct TabGap {
    uint16_t columns;  // from where it stands to what follows
    bool takes_blanks; // those behind it are not shown

    bool operator==(const TabGap &) const = default;
};

// Columns, and counted from the left margin except for the margin itself.
struct LineGeometry {
    std::size_t left_margin = 0;
    std::size_t width = 0; // at least 1
    std::size_t first_line_indent = 0;
    std::size_t indent = 0;
    LineAlignment alignment = LineAlignment::left;
    std::vector<TabColumn> tab_stops; // in any order; those beyond the width are not used

    auto operator<=>(const LineGeometry &) const = default;
};

class LineLayout {
public:
    static constexpr std::size_t fallback_tab_columns = 8;

    explicit LineLayout(base::Utf8Output &output);

    void begin(LineGeometry geometry);
    void text(std::string_view bytes);
    // Ends the line if there is anything on it. What follows is a line of its own, without
    // the blanks it begins with.
    void end_line();
    // Ends the paragraph. One that has left no line leaves an empty one if asked to.
    void end(bool empty_line);
    // Of the paragraph's tabs in order, complete when it has ended. A tab that ends its line
    // takes what is left of it; one that was dropped has no columns.
    const std::vector<TabGap> &tab_gaps() const
    {
        return tab_gaps_;
    }

private:
    std::size_t column() const;
    void add_to_word(std::string_view part);
    void put_long_word();
    std::size_t put_words(std::string_view bytes);
    void end_word();
    void put_word();
    std::size_t word_column() const;
    std::size_t decimal_word_column() const;
    void blank();
    void tab();
    void set_last_gap(std::size_t end);
    void drop_tabs_of_line();
    TabColumn next_tab_stop(std::size_t column) const;
    void start_line(std::size_t indent);
    void make_room();
    void write_line();
    std::size_t alignment_blanks(std::size_t length) const;

    base::Utf8Output &output_;
    LineGeometry geometry_;
    bool line_written_ = false; // of this paragraph

    std::string line_; // what stands on the line, from the left margin on
    std::size_t line_indent_ = 0;
    bool line_has_text_ = false;
    bool words_untried_ = false;     // by put_words, on this line
    bool long_word_on_line_ = false; // written already; the line takes nothing more
    bool skip_blanks_ = false;       // the line follows a page break or a tab

    std::string word_; // what has come of a word that is not put down yet
    bool in_long_word_ = false;
    std::size_t blanks_ = 0;                  // before the word
    std::optional<std::size_t> decimal_stop_; // that the word goes to

    std::vector<TabGap> tab_gaps_;
    std::size_t line_first_gap_ = 0; // of this line's tabs
};

} // namespace pfsdoc::page

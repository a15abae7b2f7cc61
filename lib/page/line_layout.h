// Fills the lines of one paragraph after the other: wrapping, indents, alignment, tab stops.
//
// Text comes in stretches of any size and is cut into words. Most lines are filled at once: with
// all words that fit. What remains is a word at the end of a stretch, beside a tab, or longer than
// a line: it is held as views of the stretches that it lies in, and put on the line when it is
// complete. Nothing is copied. A word that does not fit ends the line and begins the next one.
// Spaces between words are only counted until the word after them is put down, so that those
// at a wrap, and at a line's end, vanish. A zero byte is a space of the code page and is
// treated as one.
//
// What complicates it:
//   Long words    A word longer than the line stands alone, unbroken. It is handed on as it
//                 comes, so that it need not be held.
//   Tabs          A tab goes to the next stop beyond the column reached, or, where there is
//                 none before the right margin, to the next multiple of fallback_tab_columns
//                 from the left margin; where that is not on the line either, the tab ends
//                 the line. A word that does not fit after a tab that nothing precedes drops
//                 the tab rather than leave an empty line.
//   Decimal stops The word after the tab ends at the stop, or has its first point there;
//                 spaces before the word are dropped. Where there is no room to the left, the
//                 word begins a space after the text before.
//   Alignment     Centred and right-aligned lines lie between the margins; their own
//                 outer spaces and the indents do not count. They are held until they end.
//
// Time is in proportion to the text, whatever it holds. Tests: tests/lib/page/line_layout_test.cpp.
#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace pfsdoc::page {

enum class LineAlignment { left, centre, right };

struct TabColumn {
    std::size_t column; // from the left margin
    bool decimal;

    auto operator<=>(const TabColumn &) const = default;
};

// What became of a tab, for formats that draw it as a space of its own.
struct TabGap {
    uint16_t columns;  // from where it stands to what follows
    bool takes_spaces; // those behind it are not shown

    bool operator==(const TabGap &) const = default;
};

// Columns, and counted from the left margin except for the margin itself.
struct LineGeometry {
    std::size_t left_margin = 0;
    std::size_t width = 0; // at least 1
    std::size_t first_line_indent = 0;
    std::size_t indent = 0;
    LineAlignment alignment = LineAlignment::left;
    std::vector<TabColumn> tab_stops{}; // in any order; those beyond the width are not used

    auto operator<=>(const LineGeometry &) const = default;
};

// Receives a paragraph as lines, and in the same order its tabs.
class LineSink {
public:
    virtual ~LineSink() = default;
    // Spaces, and bytes of the paragraph behind them: words and the spaces between these.
    virtual void text(std::size_t spaces, std::string_view bytes) = 0;
    virtual void line_end() = 0;
    // A tab that ends its line takes what is left of it; one that was dropped has no columns.
    virtual void tab_gap(const TabGap &gap) = 0;
};

// Whether a sink is to be given them. Those of a line are held, and a line without a right margin
// may have any number.
enum class TabGaps { not_wanted, wanted };

class LineLayout {
public:
    static constexpr std::size_t fallback_tab_columns = 8;

    // The sink must outlive it.
    explicit LineLayout(LineSink &sink, TabGaps tab_gaps = TabGaps::wanted)
        : sink_(sink), tab_gaps_(tab_gaps)
    {
    }

    void begin(const LineGeometry &geometry);
    // The bytes must stay where they are until the paragraph has ended.
    void text(std::string_view bytes);
    // Ends the line if there is anything on it. What follows is a line of its own, without
    // the spaces it begins with.
    void end_line();
    // Ends the paragraph. One that has left no line leaves an empty one if asked to.
    void end(bool empty_line);

private:
    // Text that stands on the line.
    struct Run {
        std::size_t column;
        std::string_view bytes;
    };

    void text_without_tabs(std::string_view bytes);
    std::size_t put_words(std::string_view bytes);
    std::size_t add_to_word(std::string_view bytes);
    void put_long_word();
    void end_word();
    void put_word();
    std::size_t word_column() const;
    std::size_t decimal_word_column() const;
    std::size_t column() const;
    void put(std::size_t column, std::string_view bytes);
    void add_spaces(std::size_t count);
    void tab();
    void add_gap(std::size_t columns, bool takes_spaces);
    void set_last_gap(std::size_t end);
    void drop_tabs_of_line();
    void hand_on_gaps();
    TabColumn next_tab_stop(std::size_t column) const;
    void start_line(std::size_t indent);
    void make_room();
    void write_line();
    void hand_on_runs();
    std::size_t alignment_spaces() const;

    LineSink &sink_;
    TabGaps tab_gaps_;
    LineGeometry geometry_;
    bool line_written_ = false; // of this paragraph

    std::size_t column_ = 0;      // that the line has reached, from the left margin
    std::size_t line_indent_ = 0; // of this line
    bool line_has_text_ = false;
    std::size_t text_begin_ = 0; // columns of the line's text, if it has any
    std::size_t text_end_ = 0;
    bool tab_since_text_ = false;
    std::vector<Run> runs_;          // not handed on yet; of a left-aligned line one at most
    std::size_t handed_on_to_ = 0;   // the column behind those that were
    bool line_begun_ = false;        // in the sink
    bool long_word_on_line_ = false; // handed on already; the line takes nothing more
    bool skip_spaces_ = false;       // the line follows a page break or a tab

    std::vector<std::string_view> word_; // what has come of a word that is not put down yet
    std::size_t word_length_ = 0;
    bool in_long_word_ = false;
    std::size_t spaces_ = 0;                  // before the word
    std::optional<std::size_t> decimal_stop_; // that the word goes to

    std::vector<TabGap> gaps_; // of this line's tabs, those that may still change
};

} // namespace pfsdoc::page

// A word goes on the line if its last column is not beyond the right margin; readers apply the
// same test to the next line's first word to distinguish a soft line end from a hard one, so the
// results must agree to the column.
//
// Three things complicate it. Readers see a word end at the first space, so of a command
// with an argument only the part before its space counts. The reader adds the one space at which
// a line is broken, so it is not stored; if there were more, all are stored for a reader that
// adds none after a stored space. And a suppressed stretch ends with its line, so the line is
// broken after it wherever it is.
// Test: tests/builder/word_wrap_test.cpp.
#include "builder/word_wrap.h"

namespace pfs_builder {
namespace {

// Spaces and the word after them, as indices into the paragraph's cells.
struct Unit {
    std::size_t gap_begin;
    std::size_t word_begin;
    std::size_t end;
};

Unit unit_at(const std::vector<Cell> &cells, std::size_t position)
{
    Unit unit{position, position, position};
    while (unit.word_begin < cells.size() && is_space(cells[unit.word_begin])) {
        ++unit.word_begin;
    }
    unit.end = unit.word_begin;
    while (unit.end < cells.size() && !is_space(cells[unit.end])) {
        ++unit.end;
    }
    return unit;
}

// The width of the cells in columns; suppressed ones take none.
int columns_of(const std::vector<Cell> &cells, std::size_t begin, std::size_t end)
{
    int columns = 0;
    for (std::size_t i = begin; i < end; ++i) {
        columns += cells[i].hidden ? 0 : 1;
    }
    return columns;
}

// The end of the word as a reader that looks ahead sees it.
std::size_t visible_word_end(const std::vector<Cell> &cells, const Unit &unit)
{
    std::size_t end = unit.word_begin;
    while (end < unit.end && cells[end].bytes.front() != space) {
        ++end;
    }
    return end;
}

class Wrapper {
public:
    Wrapper(const Paragraph &paragraph, const WrapRules &rules)
        : paragraph_(paragraph), cells_(paragraph.cells), rules_(rules),
          column_(rules.left_margin + paragraph.first_indent)
    {
    }

    std::vector<StoredLine> wrap()
    {
        for (std::size_t position = 0; position < cells_.size();) {
            const Unit unit = unit_at(cells_, position);
            if (must_break_before(unit)) {
                break_before(unit);
            } else {
                column_ += static_cast<int>(unit.word_begin - unit.gap_begin);
            }
            column_ += columns_of(cells_, unit.word_begin, unit.end);
            position = unit.end;
        }
        add_line(cells_.size(), false);
        return lines_;
    }

private:
    bool must_break_before(const Unit &unit) const
    {
        if (unit.gap_begin == line_begin_ || unit.word_begin == unit.end) {
            return false; // nothing precedes it, or nothing follows
        }
        if (cells_[unit.gap_begin - 1].hidden) {
            return true;
        }
        const int gap = static_cast<int>(unit.word_begin - unit.gap_begin);
        const int word = columns_of(cells_, unit.word_begin, visible_word_end(cells_, unit));
        const bool all_hidden = word == 0; // it must stay with the text before it
        return !all_hidden && column_ + gap - 1 + word > rules_.right_margin;
    }

    void break_before(const Unit &unit)
    {
        const std::size_t gap = unit.word_begin - unit.gap_begin;
        const bool space_is_added = rules_.join_always_adds || gap == 1;
        add_line(space_is_added ? unit.word_begin - 1 : unit.word_begin, true);
        line_begin_ = unit.word_begin;
        column_ = rules_.left_margin + paragraph_.left_indent;
    }

    void add_line(std::size_t end, bool wrapped)
    {
        const int indent = lines_.empty() ? paragraph_.first_indent : paragraph_.left_indent;
        lines_.push_back({indent, line_begin_, end, wrapped});
    }

    const Paragraph &paragraph_;
    const std::vector<Cell> &cells_;
    const WrapRules &rules_;
    int column_;
    std::size_t line_begin_ = 0;
    std::vector<StoredLine> lines_;
};

// Whether a stretch that ends at `end` is followed by one space and text.
bool goes_on_after(const std::vector<Cell> &cells, std::size_t end)
{
    return end + 1 < cells.size() && is_space(cells[end]) && !is_space(cells[end + 1]);
}

} // namespace

std::vector<StoredLine> wrap_words(const Paragraph &paragraph, const WrapRules &rules)
{
    return Wrapper(paragraph, rules).wrap();
}

const Cell *misplaced_suppression(const Paragraph &paragraph)
{
    const std::vector<Cell> &cells = paragraph.cells;
    bool text_before = false;
    for (std::size_t begin = 0; begin < cells.size();) {
        std::size_t end = begin;
        while (end < cells.size() && cells[end].hidden == cells[begin].hidden) {
            text_before = text_before || (!cells[end].hidden && !is_space(cells[end]));
            ++end;
        }
        const bool all_of_it = begin == 0 && end == cells.size();
        if (cells[begin].hidden && !all_of_it && !(text_before && goes_on_after(cells, end))) {
            return &cells[begin];
        }
        text_before = text_before && !cells[begin].hidden; // a stretch ends its line
        begin = end;
    }
    return nullptr;
}

} // namespace pfs_builder

#include "lib/page/line_layout.h"

#include "lib/page/blank_bytes.h"

#include <algorithm>
#include <utility>

namespace pfsdoc::page {

namespace {

constexpr char point = '.';

// A word is taken in stretches of this size, so that a long one is never held whole.
constexpr std::size_t longest_stretch = 4096;

constexpr bool is_word_byte(char byte)
{
    return byte != ' ' && byte != zero_blank && byte != tab_byte;
}

std::size_t word_stretch(std::string_view bytes)
{
    const std::string_view stretch = bytes.substr(0, longest_stretch);
    const auto end = std::find_if_not(stretch.begin(), stretch.end(),
                                      [](char byte) { return is_word_byte(byte); });
    return static_cast<std::size_t>(end - stretch.begin());
}

} // namespace

LineLayout::LineLayout(base::Utf8Output &output) : output_(output) {}

void LineLayout::begin(LineGeometry geometry)
{
    geometry_ = std::move(geometry);
    line_written_ = false;
    skip_blanks_ = false;
    word_.clear();
    in_long_word_ = false;
    tab_gaps_.clear();
    start_line(geometry_.first_line_indent);
}

void LineLayout::text(std::string_view bytes)
{
    words_untried_ = true;
    while (!bytes.empty()) {
        if (std::exchange(words_untried_, false)) {
            bytes.remove_prefix(put_words(bytes));
        }
        const std::size_t length = word_stretch(bytes);
        if (length > 0) {
            add_to_word(bytes.substr(0, length));
        } else if (bytes.front() == tab_byte) {
            tab();
        } else {
            blank();
        }
        bytes.remove_prefix(std::max<std::size_t>(length, 1));
    }
}

void LineLayout::end_line()
{
    end_word();
    make_room();
    skip_blanks_ = true;
}

void LineLayout::end(bool empty_line)
{
    end_word();
    if (line_has_text_ || (empty_line && !line_written_)) {
        write_line();
    }
}

// ----------------------------------------------------------------------- words --------

void LineLayout::add_to_word(std::string_view part)
{
    if (in_long_word_) {
        output_.text(part);
        return;
    }
    word_.append(part);
    if (word_.size() > geometry_.width) {
        put_long_word();
    }
}

void LineLayout::put_long_word()
{
    make_room();
    output_.blanks(geometry_.left_margin + line_.size());
    output_.text(word_);
    word_.clear();
    in_long_word_ = true;
    long_word_on_line_ = true;
    line_has_text_ = true;
    skip_blanks_ = false;
}

// Puts down at once what whole words fit on the rest of the line, as each of them would be by
// itself, and returns their length: up to the blank behind the last of them. Most lines are
// filled so, but for the word that may not fit. Tried once a line, since it looks at all of it.
std::size_t LineLayout::put_words(std::string_view bytes)
{
    const std::size_t used = line_.size() + blanks_;
    if (!word_.empty() || in_long_word_ || long_word_on_line_ || decimal_stop_ || skip_blanks_ ||
        used >= geometry_.width) {
        return 0;
    }
    const std::size_t end = bytes.rfind(' ', geometry_.width - used);
    if (end == std::string_view::npos) {
        return 0;
    }
    const std::size_t last = bytes.find_last_not_of(' ', end);
    if (last == std::string_view::npos) {
        return 0;
    }
    const std::string_view words = bytes.substr(0, last + 1);
    if (words.find(tab_byte) != std::string_view::npos ||
        words.find(zero_blank) != std::string_view::npos) {
        return 0;
    }
    line_.resize(used, ' ');
    line_.append(words);
    line_has_text_ = true;
    blanks_ = 0;
    return words.size();
}

void LineLayout::end_word()
{
    if (in_long_word_) {
        in_long_word_ = false;
    } else if (!word_.empty()) {
        put_word();
    }
}

void LineLayout::put_word()
{
    std::size_t at = word_column();
    if (decimal_stop_) {
        set_last_gap(at);
    }
    if (at + word_.size() > geometry_.width) {
        make_room();
        at = line_.size();
    }
    line_.resize(at, ' ');
    line_.append(word_);
    line_has_text_ = true;
    word_.clear();
    blanks_ = 0;
    decimal_stop_.reset();
    skip_blanks_ = false;
}

std::size_t LineLayout::word_column() const
{
    return decimal_stop_ ? decimal_word_column() : column() + blanks_;
}

std::size_t LineLayout::decimal_word_column() const
{
    const std::size_t before_point = std::min(word_.find(point), word_.size());
    const bool touches_text = line_has_text_ && line_.back() != ' ';
    const std::size_t first_free = line_.size() + (touches_text ? 1 : 0);
    const std::size_t wanted = *decimal_stop_ - std::min(before_point, *decimal_stop_);
    return std::max(wanted, first_free);
}

std::size_t LineLayout::column() const
{
    return long_word_on_line_ ? geometry_.width : line_.size();
}

// ------------------------------------------------------------- blanks and tabs --------

void LineLayout::blank()
{
    end_word();
    if (!skip_blanks_ && !decimal_stop_) {
        ++blanks_;
    }
}

void LineLayout::tab()
{
    end_word();
    if (decimal_stop_) { // a tab straight after a tab: the stop's column was its end
        set_last_gap(*decimal_stop_);
        line_.resize(std::max(line_.size(), *decimal_stop_), ' ');
        decimal_stop_.reset();
    }
    const std::size_t at = column() + std::exchange(blanks_, 0);
    const TabColumn stop = next_tab_stop(at);
    skip_blanks_ = stop.column >= geometry_.width;
    const std::size_t end = std::max(at, std::min(stop.column, geometry_.width));
    tab_gaps_.push_back({static_cast<uint16_t>(end - at), skip_blanks_ || stop.decimal});
    if (stop.column >= geometry_.width) {
        write_line();
        start_line(geometry_.indent);
    } else if (stop.decimal) {
        line_.resize(at, ' ');
        decimal_stop_ = stop.column;
    } else {
        line_.resize(stop.column, ' ');
    }
}

// The line still ends at the tab.
void LineLayout::set_last_gap(std::size_t end)
{
    end = std::clamp(end, line_.size(), std::max(line_.size(), geometry_.width));
    tab_gaps_.back().columns = static_cast<uint16_t>(end - line_.size());
}

void LineLayout::drop_tabs_of_line()
{
    for (std::size_t i = line_first_gap_; i < tab_gaps_.size(); ++i) {
        tab_gaps_[i] = {0, true};
    }
}

TabColumn LineLayout::next_tab_stop(std::size_t column) const
{
    TabColumn next{geometry_.width, false};
    for (const TabColumn &stop : geometry_.tab_stops) {
        if (stop.column > column && stop.column < next.column) {
            next = stop;
        }
    }
    if (next.column == geometry_.width) {
        next.column = (column / fallback_tab_columns + 1) * fallback_tab_columns;
    }
    return next;
}

// ----------------------------------------------------------------------- lines --------

void LineLayout::start_line(std::size_t indent)
{
    line_.assign(indent, ' ');
    line_indent_ = indent;
    line_has_text_ = false;
    words_untried_ = true;
    long_word_on_line_ = false;
    blanks_ = 0;
    decimal_stop_.reset();
    line_first_gap_ = tab_gaps_.size();
}

// Leaves a line without text: the next one, or this one if it has none.
void LineLayout::make_room()
{
    if (line_has_text_) {
        write_line();
        start_line(geometry_.indent);
    } else {
        drop_tabs_of_line();
        start_line(line_indent_);
    }
}

void LineLayout::write_line()
{
    line_written_ = true;
    if (line_has_text_ && !long_word_on_line_) {
        std::string_view text = line_;
        text = text.substr(0, text.find_last_not_of(' ') + 1);
        if (geometry_.alignment != LineAlignment::left) {
            text.remove_prefix(text.find_first_not_of(' '));
        }
        output_.blanks(geometry_.left_margin + alignment_blanks(text.size()));
        output_.text(text);
    }
    output_.line_end();
}

std::size_t LineLayout::alignment_blanks(std::size_t length) const
{
    const std::size_t room = geometry_.width - std::min(length, geometry_.width);
    switch (geometry_.alignment) {
    case LineAlignment::centre: return room / 2;
    case LineAlignment::right: return room;
    case LineAlignment::left: break;
    }
    return 0;
}

} // namespace pfsdoc::page

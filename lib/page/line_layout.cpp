#include "lib/page/line_layout.h"

#include "lib/page/blank_bytes.h"

#include <algorithm>
#include <cstdint>
#include <utility>

namespace pfsdoc::page {

namespace {

constexpr char point = '.';

constexpr bool is_space(char byte)
{
    return byte == ' ' || byte == zero_blank;
}

std::size_t count_spaces(std::string_view bytes)
{
    const auto end = std::find_if_not(bytes.begin(), bytes.end(), is_space);
    return static_cast<std::size_t>(end - bytes.begin());
}

// Of the word that the bytes begin with.
std::size_t word_length(std::string_view bytes)
{
    const auto end = std::find_if(bytes.begin(), bytes.end(), is_space);
    return static_cast<std::size_t>(end - bytes.begin());
}

// How many of the bytes, which begin with a word, are words that end among them.
std::size_t complete_words(std::string_view bytes)
{
    std::size_t end = bytes.size();
    while (end > 0 && !is_space(bytes[end - 1])) {
        --end;
    }
    while (end > 0 && is_space(bytes[end - 1])) {
        --end;
    }
    return end;
}

// Whether the bytes are those that follow `distance` bytes behind the others in memory.
bool continues(std::string_view others, std::size_t distance, std::string_view bytes)
{
    const auto end = reinterpret_cast<std::uintptr_t>(others.data()) + others.size();
    return end + distance == reinterpret_cast<std::uintptr_t>(bytes.data());
}

void extend(std::string_view &bytes, std::size_t count)
{
    bytes = {bytes.data(), bytes.size() + count};
}

} // namespace

void LineLayout::begin(const LineGeometry &geometry)
{
    geometry_ = geometry;
    line_written_ = false;
    skip_spaces_ = false;
    word_.clear();
    word_length_ = 0;
    in_long_word_ = false;
    start_line(geometry_.first_line_indent);
}

void LineLayout::text(std::string_view bytes)
{
    while (!bytes.empty()) {
        const std::size_t length = std::min(bytes.find(tab_byte), bytes.size());
        text_without_tabs(bytes.substr(0, length));
        bytes.remove_prefix(length);
        if (!bytes.empty()) {
            tab();
            bytes.remove_prefix(1);
        }
    }
}

void LineLayout::end_line()
{
    end_word();
    make_room();
    skip_spaces_ = true;
}

void LineLayout::end(bool empty_line)
{
    end_word();
    if (line_has_text_ || (empty_line && !line_written_)) {
        write_line();
    }
    hand_on_gaps();
}

// ----------------------------------------------------------------------- words --------

void LineLayout::text_without_tabs(std::string_view bytes)
{
    while (!bytes.empty()) {
        std::size_t length = count_spaces(bytes);
        if (length > 0) {
            add_spaces(length);
        } else if (length = put_words(bytes); length == 0) {
            length = add_to_word(bytes);
        }
        bytes.remove_prefix(length);
    }
}

// Puts down at once what whole words fit on the rest of the line, as each of them would be by
// itself, and begins the next line if a word is left that does not. Returns how far it has come:
// not at all where the first word may not fit, or there is anything special about it.
std::size_t LineLayout::put_words(std::string_view bytes)
{
    const std::size_t used = column_ + spaces_;
    if (word_length_ > 0 || in_long_word_ || long_word_on_line_ || decimal_stop_ ||
        used >= geometry_.width) {
        return 0;
    }
    // With one more: the space behind a word that ends at the margin.
    const std::string_view reach = bytes.substr(0, geometry_.width - used + 1);
    const std::size_t end = complete_words(reach);
    if (end == 0) {
        return 0;
    }
    put(used, bytes.substr(0, end));
    const std::size_t next = end + count_spaces(bytes.substr(end));
    if (reach.size() <= geometry_.width - used || next == bytes.size()) {
        return end;
    }
    write_line();
    start_line(geometry_.indent);
    return next;
}

// Takes the word that the bytes begin with, and returns its length.
std::size_t LineLayout::add_to_word(std::string_view bytes)
{
    const std::string_view part = bytes.substr(0, word_length(bytes));
    if (in_long_word_) {
        sink_.text(0, part);
        return part.size();
    }
    if (!word_.empty() && continues(word_.back(), 0, part)) {
        extend(word_.back(), part.size());
    } else {
        word_.push_back(part);
    }
    word_length_ += part.size();
    if (word_length_ > geometry_.width) {
        put_long_word();
    }
    return part.size();
}

void LineLayout::put_long_word()
{
    make_room();
    std::size_t spaces = geometry_.left_margin + column_;
    for (const std::string_view part : word_) {
        sink_.text(std::exchange(spaces, 0), part);
    }
    word_.clear();
    word_length_ = 0;
    in_long_word_ = true;
    long_word_on_line_ = true;
    line_has_text_ = true;
    skip_spaces_ = false;
}

void LineLayout::end_word()
{
    if (in_long_word_) {
        in_long_word_ = false;
    } else if (word_length_ > 0) {
        put_word();
    }
}

void LineLayout::put_word()
{
    std::size_t at = word_column();
    if (decimal_stop_) {
        set_last_gap(at);
    }
    if (at + word_length_ > geometry_.width) {
        make_room();
        at = column_;
    }
    for (const std::string_view part : word_) {
        put(at, part);
        at += part.size();
    }
    word_.clear();
    word_length_ = 0;
    decimal_stop_.reset();
}

std::size_t LineLayout::word_column() const
{
    return decimal_stop_ ? decimal_word_column() : column() + spaces_;
}

std::size_t LineLayout::decimal_word_column() const
{
    std::size_t before_point = 0;
    for (const std::string_view part : word_) {
        const std::size_t found = std::min(part.find(point), part.size());
        before_point += found;
        if (found < part.size()) {
            break;
        }
    }
    const bool touches_text = line_has_text_ && column_ == text_end_;
    const std::size_t first_free = column_ + (touches_text ? 1 : 0);
    const std::size_t wanted = *decimal_stop_ - std::min(before_point, *decimal_stop_);
    return std::max(wanted, first_free);
}

std::size_t LineLayout::column() const
{
    return long_word_on_line_ ? geometry_.width : column_;
}

// Where only spaces lie between, as in the document, the text before goes on.
void LineLayout::put(std::size_t column, std::string_view bytes)
{
    hand_on_gaps();
    if (!line_has_text_) {
        text_begin_ = column;
    }
    const std::size_t gap = column - column_;
    if (!runs_.empty() && !tab_since_text_ && continues(runs_.back().bytes, gap, bytes)) {
        extend(runs_.back().bytes, gap + bytes.size());
    } else {
        if (geometry_.alignment == LineAlignment::left) {
            hand_on_runs();
        }
        runs_.push_back({column, bytes});
    }
    column_ = text_end_ = column + bytes.size();
    line_has_text_ = true;
    tab_since_text_ = false;
    skip_spaces_ = false;
    spaces_ = 0;
}

// ------------------------------------------------------------- spaces and tabs --------

void LineLayout::add_spaces(std::size_t count)
{
    end_word();
    if (!skip_spaces_ && !decimal_stop_) {
        spaces_ += count;
    }
}

void LineLayout::tab()
{
    end_word();
    if (decimal_stop_) { // a tab straight after a tab: the stop's column was its end
        set_last_gap(*decimal_stop_);
        column_ = std::max(column_, *decimal_stop_);
        decimal_stop_.reset();
    }
    const std::size_t at = column() + std::exchange(spaces_, 0);
    const TabColumn stop = next_tab_stop(at);
    skip_spaces_ = stop.column >= geometry_.width;
    const std::size_t end = std::max(at, std::min(stop.column, geometry_.width));
    add_gap(end - at, skip_spaces_ || stop.decimal);
    tab_since_text_ = true;
    if (stop.column >= geometry_.width) {
        write_line();
        start_line(geometry_.indent);
    } else if (stop.decimal) {
        column_ = at;
        decimal_stop_ = stop.column;
    } else {
        column_ = stop.column;
    }
}

void LineLayout::add_gap(std::size_t columns, bool takes_spaces)
{
    if (tab_gaps_ == TabGaps::wanted) {
        gaps_.push_back({static_cast<uint16_t>(columns), takes_spaces});
    }
}

// The line still ends at the tab.
void LineLayout::set_last_gap(std::size_t end)
{
    if (tab_gaps_ == TabGaps::not_wanted) {
        return;
    }
    end = std::clamp(end, column_, std::max(column_, geometry_.width));
    gaps_.back().columns = static_cast<uint16_t>(end - column_);
}

void LineLayout::drop_tabs_of_line()
{
    std::fill(gaps_.begin(), gaps_.end(), TabGap{0, true});
}

void LineLayout::hand_on_gaps()
{
    for (const TabGap &gap : gaps_) {
        sink_.tab_gap(gap);
    }
    gaps_.clear();
}

// Of two stops in one column the first counts. There are few, so they are in no order.
TabColumn LineLayout::next_tab_stop(std::size_t column) const
{
    TabColumn next{geometry_.width, false};
    for (const TabColumn &stop : geometry_.tab_stops) {
        if (stop.column > column && stop.column < next.column) {
            next = stop;
        }
    }
    if (next.column < geometry_.width) {
        return next;
    }
    return {(column / fallback_tab_columns + 1) * fallback_tab_columns, false};
}

// ----------------------------------------------------------------------- lines --------

void LineLayout::start_line(std::size_t indent)
{
    hand_on_gaps();
    runs_.clear();
    column_ = indent;
    line_indent_ = indent;
    line_has_text_ = false;
    line_begun_ = false;
    tab_since_text_ = false;
    long_word_on_line_ = false;
    spaces_ = 0;
    decimal_stop_.reset();
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
    hand_on_runs();
    sink_.line_end();
}

void LineLayout::hand_on_runs()
{
    for (const Run &run : runs_) {
        const std::size_t spaces =
            line_begun_ ? run.column - handed_on_to_ : geometry_.left_margin + alignment_spaces();
        sink_.text(spaces, run.bytes);
        line_begun_ = true;
        handed_on_to_ = run.column + run.bytes.size();
    }
    runs_.clear();
}

// From the left margin to the line's text.
std::size_t LineLayout::alignment_spaces() const
{
    const std::size_t length = text_end_ - text_begin_;
    const std::size_t room = geometry_.width - std::min(length, geometry_.width);
    switch (geometry_.alignment) {
    case LineAlignment::centre: return room / 2;
    case LineAlignment::right: return room;
    case LineAlignment::left: break;
    }
    return text_begin_;
}

} // namespace pfsdoc::page

#include "batch/trusted/progress.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <numeric>
#include <sys/ioctl.h>
#include <unistd.h>

namespace pfsdoc::batch {

namespace {

constexpr std::chrono::milliseconds between_bars{100};
constexpr std::chrono::seconds between_lines{5};
constexpr std::size_t widest_bar = 24;
constexpr std::size_t narrowest_bar = 6;
constexpr std::size_t columns_unless_known = 80;
constexpr std::size_t most_columns = 1000;
constexpr const char *line_start_over = "\r\033[K";
constexpr const char *red = "\033[31m";
constexpr const char *plain = "\033[0m";

std::string bar_of(std::size_t width, uint64_t done, uint64_t total)
{
    const auto full = static_cast<std::size_t>(width * done / total);
    std::string bar = "[";
    bar.append(full, '#').append(width - full, '.').append("] ");
    return bar;
}

// Of the terminal; it may change at any time.
std::size_t window_columns()
{
    winsize window{};
    if (::ioctl(STDERR_FILENO, TIOCGWINSZ, &window) == 0 && window.ws_col > 0) {
        return window.ws_col;
    }
    const char *named = std::getenv("COLUMNS");
    const std::string_view text = named != nullptr ? named : "";
    std::size_t columns = 0;
    std::from_chars(text.data(), text.data() + text.size(), columns);
    return columns > 0 && columns < most_columns ? columns : columns_unless_known;
}

std::string duration_words(double seconds)
{
    const auto whole = static_cast<uint64_t>(std::ceil(seconds));
    const auto two_digits = [](uint64_t value) {
        return (value < 10 ? ":0" : ":") + std::to_string(value);
    };
    return std::to_string(whole / 3600) + two_digits(whole / 60 % 60) + two_digits(whole % 60);
}

bool is_colourful()
{
    const char *no_color = std::getenv("NO_COLOR");
    return no_color == nullptr || *no_color == '\0';
}

void put(const std::string &text)
{
    static_cast<void>(std::fputs(text.c_str(), stderr));
    static_cast<void>(std::fflush(stderr));
}

} // namespace

uint64_t Tally::files() const
{
    return std::accumulate(counts_.begin(), counts_.end(), uint64_t{0});
}

uint64_t Tally::count(FileStatus status) const
{
    return counts_[static_cast<std::size_t>(status)];
}

uint64_t Tally::failures() const
{
    uint64_t sum = 0;
    for (std::size_t i = 0; i < counts_.size(); ++i) {
        sum += is_failure(static_cast<FileStatus>(i)) ? counts_[i] : 0;
    }
    return sum;
}

uint64_t Tally::others() const
{
    return files() - failures() - count(FileStatus::converted);
}

// "2 failed (1 damaged, 1 limit)"; empty for none.
std::string Tally::group(std::string_view name, uint64_t sum, bool (*is_in)(FileStatus)) const
{
    std::string words = sum == 0 ? "" : ", " + std::to_string(sum) + " " + std::string(name);
    std::string_view before = " (";
    for (std::size_t i = 0; i < counts_.size(); ++i) {
        const auto status = static_cast<FileStatus>(i);
        if (counts_[i] != 0 && is_in(status)) {
            words.append(before).append(std::to_string(counts_[i])).append(" ");
            words.append(status_name(status));
            before = ", ";
        }
    }
    return words + (sum == 0 ? "" : ")");
}

std::string Tally::words() const
{
    return std::to_string(files()) + (files() == 1 ? " file: " : " files: ") +
           std::to_string(count(FileStatus::converted)) + " converted" +
           group("failed", failures(), is_failure) +
           group("ignored", others(), [](FileStatus status) {
               return status != FileStatus::converted && !is_failure(status);
           });
}

// What fits in so many columns; all characters are ASCII. What goes first is what is least missed.
std::string Progress::line_of(const Tally &tally, double seconds, std::size_t columns) const
{
    const uint64_t done = tally.files();
    const bool has_total = total_ && done <= *total_;
    const double rate = static_cast<double>(done) / seconds;
    const std::string files =
        std::to_string(done) + (has_total ? " of " + std::to_string(*total_) : "") + " files";
    std::string pace = ", " + std::to_string(static_cast<uint64_t>(rate)) + " a second";
    std::string left =
        has_total && done > 0
            ? ", " + duration_words(static_cast<double>(*total_ - done) / rate) + " left"
            : "";
    const std::string failed = std::to_string(tally.failures()) + " failed";
    std::string ignored =
        tally.others() > 0 ? ", " + std::to_string(tally.others()) + " ignored" : "";
    const auto length = [&] {
        return files.size() + pace.size() + left.size() + 2 + failed.size() + ignored.size();
    };
    for (std::string *part : {&pace, &ignored, &left}) {
        if (length() > columns) {
            part->clear();
        }
    }
    const std::size_t room = columns - std::min(columns, length());
    const bool has_bar = form_ == ProgressForm::bar && has_total && room >= narrowest_bar + 3;
    const std::string bar = has_bar ? bar_of(std::min(widest_bar, room - 3), done, *total_) : "";
    const bool is_red =
        form_ == ProgressForm::bar && tally.failures() > 0 && is_colourful() && length() <= columns;
    const std::string line = bar + files + pace + left + ", " + (is_red ? red : "") + failed +
                             (is_red ? plain : "") + ignored;
    return length() <= columns ? line : line.substr(0, columns);
}

void Progress::show(const Tally &tally)
{
    const Clock::time_point now = Clock::now();
    const bool is_bar = form_ == ProgressForm::bar;
    const Clock::duration between = is_bar ? Clock::duration(between_bars) : between_lines;
    if (form_ == ProgressForm::none || now - shown_ < between) {
        return;
    }
    shown_ = now;
    // A terminal may go to its next line when the last column is written.
    const std::size_t columns = is_bar ? window_columns() - 1 : most_columns;
    const std::string line =
        line_of(tally, std::chrono::duration<double>(now - start_).count(), columns);
    put(is_bar ? line_start_over + line : "pfsdoc: " + line + "\n");
}

void Progress::clear() const
{
    if (form_ == ProgressForm::bar) {
        put(line_start_over);
    }
}

} // namespace pfsdoc::batch

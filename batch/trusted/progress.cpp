#include "batch/trusted/progress.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <numeric>

namespace pfsdoc::batch {

namespace {

constexpr std::chrono::milliseconds between_bars{100};
constexpr std::chrono::seconds between_lines{5};
constexpr uint64_t bar_width = 24;
constexpr const char *line_start_over = "\r\033[K";
constexpr const char *red = "\033[31m";
constexpr const char *plain = "\033[0m";

std::string bar_of(uint64_t done, uint64_t total)
{
    const uint64_t full = bar_width * done / total;
    std::string bar = "[";
    bar.append(full, '#').append(bar_width - full, '.').append("] ");
    return bar;
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

std::string Progress::line_of(const Tally &tally, double seconds) const
{
    const uint64_t done = tally.files();
    const double rate = static_cast<double>(done) / seconds;
    const bool has_total = total_ && done <= *total_;
    const bool is_bar = form_ == ProgressForm::bar;
    std::string line = has_total && is_bar ? bar_of(done, *total_) : "";
    line += std::to_string(done) + (has_total ? " of " + std::to_string(*total_) : "") + " files, ";
    line += std::to_string(static_cast<uint64_t>(rate)) + " a second";
    if (has_total && done > 0) {
        line += ", " + duration_words(static_cast<double>(*total_ - done) / rate) + " left";
    }
    const bool is_red = is_bar && tally.failures() > 0 && is_colourful();
    line += std::string(", ") + (is_red ? red : "") + std::to_string(tally.failures()) +
            " not converted whole" + (is_red ? plain : "");
    return line;
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
    const std::string line = line_of(tally, std::chrono::duration<double>(now - start_).count());
    put(is_bar ? line_start_over + line : "pfsdoc: " + line + "\n");
}

void Progress::clear() const
{
    if (form_ == ProgressForm::bar) {
        put(line_start_over);
    }
}

} // namespace pfsdoc::batch

// What a run says on standard error while it goes on: a bar that is drawn again and again on a
// terminal and fits its window, a line now and then elsewhere. Test: tests/batch/run/progress.sh.
#pragma once

#include "batch/wire/outcome.h"

#include <array>
#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace pfsdoc::batch {

// How many files have which status.
class Tally {
public:
    void add(FileStatus status)
    {
        ++counts_[static_cast<std::size_t>(status)];
    }
    uint64_t files() const;
    uint64_t count(FileStatus status) const;
    uint64_t failures() const; // is_failure()
    uint64_t others() const;   // neither converted nor failures
    // "1000 files: 990 converted, 3 failed (3 damaged), 7 ignored (7 not_a_document)".
    std::string words() const;

private:
    std::string group(std::string_view name, uint64_t sum, bool (*is_in)(FileStatus)) const;

    std::array<uint64_t, file_status_count> counts_{};
};

enum class ProgressForm { none, lines, bar };

class Progress {
public:
    // Without a total there is neither a bar nor a remaining time.
    Progress(ProgressForm form, std::optional<uint64_t> total) : form_(form), total_(total) {}

    void show(const Tally &tally);
    // The run is over: takes the bar away.
    void clear() const;

private:
    using Clock = std::chrono::steady_clock;

    std::string line_of(const Tally &tally, double seconds, std::size_t columns) const;

    ProgressForm form_;
    std::optional<uint64_t> total_;
    Clock::time_point start_ = Clock::now();
    Clock::time_point shown_ = start_;
};

} // namespace pfsdoc::batch

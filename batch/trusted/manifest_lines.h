// The files of a run that have no line in the manifest yet, in their order.
//
// A file is added when it is taken from the inputs, and is in here until its line is written,
// which waits for all files before it. At most `capacity` are here, so a file that takes long
// holds up the others in the end, and memory is bounded. Test:
// tests/batch/trusted/manifest_lines_test.cpp.
#pragma once

#include "batch/trusted/progress.h"
#include "batch/wire/outcome.h"

#include <cstddef>
#include <deque>
#include <optional>
#include <string>
#include <utility>

namespace pfsdoc::batch {

class ManifestLines {
public:
    static constexpr std::size_t capacity = 1024;

    // Stays where it is until its line is taken.
    struct Entry {
        std::optional<FileStatus> status{}; // set: the file is done
        std::string line;

        void finish(FileStatus with_status, std::string with_line)
        {
            status = with_status;
            line = std::move(with_line);
        }
    };

    Entry &add()
    {
        return entries_.emplace_back();
    }
    // The lines of all files that are done and have none before them that is not.
    std::string take(Tally &tally)
    {
        std::string lines;
        for (; !entries_.empty() && entries_.front().status; entries_.pop_front()) {
            lines += entries_.front().line;
            tally.add(*entries_.front().status);
        }
        return lines;
    }
    bool is_full() const
    {
        return entries_.size() >= capacity;
    }
    bool is_empty() const
    {
        return entries_.empty();
    }

private:
    std::deque<Entry> entries_;
};

} // namespace pfsdoc::batch

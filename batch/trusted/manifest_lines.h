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
#include <vector>

namespace pfsdoc::batch {

class ManifestLines {
public:
    static constexpr std::size_t capacity = 1024;

    // Stays where it is until its line is taken.
    struct Entry {
        std::optional<FileStatus> status{}; // set: the file is done
        std::string line;
        std::string output; // its name; empty where there is none

        void finish(FileStatus with_status, std::string with_line, std::string with_output = "")
        {
            status = with_status;
            line = std::move(with_line);
            output = std::move(with_output);
        }
    };

    Entry &add()
    {
        return entries_.emplace_back();
    }
    struct Taken {
        std::string lines;
        std::vector<std::string> outputs; // that are in place
    };
    // Of all files that are done and have none before them that is not.
    Taken take(Tally &tally)
    {
        Taken taken;
        for (; !entries_.empty() && entries_.front().status; entries_.pop_front()) {
            Entry &entry = entries_.front();
            taken.lines += entry.line;
            tally.add(*entry.status);
            if (!entry.output.empty()) {
                taken.outputs.push_back(std::move(entry.output));
            }
        }
        return taken;
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

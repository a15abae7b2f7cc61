// The files of a run that have no line in the manifest yet, in their order: what the lanes of a
// run tell its clerk, who gives outputs their names and writes the lines.
//
// A file is entered when it is taken from the inputs, and is in here until its line is written;
// that waits for all files before it. At most `window` are here, so a file that takes long holds
// up the others in the end, and memory is bounded. Test: tests/batch/run/ledger_test.cpp.
#pragma once

#include "batch/outcome.h"
#include "batch/output_folder.h"
#include "batch/progress.h"
#include "batch/record.h"

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace pfsdoc::batch {

class Ledger {
public:
    static constexpr std::size_t window = 1024;
    // Outputs are given their names together, this many: the disk takes about as long for many
    // files as for one.
    static constexpr std::size_t placed_at_once = 256;

    // Stays where it is until its line is taken.
    struct Entry {
        std::optional<FileStatus> status{}; // set: it is done
        std::string line;
    };

    // An output that is whole, and has no name yet.
    struct WholeOutput {
        Entry *entry;
        RecordedFile file;
        FileStatus status; // and line: of the entry, when it has its name
        std::string line;
        PendingOutput output;
    };

    // ---- for lanes, on any thread ----

    void begin_lane();
    void end_lane();
    // Waits until another file can be entered. False: there is none to be entered any more,
    // since the inputs have ended or the run is to end.
    bool wait_for_room();
    void end_inputs();
    // The next file; after wait_for_room(), and by one lane at a time.
    Entry &enter();
    // The file is done. Of no effect when the run is to end: what becomes of files then is no
    // fault of theirs.
    void close(Entry &entry, FileStatus status, std::string line);
    // The file will be done when its output has its name.
    void gather(WholeOutput whole);
    // The run is to end because of this; the first reason counts.
    void stop(Error fault);

    // ---- for the clerk ----

    // Waits until there is something to do, or for `patience`. False: no lane is left.
    bool wait(std::chrono::milliseconds patience);
    // Outputs that were gathered, if it is time to place them: when there are many of them, when
    // they hold others up, and otherwise once in a second.
    std::vector<WholeOutput> take_gathered();
    void place(Entry &entry, FileStatus status, std::string line);
    // The lines of all files that are done and have none before them that is not.
    std::string take_lines(Tally &tally);
    Status fault() const;

private:
    using Clock = std::chrono::steady_clock;
    static constexpr std::chrono::seconds longest_unplaced{1};

    bool is_time_to_place() const;
    void call_clerk();

    mutable std::mutex mutex_; // of all that follows
    std::deque<Entry> entries_;
    std::vector<WholeOutput> gathered_;
    Clock::time_point placed_ = Clock::now(); // when some were taken last
    std::size_t lanes_ = 0;
    bool inputs_ended_ = false;
    bool room_is_wanted_ = false;
    Status fault_;
    std::condition_variable room_; // or the run is to end
    bool clerk_is_called_ = false;
    std::condition_variable clerk_;
};

} // namespace pfsdoc::batch

// Brings outputs that are whole to the disk, and then renames them into place.
//
// Before that their lines are announced: a run that is killed between a rename and the line in
// its manifest must still know the file for its own.
//
// The disk takes about as long for many files as for one, so this is done for some hundred
// together; and it takes long, so a process of its own waits for it while the run goes on. Test:
// tests/batch/trusted/output_commits_test.cpp.
#pragma once

#include "batch/trusted/child_process.h"
#include "batch/trusted/manifest_lines.h"
#include "batch/trusted/output_folder.h"
#include "batch/trusted/record.h"
#include "lib/base/descriptor.h"

#include <chrono>
#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace pfsdoc::batch {

class OutputCommits {
public:
    static constexpr std::size_t synced_at_once = 256;

    struct WholeOutput {
        ManifestLines::Entry *entry;
        RecordedFile file;
        Outcome outcome;
        std::string line; // of the entry, when the output is in place
        PendingOutput output;
        CommitRule rule;
    };
    struct Listener {
        // Takes lines of outputs that may be in place soon.
        std::function<void(std::string_view lines)> announce;
        // Takes the name of an output that is in place.
        std::function<void(const std::string &output)> placed;
    };

    // Both must outlive this.
    OutputCommits(const OutputFolder &folder, const RecordedRequest &recorded, Listener listener)
        : folder_(folder), recorded_(recorded), listener_(std::move(listener))
    {
    }

    void add(WholeOutput whole)
    {
        waiting_.push_back(std::move(whole));
    }
    bool is_empty() const
    {
        return waiting_.empty() && syncing_.empty();
    }
    // Begins to sync if it is time to: when there are many, when they hold others up, and
    // otherwise once in a second; and if nothing is being synced. Errors: why it cannot be done.
    Status begin(bool others_wait);
    // Can be read when what was begun is done; -1 when nothing was.
    int descriptor() const
    {
        return syncing_.empty() ? -1 : socket_.get();
    }
    // Waits for it, and gives the outputs their names. An output that cannot have its name, or
    // whose name another file has, gets a status of its own. Errors: what keeps all outputs from
    // being written.
    Status finish();
    // The run is over: all that is left.
    Status finish_all();

private:
    using Clock = std::chrono::steady_clock;
    static constexpr std::chrono::seconds longest_wait{1};

    Status start();
    void announce_waiting() const;
    void request_sync() const;
    Status rename_synced();
    void discard_all();
    void record_failure(WholeOutput &whole, FileStatus status, const Error &error) const;

    const OutputFolder &folder_;
    const RecordedRequest &recorded_;
    Listener listener_;
    ChildProcess process_; // that syncs
    base::Descriptor socket_;
    std::vector<WholeOutput> waiting_;
    std::vector<WholeOutput> syncing_;
    Clock::time_point begun_ = Clock::now(); // the last time
};

} // namespace pfsdoc::batch

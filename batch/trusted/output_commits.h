// Brings outputs that are whole to the disk, and then renames them into place.
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
#include <string>
#include <vector>

namespace pfsdoc::batch {

class OutputCommits {
public:
    static constexpr std::size_t synced_at_once = 256;

    struct WholeOutput {
        ManifestLines::Entry *entry;
        RecordedFile file;
        FileStatus status; // and line: of the entry, when the output is in place
        std::string line;
        PendingOutput output;
    };

    // Both must outlive this.
    OutputCommits(const OutputFolder &folder, const RecordedRequest &recorded)
        : folder_(folder), recorded_(recorded)
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
    // Waits for it, and gives the outputs their names. An output that cannot have its name gets
    // a status of its own. Errors: what keeps all outputs from being written.
    Status finish();
    // The run is over: all that is left.
    Status finish_all();

private:
    using Clock = std::chrono::steady_clock;
    static constexpr std::chrono::seconds longest_wait{1};

    Status start();
    Status rename_synced();

    const OutputFolder &folder_;
    const RecordedRequest &recorded_;
    ChildProcess process_; // that syncs
    base::Descriptor socket_;
    std::vector<WholeOutput> waiting_;
    std::vector<WholeOutput> syncing_;
    Clock::time_point begun_ = Clock::now(); // the last time
};

} // namespace pfsdoc::batch

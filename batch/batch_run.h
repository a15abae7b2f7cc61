// A run over many files: gives them to the workers, puts the outputs in their places and
// writes the manifest, in the order of the files whatever order they are done in.
//
// The parent reads no byte of a document. At most `window` files are done or under way whose
// lines wait for one before them. Test: tests/batch/run/batch_test.cpp.
#pragma once

#include "inputs/inputs.h"
#include "manifest.h"
#include "output_folder.h"
#include "progress.h"
#include "record.h"
#include "worker_pool.h"

#include <chrono>
#include <deque>
#include <optional>
#include <string>
#include <vector>

namespace pfsdoc {

struct BatchRequest {
    InputOptions inputs;
    std::string output;   // a folder
    std::string manifest; // a file
    PoolSettings pool;
    RecordedRequest recorded;
    ProgressForm progress = ProgressForm::lines;
    bool quiet = false;
};

// The program's exit code; standard error has been told.
int run_batch(const BatchRequest &request);

class BatchRun {
public:
    BatchRun(const BatchRequest &request, BatchInputs &inputs, OutputFolder folder,
             Manifest manifest);

    // To the end of the inputs, or until something ends the run. `wake` can be read when the
    // run is to be interrupted.
    Status run(int wake, Progress &progress);
    const Tally &tally() const
    {
        return tally_;
    }
    const WorkerPool &pool() const
    {
        return pool_;
    }

private:
    using Clock = std::chrono::steady_clock;
    static constexpr std::size_t window = 1024;
    // Outputs are brought to the disk together: this many, or what there is after this time.
    static constexpr std::size_t synced_at_once = 128;
    static constexpr std::chrono::seconds longest_unsynced{1};

    // A file whose line has not been written yet.
    struct Slot {
        RecordedFile file;
        std::optional<PendingOutput> output; // while it is under way
        std::optional<EarlierRecord> earlier;
        std::string earlier_line;
        std::optional<FileStatus> status{}; // set: it is done
        std::string line;
    };

    Status convert_all(int wake, Progress &progress);
    Status feed();
    Status take(BatchInput input);
    void look_up(Slot &slot) const;
    Status give_out(Slot &slot, const BatchInput &input, uint64_t number);
    Status settle(const Finished &finished);
    Status put_in_place();
    bool is_time_to_put_in_place() const;
    void close(Slot &slot, const Outcome &outcome) const;
    Status write_lines();

    const BatchRequest &request_;
    BatchInputs &inputs_;
    OutputFolder folder_;
    Manifest manifest_;
    Tally tally_;
    bool inputs_ended_ = false;
    uint64_t first_ = 0; // the number of the first slot's file
    std::deque<Slot> slots_;
    std::vector<Finished> unsynced_; // whose outputs are whole and not in their places
    Clock::time_point synced_ = Clock::now();
    WorkerPool pool_; // is gone before the outputs are
};

} // namespace pfsdoc

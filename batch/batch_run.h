// A run over many files: gives them to the workers, puts the outputs in their places and
// writes the manifest, in the order of the files whatever order they are done in.
//
// The parent reads no byte of a document, and does not wait for the disk while there is a file
// to give out. At most `window` files are done or under way whose
// lines wait for one before them. Test: tests/batch/run/batch_test.cpp.
#pragma once

#include "inputs/inputs.h"
#include "manifest.h"
#include "output_folder.h"
#include "placement.h"
#include "progress.h"
#include "record.h"
#include "worker_pool.h"

#include <chrono>
#include <deque>
#include <optional>
#include <string>

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
    // Outputs are placed together: this many, or what there is after this time.
    static constexpr std::size_t placed_at_once = 256;
    static constexpr std::chrono::seconds longest_unplaced{1};

    // A file whose line has not been written yet.
    struct Slot {
        RecordedFile file;
        std::optional<PendingOutput> output; // while it is under way
        std::optional<EarlierRecord> earlier;
        std::string earlier_line;
        std::optional<FileStatus> status{}; // set: it is done
        std::string line;
    };

    PoolSettings pool_settings() const;
    Status convert_all(int wake, Progress &progress);
    Status feed();
    Status take(BatchInput input);
    void look_up(Slot &slot) const;
    Status give_out(Slot &slot, const BatchInput &input, uint64_t number);
    Status settle(const Finished &finished);
    Status place();
    bool is_time_to_place() const;
    Status finish_placing();
    Status place_all();
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
    Placement placement_;
    Clock::time_point placed_ = Clock::now(); // when that was begun last
    WorkerPool pool_;                         // is gone before the outputs are
};

} // namespace pfsdoc

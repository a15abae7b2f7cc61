// A run over many files: its lanes convert them, and this gives the outputs their names and
// writes the manifest, in the order of the files whatever order they are done in. It waits for
// the disk while the lanes go on. Test: tests/batch/run/batch_test.cpp.
#pragma once

#include "batch/inputs/inputs.h"
#include "batch/lane.h"
#include "batch/ledger.h"
#include "batch/manifest.h"
#include "batch/output_folder.h"
#include "batch/progress.h"
#include "batch/record.h"
#include "batch/worker.h"

#include <chrono>
#include <deque>
#include <string>
#include <thread>
#include <vector>

namespace pfsdoc::batch {

struct BatchRequest {
    InputOptions inputs;
    std::string output;   // a folder
    std::string manifest; // a file
    WorkerSettings worker;
    std::size_t workers = 1;
    std::chrono::milliseconds max_time{30000}; // for a file
    RecordedRequest recorded;
    ProgressForm progress = ProgressForm::lines;
    bool quiet = false;
};

// The program's exit code; standard error has been told. To be called by a process of one
// thread.
int run_batch(const BatchRequest &request);

class BatchRun {
public:
    // The inputs and the server must outlive the run. The descriptor is InputOptions::stop; the
    // run writes to it.
    BatchRun(const BatchRequest &request, BatchInputs &inputs, int stop, OutputFolder folder,
             Manifest manifest, ForkServer &server);
    // Ends the lanes, whatever they are at.
    ~BatchRun();
    BatchRun(const BatchRun &) = delete;
    BatchRun &operator=(const BatchRun &) = delete;

    // To the end of the inputs, or until something ends the run.
    Status run(Progress &progress);
    const Tally &tally() const
    {
        return tally_;
    }
    // What held the workers; empty where there was none.
    std::string sandbox_words() const;

private:
    void start_lanes(std::size_t count);
    void end_lanes();
    Status keep_books();
    Status place();
    Status write_lines();

    OutputFolder folder_;
    Manifest manifest_;
    Tally tally_;
    Ledger ledger_;
    int stop_;
    LaneSetting setting_;
    std::deque<Lane> lanes_;
    std::vector<std::jthread> threads_; // of the lanes; are gone before these
};

} // namespace pfsdoc::batch

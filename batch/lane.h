// One of the lanes of a run: takes a file from the inputs, opens what there is to open, has its
// worker convert it and enters in the ledger what became of it; and then the next one. Each lane
// is a thread with a worker, and they share nothing but the inputs and the ledger, so that what
// the system takes for opening files is no bottleneck. A lane reads no byte of a document. Test:
// tests/batch/run/batch_test.cpp.
#pragma once

#include "batch/inputs/inputs.h"
#include "batch/ledger.h"
#include "batch/manifest.h"
#include "batch/output_folder.h"
#include "batch/record.h"
#include "batch/worker_client.h"

#include <chrono>
#include <mutex>
#include <optional>
#include <string>

namespace pfsdoc::batch {

// What the lanes of a run have in common.
struct LaneSetting {
    const RecordedRequest &recorded;
    const OutputFolder &folder;
    const EarlierLines &earlier;
    ForkServer &server;
    std::chrono::milliseconds max_time; // for a file
    Ledger &ledger;
    BatchInputs &inputs;
    std::mutex inputs_mutex{}; // held while a file is taken and entered, so that the order is kept
};

class Lane {
public:
    // All that the setting names must outlive the lane.
    explicit Lane(LaneSetting &setting)
        : setting_(setting), worker_(setting.server, setting.max_time)
    {
    }

    // Until the inputs end or the run is to end. A fault that ends the run is in the ledger then.
    void work();
    const std::string &sandbox_words() const
    {
        return worker_.sandbox_words();
    }

private:
    // A file that is under way.
    struct Task {
        Ledger::Entry &entry;
        BatchInput input;
        RecordedFile file;
        std::optional<EarlierRecord> earlier{};
        std::string earlier_line{};
    };

    std::optional<Task> next();
    Status convert(Task &task);
    void look_up(Task &task) const;
    OpenFile open_earlier_output(Task &task) const;
    Status settle(Task &task, PendingOutput output, Outcome outcome);
    void close(Task &task, const Outcome &outcome);

    LaneSetting &setting_;
    WorkerClient worker_;
};

} // namespace pfsdoc::batch

// A run over many files, on one thread: it takes files from the inputs, opens what has to be
// opened, has the workers convert them, and records the results in the order of the files,
// whatever order they are done in. It reads no byte of a document.
//
// All waiting is one poll: for workers, for outputs that are being synced, and where the inputs
// have to wait for a list or an archive, for that. Test: tests/batch/run/batch_test.cpp.
#pragma once

#include "batch/trusted/batch_request.h"
#include "batch/trusted/input_identities.h"
#include "batch/trusted/inputs.h"
#include "batch/trusted/launcher.h"
#include "batch/trusted/manifest.h"
#include "batch/trusted/manifest_lines.h"
#include "batch/trusted/output_commits.h"
#include "batch/trusted/output_folder.h"
#include "batch/trusted/own_files.h"
#include "batch/trusted/progress.h"
#include "batch/trusted/record.h"
#include "batch/trusted/reserved_names.h"
#include "batch/trusted/worker_process.h"

#include <chrono>
#include <deque>
#include <memory>
#include <optional>
#include <poll.h>
#include <string>
#include <vector>

namespace pfsdoc::batch {

class BatchRun {
public:
    // The request and the launcher must outlive the run.
    BatchRun(const BatchRequest &request, Launcher &launcher, OutputFolder folder,
             Manifest manifest);
    BatchRun(const BatchRun &) = delete;
    BatchRun &operator=(const BatchRun &) = delete;

    // To the end of the inputs, or until something ends the run.
    Status run();
    const Tally &tally() const
    {
        return tally_;
    }
    // That earlier runs made and this one did not.
    uint64_t outputs_of_others() const
    {
        return manifest_.unclaimed_outputs();
    }
    // What holds the workers; empty where there was none.
    const std::string &sandbox_words() const
    {
        return sandbox_words_;
    }

private:
    using Clock = std::chrono::steady_clock;

    // A file that is under way.
    struct Task {
        ManifestLines::Entry &entry;
        BatchInput input;
        RecordedFile file;
        std::optional<EarlierRecord> earlier{};
        std::string earlier_line{};
        base::Descriptor earlier_output{};
        std::vector<OutputContent> own{}; // what earlier runs put where the output goes
        std::optional<PendingOutput> output{};
    };
    struct AnsweredTask {
        Task task;
        Outcome outcome;
    };
    struct Worker {
        WorkerProcess process;
        std::optional<Task> task{};
        std::vector<AnsweredTask> answered{}; // by a process that may still write to the outputs
    };

    void stop(Error fault);
    Status convert_all();
    bool is_done() const;

    // ---- from the inputs to the workers ----
    void prepare_tasks();
    void prepare(BatchInput input);
    void look_up(Task &task) const;
    void open_earlier_output(Task &task) const;
    void hand_out();
    void submit(Worker &worker);

    // ---- waiting ----
    // Whether the descriptor, which may be -1, can be read; returns also when something else has
    // happened.
    bool wait_for_any(int descriptor);
    // False: the run is to end, or it is too late.
    bool wait_for_input(int descriptor, Clock::time_point deadline);
    int patience() const;
    void receive_from(Worker &worker);
    void note(Worker &worker, Outcome outcome);
    void release(Worker &worker);
    void end_late_jobs();

    // ---- from the workers to the manifest ----
    void finish(Task task, Outcome outcome);
    CommitRule rule_of(Task &task, const Outcome &outcome);
    bool is_input(const FileIdentity &file);
    bool has_earlier_output(const EarlierRecord &earlier) const;
    void record(Task &task, const Outcome &outcome);
    void commit_outputs(bool is_synced);
    Status write_lines();
    Status keep_what_is_done();
    Status finish_manifest();

    const BatchRequest &request_;
    ReservedNames reserved_;
    OutputFolder folder_;
    Manifest manifest_;
    OwnFiles own_;
    std::optional<InputIdentities> read_files_{}; // where that was asked
    Progress progress_;
    Tally tally_;
    ManifestLines lines_;
    OutputCommits commits_;
    std::vector<Worker> workers_;
    std::deque<Task> prepared_; // for the workers that are free next
    std::vector<pollfd> polled_;
    std::unique_ptr<BatchInputs> inputs_;
    bool inputs_ended_ = false;
    std::string sandbox_words_;
    Clock::time_point looked_{}; // after what happens by time only
    Status status_;              // why the run is to end
};

} // namespace pfsdoc::batch

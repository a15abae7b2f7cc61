#include "batch/trusted/batch_run.h"

#include "batch/trusted/interruption.h"
#include "batch/trusted/recorded_line.h"
#include "lib/base/printable.h"

#include <algorithm>
#include <array>
#include <exception>
#include <fcntl.h>
#include <new>
#include <span>
#include <sys/stat.h>
#include <sys/types.h>
#include <unistd.h>
#include <utility>

namespace pfsdoc::batch {

namespace {

constexpr std::chrono::milliseconds between_looks{100};
constexpr std::size_t most_prepared = 8; // each takes up to three descriptors
constexpr off_t probed_bytes = 65536;

Job job_of(const RecordedFile &file, const std::optional<EarlierRecord> &earlier)
{
    Job job;
    job.size = file.size;
    job.title.set(base::base_name(file.source));
    if (earlier) {
        job.has_earlier = 1;
        job.has_earlier_output = earlier->output.empty() ? 0 : 1;
        job.earlier_input = earlier->input;
        job.earlier_output = earlier->output_digest;
    }
    return job;
}

// Whether the output is what the process that wrote it reports. It has ended by now.
bool is_output(int descriptor, const Outcome &outcome)
{
    struct stat status {};
    return ::fstat(descriptor, &status) == 0 &&
           static_cast<uint64_t>(status.st_size) == outcome.output_size &&
           digest_of_file(descriptor) == outcome.output_digest;
}

// Whether it is true that nothing can be written: a worker that has been taken over may report
// so to end the run.
bool is_unwritable(int descriptor)
{
    const off_t end = ::lseek(descriptor, 0, SEEK_END);
    return ::posix_fallocate(descriptor, std::max<off_t>(end, 0), probed_bytes) != 0;
}

Error unwritten(const Outcome &outcome)
{
    return {ErrorKind::output, std::string(outcome.what.get()),
            "free some space; the next run continues from here"};
}

// There is space by now, or the disk has a fault just there.
Outcome unwritten_once(const Outcome &outcome)
{
    return failed_outcome(FileStatus::internal, {ErrorKind::output, std::string(outcome.what.get()),
                                                 "run the batch again"});
}

} // namespace

BatchRun::BatchRun(const BatchRequest &request, Launcher &launcher, OutputFolder folder,
                   Manifest manifest)
    : request_(request), reserved_(request.output, request.manifest), folder_(std::move(folder)),
      manifest_(std::move(manifest)), own_(folder_, reserved_, manifest_.earlier()),
      progress_(request.progress, request.progress == ProgressForm::none
                                      ? std::nullopt
                                      : count_files(request.inputs)),
      commits_(folder_, request.recorded,
               {[this](std::string_view lines) { manifest_.announce(lines); },
                [this](const std::string &output) { own_.add(output); }})
{
    for (std::size_t i = 0; i < request.workers; ++i) {
        workers_.push_back({WorkerProcess(launcher, request.max_time, request.files_per_process)});
    }
    InputOptions options = request.inputs;
    options.start_archive_reader = [&launcher](int archive, int output) {
        const std::array<int, 2> descriptors = {archive, output};
        return launcher.take(launcher.request(LaunchKind::archive_reader, descriptors));
    };
    options.wait = [this](int descriptor, Clock::time_point deadline) {
        return wait_for_input(descriptor, deadline);
    };
    options.is_own = [this](int file) { return own_.has(file); };
    options.is_own_name = [this](const std::string &name) { return folder_.is_temporary(name); };
    inputs_ = open_inputs(options);
}

// The first reason counts.
void BatchRun::stop(Error fault)
{
    if (status_.ok()) {
        status_ = std::move(fault);
    }
}

Status BatchRun::run()
{
    const Status fault = convert_all();
    const Status unkept = keep_what_is_done();
    progress_.clear();
    if (!fault.ok() || !unkept.ok()) {
        return fault.ok() ? unkept : fault;
    }
    return finish_manifest();
}

Status BatchRun::convert_all()
{
    try {
        while (status_.ok()) {
            prepare_tasks();
            if (is_done()) {
                break;
            }
            wait_for_any(-1);
        }
    } catch (const std::bad_alloc &) {
        stop({ErrorKind::internal, "there is not enough memory",
              "close other programs and try again"});
    } catch (const std::exception &fault) {
        stop({ErrorKind::internal, fault.what(), "please report this as a fault of pfsdoc"});
    }
    return status_;
}

bool BatchRun::is_done() const
{
    return !status_.ok() || (inputs_ended_ && lines_.is_empty());
}

// Whatever ends the run ends the workers, too, and that is no fault of their files. What has been
// converted by then is kept, as far as that is possible.
Status BatchRun::keep_what_is_done()
{
    prepared_.clear();
    for (Worker &worker : workers_) {
        release(worker);
    }
    workers_.clear();
    const Status fault = commits_.finish_all();
    const Status unwritten = write_lines();
    return fault.ok() ? unwritten : fault;
}

// ------------------------------------------------------ from the inputs to the workers -----

// One file more for each worker than it has, so that none waits for its next file to be opened.
void BatchRun::prepare_tasks()
{
    const std::size_t wanted = std::min(workers_.size(), most_prepared);
    while (status_.ok() && !inputs_ended_ && prepared_.size() < wanted && !lines_.is_full()) {
        std::optional<BatchInput> input = inputs_->next();
        if (!status_.ok()) {
            return;
        }
        inputs_ended_ = !input;
        if (input) {
            prepare(std::move(*input));
            hand_out();
        }
    }
}

void BatchRun::prepare(BatchInput input)
{
    RecordedFile file{input.name, input.source, input.size,
                      input.name + "." + request_.recorded.extension};
    Task task{lines_.add(), std::move(input), std::move(file)};
    if (task.input.error) {
        record(task, failed_outcome(task.input.status, *task.input.error));
        return;
    }
    look_up(task);
    open_earlier_output(task);
    Result<PendingOutput> output = folder_.create(task.file.output);
    if (output.ok()) {
        task.output.emplace(std::move(output.value()));
        prepared_.push_back(std::move(task));
    } else if (output.error().kind == ErrorKind::output) {
        stop(output.error());
    } else {
        record(task, failed_outcome(FileStatus::name, output.error()));
    }
}

void BatchRun::look_up(Task &task) const
{
    for (std::string &line : manifest_.earlier().find(task.file.output)) {
        const std::optional<RecordedLine> recorded = recorded_line(line);
        if (recorded && recorded->output && recorded->output->name == task.file.output) {
            task.own.push_back(recorded->output->content);
        }
        if (!task.earlier) {
            task.earlier = usable_record(line, task.file, request_.recorded);
            task.earlier_line = task.earlier ? line + "\n" : "";
        }
    }
}

// An output that is not what it was is made again.
void BatchRun::open_earlier_output(Task &task) const
{
    if (!task.earlier || task.earlier->output.empty()) {
        return;
    }
    task.earlier_output = folder_.open_existing(task.file.output, task.earlier->output_size);
    if (task.earlier_output.get() < 0) {
        task.earlier.reset();
    }
}

void BatchRun::hand_out()
{
    for (auto worker = workers_.begin(); worker != workers_.end() && !prepared_.empty(); ++worker) {
        if (!worker->task) {
            submit(*worker);
        }
    }
}

// The next task that is prepared.
void BatchRun::submit(Worker &worker)
{
    Task &task = worker.task.emplace(std::move(prepared_.front()));
    prepared_.pop_front();
    const std::array<int, 3> descriptors = {task.input.file.get(), task.output->descriptor(),
                                            task.earlier_output.get()};
    const std::size_t count = task.earlier_output.get() < 0 ? 2 : 3;
    if (Status fault = worker.process.submit(job_of(task.file, task.earlier),
                                             std::span(descriptors).first(count));
        !fault.ok()) {
        stop(fault.error());
    }
}

// ---------------------------------------------------------------------------- waiting -----

bool BatchRun::wait_for_input(int descriptor, Clock::time_point deadline)
{
    while (status_.ok()) {
        if (wait_for_any(descriptor)) {
            return status_.ok();
        }
        if (Clock::now() >= deadline) {
            return false;
        }
    }
    return false;
}

// In milliseconds: until the next job is late, or there is something else to look after.
int BatchRun::patience() const
{
    Clock::time_point next = Clock::now() + between_looks;
    for (const Worker &worker : workers_) {
        if (worker.task) {
            next = std::min(next, worker.process.deadline());
        }
    }
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(next - Clock::now());
    return static_cast<int>(std::max<std::chrono::milliseconds::rep>(left.count(), 0));
}

bool BatchRun::wait_for_any(int descriptor)
{
    polled_.clear();
    polled_.push_back({descriptor, POLLIN, 0});
    polled_.push_back({commits_.descriptor(), POLLIN, 0});
    for (const Worker &worker : workers_) {
        polled_.push_back({worker.task ? worker.process.socket() : -1, POLLIN, 0});
    }
    const bool has_hope =
        std::any_of(polled_.begin(), polled_.end(), [](const pollfd &one) { return one.fd >= 0; });
    const int ready = ::poll(polled_.data(), polled_.size(), has_hope ? patience() : 0);
    if (was_interrupted()) {
        stop({ErrorKind::interrupted, "interrupted", "the next run continues from here"});
    }
    if (ready > 0) {
        for (std::size_t i = 0; i < workers_.size() && status_.ok(); ++i) {
            if (polled_[i + 2].revents != 0) {
                receive_from(workers_[i]);
            }
        }
    }
    end_late_jobs();
    hand_out();
    commit_outputs(ready > 0 && polled_[1].revents != 0);
    progress_.show(tally_);
    return ready > 0 && polled_[0].revents != 0;
}

void BatchRun::receive_from(Worker &worker)
{
    Result<std::optional<Outcome>> answer = worker.process.receive();
    if (!answer.ok()) {
        stop(answer.error());
        return;
    }
    if (sandbox_words_.empty()) {
        sandbox_words_ = worker.process.sandbox_words();
    }
    if (!answer.value()) {
        return;
    }
    note(worker, std::move(*answer.value()));
    if (!prepared_.empty() && worker.process.takes_another()) {
        submit(worker);
    } else {
        release(worker);
    }
}

// Of the task's descriptors only the output's is needed from now on.
void BatchRun::note(Worker &worker, Outcome outcome)
{
    worker.task->input.file = base::Descriptor();
    worker.task->earlier_output = base::Descriptor();
    worker.answered.push_back({std::move(*worker.task), std::move(outcome)});
    worker.task.reset();
}

// The worker's next process gets its first file before what the last one reported is looked at. By
// then that one has ended: nothing writes to its outputs any more.
void BatchRun::release(Worker &worker)
{
    Result<ChildProcess> process = worker.process.release();
    const bool is_busy = worker.task.has_value(); // the run is being ended
    std::vector<AnsweredTask> answered = std::exchange(worker.answered, {});
    if (!prepared_.empty() && !is_busy) {
        submit(worker);
    }
    if (!process.ok()) {
        stop(process.error());
        return;
    }
    process.value().end();
    for (AnsweredTask &one : answered) {
        finish(std::move(one.task), std::move(one.outcome));
    }
}

void BatchRun::end_late_jobs()
{
    const Clock::time_point now = Clock::now();
    for (Worker &worker : workers_) {
        if (status_.ok() && worker.task && worker.process.deadline() <= now) {
            note(worker, worker.process.end_late());
            release(worker);
        }
    }
}

// ------------------------------------------------------ from the workers to the manifest -----

void BatchRun::finish(Task task, Outcome outcome)
{
    if ((outcome.status == FileStatus::unchanged && !task.earlier) ||
        (has_output(outcome.status) && !is_output(task.output->descriptor(), outcome))) {
        outcome = invalid_report();
    }
    if (outcome.status == FileStatus::unwritten && !is_unwritable(task.output->descriptor())) {
        outcome = unwritten_once(outcome);
    }
    if (outcome.status == FileStatus::unwritten) {
        stop(unwritten(outcome));
    } else if (has_output(outcome.status)) {
        task.output->close(); // some hundred wait to be synced: too many to keep their descriptors
        std::string line = record_line(task.file, request_.recorded, outcome);
        CommitRule rule = rule_of(task, outcome);
        commits_.add({&task.entry, std::move(task.file), std::move(outcome), std::move(line),
                      std::move(*task.output), std::move(rule)});
    } else {
        record(task, outcome);
    }
}

CommitRule BatchRun::rule_of(Task &task, const Outcome &outcome)
{
    return {{outcome.output_size, outcome.output_digest},
            std::move(task.own),
            request_.overwrite,
            [this](const FileIdentity &file) { return is_input(file); }};
}

bool BatchRun::is_input(const FileIdentity &file)
{
    if (!read_files_) {
        read_files_.emplace(request_.inputs);
    }
    return read_files_->has(file);
}

// What was found to be unchanged is looked at again here: a worker's word is not enough, and the
// output may have been changed since.
void BatchRun::record(Task &task, const Outcome &outcome)
{
    if (outcome.status != FileStatus::unchanged) {
        task.entry.finish(outcome.status, record_line(task.file, request_.recorded, outcome));
    } else if (has_earlier_output(*task.earlier)) {
        task.entry.finish(task.earlier->status, std::move(task.earlier_line),
                          std::move(task.earlier->output));
    } else {
        record(task, failed_outcome(FileStatus::kept,
                                    kept_file(request_.output + "/" + task.file.output)));
    }
}

bool BatchRun::has_earlier_output(const EarlierRecord &earlier) const
{
    if (earlier.output.empty()) {
        return true;
    }
    const base::Descriptor file = folder_.open_existing(earlier.output, earlier.output_size);
    return content_of(file.get(), earlier.output_size) ==
           OutputContent{earlier.output_size, earlier.output_digest};
}

void BatchRun::commit_outputs(bool is_synced)
{
    Status fault = is_synced ? commits_.finish() : Status();
    const bool is_last = inputs_ended_ && prepared_.empty() &&
                         std::none_of(workers_.begin(), workers_.end(),
                                      [](const Worker &worker) { return worker.task.has_value(); });
    fault = fault.ok() ? commits_.begin(is_last || lines_.is_full()) : fault;
    const Clock::time_point now = Clock::now();
    if (fault.ok() &&
        (is_synced || is_last || lines_.is_full() || now - looked_ >= between_looks)) {
        looked_ = now;
        fault = write_lines();
    }
    if (!fault.ok()) {
        stop(fault.error());
    }
}

Status BatchRun::write_lines()
{
    const ManifestLines::Taken taken = lines_.take(tally_);
    return taken.lines.empty() ? Status() : manifest_.add(taken.lines, taken.outputs);
}

// What the manifest claims is on the disk before it is: the names of the outputs, too.
Status BatchRun::finish_manifest()
{
    if (const int error_number = sync_volumes(folder_.volumes()); error_number != 0) {
        return folder_.sync_error(error_number);
    }
    return manifest_.finish([this](const std::string &line) {
        const std::optional<RecordedLine> recorded = recorded_line(line);
        return recorded && recorded->output &&
               folder_.open_existing(recorded->output->name, recorded->output->content.size)
                   .is_open();
    });
}

} // namespace pfsdoc::batch

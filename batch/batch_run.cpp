#include "batch_run.h"

#include "interruption.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <utility>

namespace pfsdoc {

namespace {

constexpr std::chrono::milliseconds between_looks{250};
constexpr off_t probed_bytes = 65536;
constexpr int some_failed = 1;

Job job_of(const RecordedFile &file, const std::optional<EarlierRecord> &earlier)
{
    Job job;
    job.size = file.size;
    job.title.set(std::string_view(file.name).substr(file.name.rfind('/') + 1));
    if (earlier) {
        job.has_earlier = 1;
        job.has_earlier_output = earlier->output.empty() ? 0 : 1;
        job.earlier_input = earlier->input;
        job.earlier_output = earlier->output_digest;
    }
    return job;
}

// Whether it is so that nothing can be written: a worker that has been taken over may say so
// to end the run.
bool is_unwritable(int descriptor)
{
    const off_t end = ::lseek(descriptor, 0, SEEK_END);
    return ::posix_fallocate(descriptor, std::max<off_t>(end, 0), probed_bytes) != 0;
}

Error unwritten(const Outcome &outcome)
{
    return {ErrorKind::output, std::string(outcome.what.get()),
            "make room; the next run goes on from here"};
}

bool lies_in(const std::filesystem::path &inner, const std::filesystem::path &outer)
{
    const auto [end, rest] = std::mismatch(outer.begin(), outer.end(), inner.begin(), inner.end());
    return end == outer.end();
}

// What is written must not be read: the run would not be the same when it is done again, or
// have no end. Below the folders that are read, the output's own is passed over.
Status check_places(const BatchRequest &request)
{
    namespace fs = std::filesystem;
    std::error_code failure;
    const fs::path output = fs::weakly_canonical(fs::absolute(request.output), failure);
    const fs::path manifest = fs::weakly_canonical(fs::absolute(request.manifest), failure);
    for (const std::string &path : request.inputs.paths) {
        const fs::path input = fs::canonical(path, failure);
        if (failure || !fs::is_directory(input, failure)) {
            continue;
        }
        if (input == output) {
            return Error{ErrorKind::usage, path + " would be read and written to",
                         "name another folder with -o"};
        }
        if (lies_in(manifest, input) && (lies_in(input, output) || !lies_in(manifest, output))) {
            return Error{ErrorKind::usage, "the manifest lies in " + path + ", which is read",
                         "name another place with --manifest"};
        }
    }
    return {};
}

// How many files there are, where that can be told quickly and surely: not of archives and
// lists.
std::optional<uint64_t> count_files(const InputOptions &inputs)
{
    namespace fs = std::filesystem;
    if (!inputs.list_files.empty()) {
        return std::nullopt;
    }
    uint64_t count = 0;
    for (const std::string &path : inputs.paths) {
        std::error_code failure;
        if (!fs::is_directory(path, failure)) {
            ++count;
            continue;
        }
        for (fs::recursive_directory_iterator entry(path, failure), end; !failure && entry != end;
             entry.increment(failure)) {
            count += entry->is_regular_file(failure) ? 1 : 0;
        }
    }
    return count > 0 ? std::optional(count) : std::nullopt;
}

int report_end(const BatchRequest &request, const BatchRun &run, const Status &fault)
{
    if (!request.quiet && !run.pool().sandbox_words().empty()) {
        report_line("sandbox: " + run.pool().sandbox_words());
    }
    const bool has_failures = run.tally().failures() > 0;
    if (!request.quiet) {
        const std::string where = request.manifest + (fault ? ".partial" : "");
        report_line(run.tally().words() + (has_failures || fault ? "; see " + where : ""));
    }
    if (fault) {
        return report_error(*fault);
    }
    return has_failures ? some_failed : 0;
}

} // namespace

BatchRun::BatchRun(const BatchRequest &request, BatchInputs &inputs, OutputFolder folder,
                   Manifest manifest)
    : request_(request), inputs_(inputs), folder_(std::move(folder)),
      manifest_(std::move(manifest)), placement_(folder_), pool_(pool_settings())
{
}

PoolSettings BatchRun::pool_settings() const
{
    PoolSettings settings = request_.pool;
    settings.before_fork = [this] { placement_.pause(); };
    return settings;
}

Status BatchRun::convert_all(int wake, Progress &progress)
{
    while (!inputs_ended_ || !slots_.empty()) {
        if (was_interrupted()) {
            return Error{ErrorKind::interrupted, "interrupted", "the next run goes on from here"};
        }
        if (Status fault = feed()) {
            return fault;
        }
        if (Status fault = place()) {
            return fault;
        }
        if (pool_.has_busy()) {
            for (const Finished &finished : pool_.wait(wake, between_looks)) {
                if (Status fault = settle(finished)) {
                    return fault;
                }
            }
        }
        if (Status fault = write_lines()) {
            return fault;
        }
        progress.show(tally_);
    }
    return {};
}

// What has been converted when something ends the run is kept, as far as that can be done.
Status BatchRun::run(int wake, Progress &progress)
{
    const Status fault = convert_all(wake, progress);
    if (fault && !place_all()) {
        static_cast<void>(write_lines());
    }
    return fault ? fault : manifest_.finish();
}

// Inputs are opened when somebody is there to read them.
Status BatchRun::feed()
{
    while (!inputs_ended_ && slots_.size() < window && pool_.has_idle() && !was_interrupted()) {
        std::optional<BatchInput> input = inputs_.next();
        inputs_ended_ = !input && !was_interrupted();
        if (!input) {
            return {};
        }
        if (Status fault = take(std::move(*input))) {
            return fault;
        }
    }
    return {};
}

Status BatchRun::take(BatchInput input)
{
    const uint64_t number = first_ + slots_.size();
    const std::string output = input.name + "." + std::string(request_.recorded.extension);
    Slot &slot = slots_.emplace_back(Slot{{input.name, input.size, output}, {}, {}, {}, {}, {}});
    if (input.error) {
        close(slot, failed_outcome(status_of(input.error->kind), *input.error));
        return {};
    }
    look_up(slot);
    return give_out(slot, input, number);
}

void BatchRun::look_up(Slot &slot) const
{
    for (std::string &line : manifest_.earlier().find(slot.file.name)) {
        slot.earlier = usable_record(line, slot.file, request_.recorded);
        if (slot.earlier) {
            slot.earlier_line = std::move(line) + "\n";
            return;
        }
    }
}

Status BatchRun::give_out(Slot &slot, const BatchInput &input, uint64_t number)
{
    OpenFile earlier_output;
    if (slot.earlier && !slot.earlier->output.empty()) {
        earlier_output = folder_.open_existing(slot.file.output, slot.earlier->output_size);
        if (earlier_output.get() < 0) {
            slot.earlier.reset();
        }
    }
    Result<PendingOutput> output = folder_.create(slot.file.output);
    if (!output.ok() && output.error().kind == ErrorKind::output) {
        return output.error();
    }
    if (!output.ok()) {
        close(slot, failed_outcome(FileStatus::name, output.error()));
        return {};
    }
    slot.output.emplace(std::move(output.value()));
    const std::array<int, max_descriptors> descriptors = {
        input.file.get(), slot.output->descriptor(), earlier_output.get()};
    const std::size_t count = earlier_output.get() < 0 ? max_descriptors - 1 : max_descriptors;
    return pool_.submit(number, job_of(slot.file, slot.earlier),
                        std::span(descriptors).first(count));
}

Status BatchRun::settle(const Finished &finished)
{
    Slot &slot = slots_[finished.file - first_];
    Outcome outcome = finished.outcome;
    const bool is_false =
        (outcome.status == FileStatus::unchanged && !slot.earlier) ||
        (outcome.status == FileStatus::unwritten && !is_unwritable(slot.output->descriptor()));
    if (is_false) {
        outcome =
            failed_outcome(FileStatus::crashed,
                           {ErrorKind::internal, "the process that read it said what is not so",
                            "please report this as a fault of pfsdoc"});
    }
    if (outcome.status == FileStatus::unwritten) {
        return unwritten(outcome);
    }
    if (has_output(outcome.status)) {
        slot.line = record_line(slot.file, request_.recorded, outcome);
        placement_.gather({finished.file, outcome.status, std::move(*slot.output)});
    } else {
        close(slot, outcome);
    }
    slot.output.reset();
    return {};
}

// Called when every worker has been given what there is: if none is busy, there is nothing else
// to do than to wait for the disk.
Status BatchRun::place()
{
    if (placement_.is_under_way() && (placement_.is_over() || !pool_.has_busy())) {
        if (Status fault = finish_placing()) {
            return fault;
        }
    }
    if (!placement_.is_under_way() && is_time_to_place()) {
        placed_ = Clock::now();
        placement_.begin();
    }
    return {};
}

bool BatchRun::is_time_to_place() const
{
    return placement_.gathered() > 0 &&
           (placement_.gathered() >= placed_at_once || !pool_.has_busy() ||
            Clock::now() - placed_ >= longest_unplaced);
}

Status BatchRun::finish_placing()
{
    for (const PlacedOutput &placed : placement_.finish()) {
        Slot &slot = slots_[placed.file - first_];
        if (!placed.fault) {
            slot.status = placed.status;
        } else if (placed.fault->kind == ErrorKind::usage) {
            close(slot, failed_outcome(FileStatus::name, *placed.fault));
        } else {
            return placed.fault;
        }
    }
    return {};
}

Status BatchRun::place_all()
{
    if (placement_.is_under_way()) {
        if (Status fault = finish_placing()) {
            return fault;
        }
    }
    placement_.begin();
    return finish_placing();
}

void BatchRun::close(Slot &slot, const Outcome &outcome) const
{
    const bool is_unchanged = outcome.status == FileStatus::unchanged;
    slot.status = is_unchanged ? slot.earlier->status : outcome.status;
    slot.line = is_unchanged ? std::move(slot.earlier_line)
                             : record_line(slot.file, request_.recorded, outcome);
}

Status BatchRun::write_lines()
{
    std::string lines;
    for (; !slots_.empty() && slots_.front().status; ++first_) {
        lines += slots_.front().line;
        tally_.add(*slots_.front().status);
        slots_.pop_front();
    }
    return lines.empty() ? Status() : manifest_.add(lines);
}

int run_batch(const BatchRequest &request)
{
    if (const Status misplaced = check_places(request)) {
        return report_error(*misplaced);
    }
    const Result<int> wake = watch_interruptions();
    if (!wake.ok()) {
        return report_error(wake.error());
    }
    Result<OutputFolder> folder = OutputFolder::open(request.output);
    if (!folder.ok()) {
        return report_error(folder.error());
    }
    Result<Manifest> manifest = Manifest::open(request.manifest);
    if (!manifest.ok()) {
        return report_error(manifest.error());
    }
    const std::unique_ptr<BatchInputs> inputs = open_inputs(request.inputs);
    Progress progress(request.progress, request.progress == ProgressForm::none
                                            ? std::nullopt
                                            : count_files(request.inputs));
    BatchRun run(request, *inputs, std::move(folder.value()), std::move(manifest.value()));
    const Status fault = run.run(wake.value(), progress);
    progress.clear();
    return report_end(request, run, fault);
}

} // namespace pfsdoc

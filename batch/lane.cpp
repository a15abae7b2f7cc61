#include "batch/lane.h"

#include "lib/base/printable.h"

#include <algorithm>
#include <array>
#include <exception>
#include <fcntl.h>
#include <new>
#include <span>
#include <sys/types.h>
#include <unistd.h>
#include <utility>

namespace pfsdoc::batch {

namespace {

constexpr off_t probed_bytes = 65536;

Job job_of(const RecordedFile &file, const std::optional<EarlierRecord> &earlier)
{
    Job job;
    job.size = file.size;
    job.title.set(base::base_name(file.name));
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

Outcome false_word()
{
    return failed_outcome(FileStatus::crashed,
                          {ErrorKind::internal, "the process that read it said what is not so",
                           "please report this as a fault of pfsdoc"});
}

} // namespace

void Lane::work()
{
    try {
        while (std::optional<Task> task = next()) {
            if (Status fault = convert(*task)) {
                setting_.ledger.stop(std::move(*fault));
            }
        }
    } catch (const std::bad_alloc &) {
        setting_.ledger.stop({ErrorKind::internal, "there is not enough memory",
                              "end other programs and try again"});
    } catch (const std::exception &fault) {
        setting_.ledger.stop(
            {ErrorKind::internal, fault.what(), "please report this as a fault of pfsdoc"});
    }
    setting_.ledger.end_lane();
}

std::optional<Lane::Task> Lane::next()
{
    const std::lock_guard lock(setting_.inputs_mutex);
    if (!setting_.ledger.wait_for_room()) {
        return std::nullopt;
    }
    std::optional<BatchInput> input = setting_.inputs.next();
    if (!input) {
        setting_.ledger.end_inputs();
        return std::nullopt;
    }
    RecordedFile file{input->name, input->size,
                      input->name + "." + std::string(setting_.recorded.extension)};
    return Task{setting_.ledger.enter(), std::move(*input), std::move(file)};
}

Status Lane::convert(Task &task)
{
    if (task.input.error) {
        const Error &error = *task.input.error;
        close(task, failed_outcome(status_of(error.kind), error));
        return {};
    }
    look_up(task);
    const OpenFile earlier_output = open_earlier_output(task);
    Result<PendingOutput> output = setting_.folder.create(task.file.output);
    if (!output.ok() && output.error().kind == ErrorKind::output) {
        return output.error();
    }
    if (!output.ok()) {
        close(task, failed_outcome(FileStatus::name, output.error()));
        return {};
    }
    const std::array<int, 3> descriptors = {task.input.file.get(), output.value().descriptor(),
                                            earlier_output.get()};
    const Result<Outcome> outcome =
        worker_.convert(job_of(task.file, task.earlier),
                        std::span(descriptors).first(earlier_output.get() < 0 ? 2 : 3));
    return outcome.ok() ? settle(task, std::move(output.value()), outcome.value())
                        : Status(outcome.error());
}

void Lane::look_up(Task &task) const
{
    for (std::string &line : setting_.earlier.find(task.file.name)) {
        task.earlier = usable_record(line, task.file, setting_.recorded);
        if (task.earlier) {
            task.earlier_line = std::move(line) + "\n";
            return;
        }
    }
}

// An output that is not what it was is made again.
OpenFile Lane::open_earlier_output(Task &task) const
{
    if (!task.earlier || task.earlier->output.empty()) {
        return OpenFile();
    }
    OpenFile output = setting_.folder.open_existing(task.file.output, task.earlier->output_size);
    if (output.get() < 0) {
        task.earlier.reset();
    }
    return output;
}

Status Lane::settle(Task &task, PendingOutput output, Outcome outcome)
{
    const bool is_false =
        (outcome.status == FileStatus::unchanged && !task.earlier) ||
        (outcome.status == FileStatus::unwritten && !is_unwritable(output.descriptor()));
    if (is_false) {
        outcome = false_word();
    }
    if (outcome.status == FileStatus::unwritten) {
        return unwritten(outcome);
    }
    if (!has_output(outcome.status)) {
        close(task, outcome);
        return {};
    }
    output.close(); // some hundred wait for their names: too many to keep their descriptors
    std::string line = record_line(task.file, setting_.recorded, outcome);
    setting_.ledger.gather(
        {&task.entry, std::move(task.file), outcome.status, std::move(line), std::move(output)});
    return {};
}

void Lane::close(Task &task, const Outcome &outcome)
{
    if (outcome.status == FileStatus::unchanged) {
        setting_.ledger.close(task.entry, task.earlier->status, std::move(task.earlier_line));
    } else {
        setting_.ledger.close(task.entry, outcome.status,
                              record_line(task.file, setting_.recorded, outcome));
    }
}

} // namespace pfsdoc::batch

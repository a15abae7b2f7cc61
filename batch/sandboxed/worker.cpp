#include "batch/sandboxed/worker.h"

#include "batch/sandboxed/convert_file.h"
#include "batch/sandboxed/limits.h"
#include "batch/wire/job.h"
#include "batch/wire/records.h"
#include "lib/base/descriptor.h"
#include "lib/base/scratch_file.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <exception>
#include <new>
#include <optional>
#include <sys/prctl.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace pfsdoc::batch {

namespace {

// What cannot be opened in the sandbox.
Result<std::vector<int>> open_scratch_files(std::size_t count)
{
    std::vector<int> files;
    while (files.size() < count) {
        files.push_back(base::open_scratch_file());
        if (files.back() < 0) {
            return base::scratch_error(errno);
        }
    }
    return files;
}

Hello failed_hello(const Error &error)
{
    Hello hello;
    hello.failed = 1;
    hello.kind = error.kind;
    hello.words.set(error.what);
    hello.remedy.set(error.remedy);
    return hello;
}

// The counter of the output's bytes may be out of order in a process that was taken over; the
// system's is not. There may be no memory left afterwards.
Hello enter(const WorkerSettings &settings, const ReaderStart &start)
{
    const uint64_t own = start.address_space;
    limit_resources(
        {own + std::min(settings.max_memory, UINT64_MAX - own), settings.conversion.max_output});
    const Result<sandbox::Report> report = start.walls.enter();
    if (!report.ok()) {
        return failed_hello(report.error());
    }
    Hello hello;
    hello.words.set(report.value().words());
    return hello;
}

JobFiles files_of(const Job &job, const std::vector<int> &descriptors)
{
    const auto at = [&descriptors](std::size_t index) {
        return base::Descriptor(index < descriptors.size() ? descriptors[index] : -1);
    };
    return {at(0), at(1), job.has_earlier_output != 0 ? at(2) : base::Descriptor()};
}

Outcome convert(int socket, const ConversionSettings &settings, uint64_t &number)
{
    std::vector<int> descriptors;
    const std::optional<Job> job = receive_record<Job>(socket, &descriptors);
    if (!job) {
        ::_exit(EXIT_SUCCESS);
    }
    number = job->number;
    return convert_file(*job, files_of(*job, descriptors), settings);
}

Outcome lack_of_memory()
{
    return failed_outcome(FileStatus::memory, {ErrorKind::limit, "needs more memory than the limit",
                                               "allow more with --max-memory"});
}

// What to answer when there is no memory comes from when there was.
Outcome answer(int socket, const ConversionSettings &settings, const Outcome &without_memory)
{
    uint64_t number = 0;
    Outcome outcome = without_memory;
    try {
        outcome = convert(socket, settings, number);
    } catch (const std::bad_alloc &) {
    } catch (const std::exception &fault) {
        outcome = failed_outcome(FileStatus::internal, {ErrorKind::internal, fault.what(),
                                                        "please report this as a fault of pfsdoc"});
    }
    outcome.job = number;
    return outcome;
}

} // namespace

void run_worker(int socket, const WorkerSettings &settings, const ReaderStart &start)
{
    ::prctl(PR_SET_NAME, "pfsdoc-worker");
    ConversionSettings conversion = settings.conversion;
    const auto files = open_scratch_files(conversion.format->scratch_files);
    if (files.ok()) {
        conversion.options.scratch_files = files.value();
    }
    const Outcome without_memory = lack_of_memory();
    const Hello hello = files.ok() ? enter(settings, start) : failed_hello(files.error());
    if (!send_record(socket, hello) || hello.failed != 0) {
        ::_exit(EXIT_FAILURE);
    }
    while (send_record(socket, answer(socket, conversion, without_memory))) {
    }
    ::_exit(EXIT_FAILURE);
}

} // namespace pfsdoc::batch

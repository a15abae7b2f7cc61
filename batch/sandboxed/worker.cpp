#include "batch/sandboxed/worker.h"

#include "batch/sandboxed/convert_file.h"
#include "batch/sandboxed/sandbox.h"
#include "batch/sandboxed/shadow_memory.h"
#include "batch/wire/job.h"
#include "batch/wire/records.h"
#include "lib/base/descriptor.h"
#include "lib/base/scratch_file.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <exception>
#include <fstream>
#include <new>
#include <optional>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace pfsdoc::batch {

namespace {

void limit(__rlimit_resource resource, uint64_t value)
{
    rlimit now{};
    ::getrlimit(resource, &now);
    now.rlim_cur = std::min<rlim_t>(now.rlim_cur, value);
    now.rlim_max = now.rlim_cur;
    ::setrlimit(resource, &now);
}

// Of this process at its start, in bytes: the program, and what the parent had when it forked this
// process, which grows with the number of files.
uint64_t address_space()
{
    uint64_t pages = 0;
    std::ifstream("/proc/self/statm") >> pages;
    return pages * static_cast<uint64_t>(::sysconf(_SC_PAGESIZE));
}

// The counter of the output's bytes may be out of order in a process that was taken over; the
// system's is not. A dump of memory would be a file nobody asked for.
void limit_resources(const WorkerSettings &settings)
{
    limit(RLIMIT_FSIZE, settings.conversion.max_output);
    limit(RLIMIT_CORE, 0);
    if (!memory_is_shadowed) {
        const uint64_t own = address_space();
        limit(RLIMIT_AS, own + std::min(settings.max_memory, UINT64_MAX - own));
    }
}

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

Hello enter(SandboxMode mode)
{
    const Result<SandboxReport> report = enter_sandbox(mode);
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

Outcome outcome_of(const Job &job, const std::vector<int> &descriptors,
                   const ConversionSettings &settings)
{
    try {
        return convert_file(job, files_of(job, descriptors), settings);
    } catch (const std::bad_alloc &) {
        return failed_outcome(
            FileStatus::memory,
            {ErrorKind::limit, "needs more memory than the limit", "allow more with --max-memory"});
    } catch (const std::exception &fault) {
        return failed_outcome(FileStatus::internal, {ErrorKind::internal, fault.what(),
                                                     "please report this as a fault of pfsdoc"});
    }
}

} // namespace

void run_worker(int socket, const WorkerSettings &settings)
{
    ::prctl(PR_SET_NAME, "pfsdoc-worker");
    limit_resources(settings);
    const auto files = open_scratch_files(settings.conversion.format->scratch_files);
    const Hello hello = files.ok() ? enter(settings.sandbox) : failed_hello(files.error());
    if (!send_record(socket, hello) || hello.failed != 0) {
        ::_exit(EXIT_FAILURE);
    }
    ConversionSettings conversion = settings.conversion;
    conversion.options.scratch_files = files.value();
    for (;;) {
        std::vector<int> descriptors;
        const std::optional<Job> job = receive_record<Job>(socket, &descriptors);
        if (!job || !send_record(socket, outcome_of(*job, descriptors, conversion))) {
            ::_exit(job ? EXIT_FAILURE : EXIT_SUCCESS);
        }
    }
}

} // namespace pfsdoc::batch

// A worker as the run sees it: a process for each file, with a socket of its own, over which it
// gets that file and answers once. It is ended then, so that no file's reader sees another file,
// and a file that is in place is written to no more. The next process is ready by then.
//
// A process that dies, or takes too long and is killed, costs its file the conversion. Nothing
// here waits: the run polls the socket. Test: tests/batch/run/canary_test.cpp.
#pragma once

#include "batch/trusted/child_process.h"
#include "batch/trusted/launcher.h"
#include "batch/wire/job.h"
#include "lib/base/descriptor.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace pfsdoc::batch {

class WorkerProcess {
public:
    using Clock = std::chrono::steady_clock;

    // What became of a job. The process may still write until it is ended.
    struct Answer {
        Outcome outcome;
        ChildProcess process;
    };

    // The launcher must outlive this.
    WorkerProcess(Launcher &launcher, std::chrono::milliseconds max_time)
        : launcher_(&launcher), max_time_(max_time)
    {
    }
    // Ends the processes.
    ~WorkerProcess();
    WorkerProcess(WorkerProcess &&) = default;
    WorkerProcess &operator=(WorkerProcess &&) = delete;

    // The descriptors are those that a job has. Errors: why no process can be started, or what
    // keeps it from doing any job, such as that there is no sandbox.
    Status submit(Job job, std::span<const int> descriptors);
    // To be polled while there is a job; receive() does not wait then.
    int socket() const
    {
        return current_.socket.get();
    }
    // Nothing: the process has only reported that it is ready. Errors: as above.
    Result<std::optional<Answer>> receive();
    // When the job is late; it never is while its process is getting ready.
    Clock::time_point deadline() const
    {
        return deadline_;
    }
    // Ends a process whose job is late.
    Outcome end_late();
    // What holds the processes; empty before one is ready for the first time.
    const std::string &sandbox_words() const
    {
        return sandbox_words_;
    }

private:
    // A process that was asked for.
    struct Reader {
        base::Descriptor socket{}; // open while there is one
        uint64_t launch = 0;       // the launcher's number for it
        bool is_ready = false;     // it has said so
    };

    Result<Reader> ask_for_reader();
    Status send(const Job &job, std::span<const int> descriptors);
    Status accept(const Hello &hello);
    Result<std::optional<Answer>> ended();
    Result<ChildProcess> take_process(Reader &reader);

    Launcher *launcher_;
    std::chrono::milliseconds max_time_; // for a file
    Reader current_;
    Reader next_;
    uint64_t job_ = 0; // the number of the current one
    Clock::time_point deadline_ = Clock::time_point::max();
    std::string sandbox_words_;
};

// What becomes of a file whose process reports what cannot be.
Outcome invalid_report();

} // namespace pfsdoc::batch

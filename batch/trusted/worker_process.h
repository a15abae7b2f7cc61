// A worker as the run sees it: a process, with a socket of its own, over which it gets a file at a
// time and answers once for each. After some files it is to be released, and what it reported is
// used when it has ended: nothing writes to the outputs any more then. The next process is ready
// by that time, and knows of no file that came before.
//
// A process that dies, or takes too long and is killed, costs its file the conversion. Nothing
// here waits: the run polls the socket. Test: tests/batch/run/canary_test.cpp.
#pragma once

#include "batch/trusted/child_process.h"
#include "batch/trusted/launcher.h"
#include "batch/wire/job.h"
#include "lib/base/descriptor.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace pfsdoc::batch {

class WorkerProcess {
public:
    using Clock = std::chrono::steady_clock;

    // The launcher must outlive this.
    WorkerProcess(Launcher &launcher, std::chrono::milliseconds max_time,
                  std::size_t files_per_process)
        : launcher_(&launcher), max_time_(max_time), files_per_process_(files_per_process)
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
    // What became of the job; nothing: the process has only reported that it is ready. Errors: as
    // above.
    Result<std::optional<Outcome>> receive();
    // Whether the process that has answered can get one more file.
    bool takes_another() const;
    // Kills the process; there may be none. The next job goes to another one. Errors: as above.
    Result<ChildProcess> release();
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
        bool is_spent = false;     // it is to get no other file
        std::size_t files = 0;     // that it has got
    };

    Result<Reader> ask_for_reader();
    Status send(const Job &job, std::span<const int> descriptors);
    Status send_to_next(const Job &job, std::span<const int> descriptors);
    Status accept(const Hello &hello);
    Result<std::optional<Outcome>> ended();
    Result<ChildProcess> take_process(Reader &reader);

    Launcher *launcher_;
    std::chrono::milliseconds max_time_; // for a file
    std::size_t files_per_process_;
    Reader current_;
    Reader next_;
    uint64_t job_ = 0; // the number of the current one
    Clock::time_point deadline_ = Clock::time_point::max();
    std::string sandbox_words_;
};

// What becomes of a file whose process reports what cannot be.
Outcome invalid_report();

} // namespace pfsdoc::batch

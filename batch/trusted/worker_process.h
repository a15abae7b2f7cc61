// A worker as the run sees it: a process with a socket, which is given one file at a time. One
// that dies, or takes too long and is killed, costs that file its conversion; the next file gets
// a new process. Nothing here waits: the run polls the socket. Test:
// tests/batch/run/canary_test.cpp.
#pragma once

#include "batch/trusted/child_process.h"
#include "batch/wire/job.h"
#include "batch/wire/settings.h"
#include "lib/base/descriptor.h"

#include <chrono>
#include <optional>
#include <span>
#include <string>

namespace pfsdoc::batch {

class WorkerProcess {
public:
    using Clock = std::chrono::steady_clock;

    // The settings must outlive this.
    WorkerProcess(const WorkerSettings &settings, WorkerRole role,
                  std::chrono::milliseconds max_time)
        : settings_(settings), role_(role), max_time_(max_time)
    {
    }

    // The descriptors are those that a job has. Errors: why no process can be started.
    Status submit(const Job &job, std::span<const int> descriptors);
    // To be polled while there is a job; receive() does not wait then.
    int socket() const
    {
        return socket_.get();
    }
    // What became of the job. Nothing: the process has only reported that it is ready. Errors:
    // what keeps workers from doing any job, such as that there is no sandbox.
    Result<std::optional<Outcome>> receive();
    // When the job is late; it never is while its process is getting ready.
    Clock::time_point deadline() const
    {
        return deadline_;
    }
    // Ends a process whose job is late.
    Outcome end_late();
    // What holds it; empty before it is ready for the first time.
    const std::string &sandbox_words() const
    {
        return sandbox_words_;
    }

private:
    Status start();
    Status receive_hello();
    int end();

    const WorkerSettings &settings_;
    WorkerRole role_;
    std::chrono::milliseconds max_time_; // for a file
    ChildProcess process_;
    base::Descriptor socket_;
    bool is_ready_ = false; // the process has said so
    Clock::time_point deadline_ = Clock::time_point::max();
    std::string sandbox_words_;
};

} // namespace pfsdoc::batch

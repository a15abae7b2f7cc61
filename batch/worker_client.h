// A worker as its lane sees it: a process with a socket, that is given one file at a time. One
// that dies, or takes too long and is killed, costs that file its conversion; the next file gets
// a new process. Test: tests/batch/run/canary_test.cpp.
#pragma once

#include "batch/messages.h"
#include "batch/processes/fork_server.h"
#include "batch/processes/open_file.h"

#include <chrono>
#include <span>
#include <string>
#include <sys/types.h>

namespace pfsdoc::batch {

class WorkerClient {
public:
    // The server must outlive this.
    WorkerClient(ForkServer &server, std::chrono::milliseconds max_time)
        : server_(server), max_time_(max_time)
    {
    }
    // Ends it.
    ~WorkerClient();
    WorkerClient(const WorkerClient &) = delete;
    WorkerClient &operator=(const WorkerClient &) = delete;

    // Waits until it is done. The descriptors are those that a job has. Errors: what kept a
    // worker from being had, such as that there is no process or no sandbox.
    Result<Outcome> convert(const Job &job, std::span<const int> descriptors);
    // What holds it; empty before the first file.
    const std::string &sandbox_words() const
    {
        return sandbox_words_;
    }

private:
    Status start();
    Status submit(const Job &job, std::span<const int> descriptors);
    bool wait() const;
    Outcome receive();
    int bury();

    ForkServer &server_;
    std::chrono::milliseconds max_time_; // for a file
    pid_t process_ = 0;                  // 0: none
    OpenFile socket_;
    std::string sandbox_words_;
};

} // namespace pfsdoc::batch

// The workers of a run, as their parent sees them: each is a process with a socket, and has
// one file at a time. One that dies, or takes too long and is killed, costs that file its
// conversion; the next file gets a new process. Test: tests/batch/run/canary_test.cpp.
#pragma once

#include "messages.h"
#include "worker.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <sys/types.h>
#include <vector>

namespace pfsdoc {

struct PoolSettings {
    WorkerSettings worker;
    unsigned workers = 1;
    std::chrono::milliseconds max_time{30000}; // for a file
    // Ends the program's other threads: a process is forked only where there are none.
    std::function<void()> before_fork = [] {};
};

struct Finished {
    uint64_t file; // as it was submitted
    Outcome outcome;
};

class WorkerPool {
public:
    explicit WorkerPool(const PoolSettings &settings);
    // Ends them all, whatever they are at.
    ~WorkerPool();
    WorkerPool(const WorkerPool &) = delete;
    WorkerPool &operator=(const WorkerPool &) = delete;

    bool has_idle() const;
    bool has_busy() const;
    // To a worker that is idle, of which there must be one. An error where none can be had:
    // no process, or no sandbox.
    Status submit(uint64_t file, const Job &job, std::span<const int> descriptors);
    // Waits until a worker is done, has died or has been killed, or until `wake` can be read,
    // or for `patience`.
    std::vector<Finished> wait(int wake, std::chrono::milliseconds patience);
    // What holds the workers; empty before the first of them.
    const std::string &sandbox_words() const
    {
        return sandbox_words_;
    }

private:
    using Clock = std::chrono::steady_clock;

    struct Worker {
        pid_t process = 0; // 0: none
        OpenFile socket;
        std::optional<uint64_t> file; // that it has
        Clock::time_point deadline;
    };

    Status start(Worker &worker);
    Finished receive(Worker &worker);
    Finished bury(Worker &worker);
    Finished kill_late(Worker &worker);
    std::chrono::milliseconds until_next_deadline(std::chrono::milliseconds patience) const;

    PoolSettings settings_;
    std::vector<Worker> workers_;
    std::string sandbox_words_;
};

} // namespace pfsdoc

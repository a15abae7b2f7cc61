// Forks the processes of a run, and ends them.
//
// A process is forked only where there is one thread, since the others' locks would stay closed
// in it for good; and a run has several. So the first thing that a run does is to fork this
// server, which forks all others when it is asked to: they begin with what was in memory then.
// They end with the server, and the server ends with the process that started it, however that
// comes to its end. Test: tests/batch/fork_server_test.cpp.
#pragma once

#include "batch/processes/open_file.h"
#include "pfsdoc/error.h"

#include <functional>
#include <memory>
#include <mutex>
#include <span>
#include <sys/types.h>

namespace pfsdoc::batch {

// What a new process goes on with: a function that never returns. The descriptors are its own;
// it closes those that it does not want, the server's included.
struct ProcessRoles {
    std::function<void(std::span<const int> descriptors)> archive_reader;
    std::function<void(std::span<const int> descriptors)> worker;
};

enum class ProcessRole : int32_t { archive_reader, worker };

class ForkServer {
public:
    // To be called by a process of one thread. Errors: internal (no process can be had).
    static Result<std::unique_ptr<ForkServer>> start(const ProcessRoles &roles);
    ~ForkServer();
    ForkServer(const ForkServer &) = delete;
    ForkServer &operator=(const ForkServer &) = delete;

    // These may be called on any thread; each waits for the server's answer.

    // A new process, which is given these descriptors, max_descriptors at most; they stay the
    // caller's too. Errors: internal (no process can be had).
    Result<pid_t> fork(ProcessRole role, std::span<const int> descriptors);
    // Kills one of these processes, if it has not ended, and gives its status as waitpid has it.
    int end(pid_t process);
    // Ends all of them, and the server; those that are asked for afterwards cannot be had.
    void shut_down();

    pid_t process() const
    {
        return process_;
    }

private:
    ForkServer(pid_t process, OpenFile socket) : process_(process), socket_(std::move(socket)) {}

    pid_t process_;
    std::mutex mutex_; // held from a question to its answer
    OpenFile socket_;
};

} // namespace pfsdoc::batch

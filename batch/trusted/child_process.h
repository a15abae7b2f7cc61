// A process that is forked from this one. It keeps the descriptors that it is given and no others;
// its standard streams lead nowhere. It ends with its ChildProcess, and with the process that
// started it however that one ends.
//
// Only a process of one thread may fork and go on without exec: the locks of other threads would
// stay closed in the child for good. So nothing in this program starts a thread. The child's memory
// begins as a copy of its parent's, which may hold names of files and remains of archives' members.
// Test: tests/batch/trusted/child_process_test.cpp.
#pragma once

#include "pfsdoc/error.h"

#include <functional>
#include <span>
#include <string>
#include <sys/types.h>

namespace pfsdoc::batch {

class ChildProcess {
public:
    ChildProcess() = default; // none
    // The role is what the process goes on with; the process ends when it returns. Errors:
    // internal (no process can be started).
    static Result<ChildProcess> start(std::span<const int> descriptors,
                                      const std::function<void()> &role);
    // A child of this process that was started in another way.
    static ChildProcess of(pid_t id)
    {
        return ChildProcess(id);
    }
    ~ChildProcess();
    ChildProcess(ChildProcess &&other) noexcept;
    ChildProcess &operator=(ChildProcess &&other) noexcept;

    // 0 for none.
    pid_t id() const
    {
        return id_;
    }
    // Without waiting for its end.
    void kill() const;
    // Kills the process if it has not ended yet, and reaps it; returns its status as waitpid has
    // it. There is none afterwards.
    int end();

private:
    explicit ChildProcess(pid_t id) : id_(id) {}

    pid_t id_ = 0;
};

// "by SIGSEGV", "with code 3".
std::string words_of_end(int wait_status);

} // namespace pfsdoc::batch

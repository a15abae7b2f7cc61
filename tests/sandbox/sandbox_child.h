// Runs a piece of a test in a child process that has entered the sandbox, and tells what it
// said and how it ended.
#pragma once

#include "sandbox/sandbox.h"

#include <functional>
#include <string>

namespace tests {

struct Ending {
    std::string said;    // what the child's work answered
    int exit_status = 0; // -1 where a signal ended it
    int signal = 0;      // 0 where none did
};

// What of the kernel the child is to miss, as with an older one.
enum class Kernel { whole, without_landlock, without_seccomp, without_both };

// The work is called behind the sandbox and answers with what there is to say. A child whose
// sandbox cannot be entered says "no sandbox: ..." and does not do it. One that hangs is ended
// by SIGALRM.
Ending in_sandbox(pfsdoc::sandbox::Mode mode, const std::function<std::string()> &work,
                  Kernel kernel = Kernel::whole);

// As above; `before` is called in the child in front of the sandbox.
Ending in_sandbox_after(const std::function<void()> &before,
                        const std::function<std::string()> &work);

} // namespace tests

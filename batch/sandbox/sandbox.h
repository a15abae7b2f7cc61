// What a process that reads strangers' bytes gives up before it reads the first of them.
//
// The process has its input and output open already, so it needs no file, no socket and no
// other process: seccomp lets through what computing, memory and those descriptors need, and
// Landlock takes the file system away below it. Either can be missing in a kernel; what is
// there is used. Test: tests/batch/sandbox_test.cpp.
#pragma once

#include "error.h"

#include <string>

namespace pfsdoc {

enum class SandboxMode {
    off,
    available, // whatever the kernel has
    required   // an error where any of it is missing
};

// What holds the process now.
struct SandboxReport {
    bool seccomp = false;
    int landlock = 0; // the ABI version that is used, 0 for none
    // "seccomp, Landlock 3" or "none".
    std::string words() const;
};

// For good, and for all threads and children to come. A forbidden call fails with EPERM where
// the C library can take that, and ends the process with SIGSYS else. To be called by a
// process of one thread. After it: reading, writing and closing descriptors that are open,
// receiving and sending messages and descriptors on sockets that are open, memory, clocks and
// exiting.
Result<SandboxReport> enter_sandbox(SandboxMode mode);

} // namespace pfsdoc

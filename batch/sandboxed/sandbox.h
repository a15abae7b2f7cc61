// What a process that reads strangers' bytes gives up before it reads the first of them.
//
// The process has its input and output open already, so it needs no file, no socket and no
// other process: seccomp lets through what computing, memory and those descriptors need, and
// Landlock takes the file system away below it. Either can be missing in a kernel; what is
// there is used.
//
// What is left:
// - reading, writing, positioning, truncating, duplicating and closing descriptors, and pipes
//   of its own;
// - sending and receiving on sockets that are open, descriptors too, but to no address that
//   send or sendto names;
// - memory, but none that can be executed;
// - clocks, random numbers, waiting, signals to itself, and exiting.
//
// What fails with EPERM, since libraries take that for an answer:
// - opening, making, removing, renaming and looking up files by name, listing folders;
// - new sockets, connections and listening;
// - new processes, threads and programs;
// - ioctl and prctl, and what the C library asks about the machine and can do without.
//
// All else ends the process with SIGSYS, as no honest library would call it here: signals to
// other processes, ptrace, memory that can be executed, mounts, limits, users, and the calls
// that nobody has thought of yet.
//
// One gap is left: what fstat uses can be given a file's name as well, and seccomp sees no
// strings. So the process can still learn a file's size, times and owner, but no content.
// Test: tests/batch/sandboxed/sandbox_test.cpp.
#pragma once

#include "batch/wire/settings.h"
#include "pfsdoc/error.h"

#include <string>

namespace pfsdoc::batch {

// What holds the process now.
struct SandboxReport {
    bool seccomp = false;
    int landlock = 0; // the ABI version that is used, which the kernel may be ahead of; 0 for none
    // "seccomp, Landlock 3" or "none".
    std::string words() const;
};

// For good, and for all threads and children to come. To be called once, by a process of one
// thread, when all libraries that it will need are loaded. Errors, with `required` only:
// internal (the kernel lacks something), after which a part of the sandbox may hold.
Result<SandboxReport> enter_sandbox(SandboxMode mode);

} // namespace pfsdoc::batch

// What a process that reads strangers' bytes gives up before it reads the first of them.
//
// The process has its input and output open already, so it needs no file, no socket and no
// other process: seccomp lets through what computing, memory and those descriptors need, and
// Landlock takes the file system away below it. Either can be missing in a kernel; what is
// there is used.
//
// What is left:
// - reading, writing, positioning, truncating, duplicating and closing descriptors, whose flags
//   stay as they are, and pipes of its own;
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
//
// A sandbox is built in two steps, so that one process can start many in it, each at little cost:
// most of it is built once and inherited, and holds the starting process too. What that one still
// needs, each process it starts gives up by itself. Test: tests/sandbox/sandbox_test.cpp.
#pragma once

#include "lib/base/descriptor.h"
#include "pfsdoc/error.h"
#include "sandbox/mode.h"

#include <string>

namespace pfsdoc::sandbox {

// What holds the process now.
struct Report {
    bool seccomp = false;
    int landlock = 0; // the ABI version that is used, which the kernel may be ahead of; 0 for none
    // "seccomp, Landlock 3" or "none".
    std::string words() const;
};

// What is inherited: the process that builds it can still open and remove files, limit itself
// and start processes, and do nothing else that the sandbox forbids. For good, and by a process of
// one thread when all libraries that will be needed are loaded.
class Sandbox {
public:
    static Sandbox build(Mode mode);

    // In the process itself or in one that it started: once, and for good. Needs no memory, so
    // that a process which may have none of it is in the sandbox all the same. Errors, with
    // Mode::required only: internal (the kernel lacks something), after which a part of the
    // sandbox may hold.
    Result<Report> enter() const;

private:
    explicit Sandbox(Mode mode) : mode_(mode) {}

    Mode mode_;
    base::Descriptor landlock_rules_; // open where the kernel has Landlock
    int landlock_version_ = 0;
    int landlock_error_ = 0; // the system's, where there are no rules
    bool filters_calls_ = false;
};

// Both steps at once.
Result<Report> enter(Mode mode);

} // namespace pfsdoc::sandbox

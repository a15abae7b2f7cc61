// Which system calls a process in the sandbox may use, as two filters of seccomp: a long one that
// also holds a process which starts others, and a short one for what those give up. sandbox.h tells
// the kinds, and system_calls.cpp has the lists. Test: tests/sandbox/sandbox_test.cpp.
#pragma once

namespace pfsdoc::sandbox {

// Both: false where the kernel takes no filter. The process must have given up new privileges
// (PR_SET_NO_NEW_PRIVS).
bool restrict_system_calls();
// Needs no memory.
bool restrict_last_system_calls();

} // namespace pfsdoc::sandbox

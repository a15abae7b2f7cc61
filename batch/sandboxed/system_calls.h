// Which system calls a process in the sandbox may use, as a filter of seccomp. sandbox.h tells
// the kinds, and system_calls.cpp has the lists. Test: tests/batch/sandboxed/sandbox_test.cpp.
#pragma once

namespace pfsdoc::batch {

// False where the kernel takes no filter; libseccomp does not tell why. The process must have
// given up new privileges (PR_SET_NO_NEW_PRIVS).
bool restrict_system_calls();

} // namespace pfsdoc::batch

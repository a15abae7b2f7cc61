// Landlock takes rights to files, the network and other processes from a process for good.
// Here it takes all that the kernel knows, with no exception. Test:
// tests/batch/sandboxed/sandbox_test.cpp.
#pragma once

namespace pfsdoc::batch {

// What became of it.
struct Landlock {
    int version = 0;      // of the ABI that is used, 0 for none
    int error_number = 0; // why there is none
};

// The process must have given up new privileges (PR_SET_NO_NEW_PRIVS).
Landlock restrict_by_landlock();

} // namespace pfsdoc::batch

// Landlock takes rights to files, the network and other processes from a process for good.
// Here it takes all that the kernel knows, with no exception. Test:
// tests/sandbox/sandbox_test.cpp.
#pragma once

#include "lib/base/descriptor.h"

namespace pfsdoc::sandbox {

struct LandlockRules {
    base::Descriptor descriptor;
    int version = 0;      // of the ABI that is used, 0 for none
    int error_number = 0; // why there is none
};

LandlockRules landlock_rules();

// False, with errno, where the kernel refuses. The process must have given up new privileges
// (PR_SET_NO_NEW_PRIVS).
bool restrict_by_landlock(int rules);

} // namespace pfsdoc::sandbox

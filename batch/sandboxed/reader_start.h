// What a process that reads strangers' bytes finds when it begins. Test:
// tests/batch/trusted/launcher_test.cpp.
#pragma once

#include "sandbox/sandbox.h"

#include <cstdint>

namespace pfsdoc::batch {

struct ReaderStart {
    const sandbox::Sandbox &walls; // built, and to be entered
    uint64_t address_space;        // of the program itself, in bytes
};

} // namespace pfsdoc::batch

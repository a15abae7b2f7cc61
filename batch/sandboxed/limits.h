// What the system keeps a process from using too much of. Tests: tests/batch/run/canary_test.cpp
// and tests/batch/trusted/archive_inputs_test.cpp.
#pragma once

#include <cstdint>

namespace pfsdoc::batch {

// Of this process, in bytes; 0 where the system does not tell.
uint64_t address_space();

struct ResourceLimits {
    uint64_t address_space = UINT64_MAX;
    uint64_t file_size = UINT64_MAX; // of what is written
};

// For good, and without memory. A dump of memory would be a file nobody asked for, so there is
// none.
void limit_resources(const ResourceLimits &limits);

} // namespace pfsdoc::batch

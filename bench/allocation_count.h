// The number of memory allocations in the process.
#pragma once

#include <cstdint>

namespace bench {

uint64_t allocation_count();

} // namespace bench

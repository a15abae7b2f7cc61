// How often anything in the process has asked for memory.
#pragma once

#include <cstdint>

namespace bench {

uint64_t allocation_count();

} // namespace bench

// Files for what must be put aside and memory should not hold: without a name, so that nothing
// of them is left however the process ends. They are made in the folder that the environment
// variable TMPDIR names, or in /tmp. Tests: tests/lib/base/spill_store_test.cpp and
// tests/lib/reading/byte_source_test.cpp.
#pragma once

#include "pfsdoc/error.h"

namespace pfsdoc::base {

// A new descriptor, for reading and writing, or -1: errno tells why.
int open_scratch_file();

// What an error number of opening, reading or writing one means to the user of a writer.
Error scratch_error(int error_number);

} // namespace pfsdoc::base

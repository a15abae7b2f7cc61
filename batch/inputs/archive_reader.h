// The process that reads an archive: libarchive in a sandbox. Tests:
// tests/batch/archive_inputs_test.cpp.
#pragma once

#include "batch/inputs/inputs.h"

namespace pfsdoc::batch {

// For a process of its own, which has one thread: it closes every other descriptor, reads the
// archive and ends. What is in it goes to the output as archive_messages.h tells.
[[noreturn]] void run_archive_reader(int archive, int output, const InputOptions &options);

} // namespace pfsdoc::batch

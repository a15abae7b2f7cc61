// The process that reads an archive: libarchive in a sandbox. Tests:
// tests/batch/trusted/archive_inputs_test.cpp.
#pragma once

#include "batch/sandboxed/reader_start.h"
#include "batch/wire/settings.h"

namespace pfsdoc::batch {

// For a process of its own, which has one thread: it reads the archive and ends. What is in it goes
// to the output as archive_messages.h tells.
[[noreturn]] void run_archive_reader(int archive, int output, const ArchiveSettings &settings,
                                     const ReaderStart &start);

} // namespace pfsdoc::batch

// A worker process: says that it is ready, takes one file from its socket, answers with what became
// of it, and ends. Test: tests/batch/run/canary_test.cpp.
#pragma once

#include "batch/sandboxed/reader_start.h"
#include "batch/wire/settings.h"

namespace pfsdoc::batch {

// What a process that was just forked goes on with; never returns.
[[noreturn]] void run_worker(int socket, const WorkerSettings &settings, const ReaderStart &start);

} // namespace pfsdoc::batch

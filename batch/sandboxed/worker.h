// A worker process: takes one file after the other from its socket, and answers with what became
// of it. Test: tests/batch/run/canary_test.cpp.
#pragma once

#include "batch/wire/settings.h"

namespace pfsdoc::batch {

// What a process that was just forked goes on with; never returns.
[[noreturn]] void run_worker(int socket, const WorkerSettings &settings);

} // namespace pfsdoc::batch

// A worker process: takes one file after the other from its lane, and answers with what became
// of it. Test: tests/batch/run/canary_test.cpp.
#pragma once

#include "batch/convert_file.h"
#include "batch/sandbox/sandbox.h"

#include <cstdint>

namespace pfsdoc::batch {

struct WorkerSettings {
    ConversionSettings conversion;
    SandboxMode sandbox = SandboxMode::available;
    uint64_t max_memory = UINT64_MAX; // bytes
};

// What a process that was just forked goes on with; never returns. It keeps the socket and the
// standard streams, and closes all else.
[[noreturn]] void run_worker(int socket, const WorkerSettings &settings);

} // namespace pfsdoc::batch

// What is asked of the processes that read strangers' bytes: they get it by being forked. Tests:
// those of tests/batch/run.
#pragma once

#include "pfsdoc/module.h"
#include "pfsdoc/writer.h"
#include "sandbox/mode.h"

#include <cstdint>

namespace pfsdoc::batch {

using SandboxMode = sandbox::Mode;

// The same for all files of a run.
struct ConversionSettings {
    const Format *format = nullptr;
    WriterOptions options;
    const Module *module = nullptr; // outlives the run
    uint64_t max_output = UINT64_MAX;
};

struct WorkerSettings {
    ConversionSettings conversion;
    SandboxMode sandbox = SandboxMode::available;
    uint64_t max_memory = UINT64_MAX; // bytes
};

struct ArchiveSettings {
    uint64_t max_input = uint64_t{1} << 32; // larger members get an error of ErrorKind::limit
    // The bytes that the members of one archive may have together, those of members that were
    // not wanted included; the rest of the archive gets one error of ErrorKind::limit.
    uint64_t max_archive = uint64_t{1} << 36;
    uint64_t max_memory = UINT64_MAX; // bytes, beside the archive's own
    SandboxMode sandbox = SandboxMode::available;
};

// The process that starts those is forked with this, before there is anything else to know.
struct LauncherSettings {
    WorkerSettings worker;
    ArchiveSettings archive;
};

// What a process that was just forked goes on with; never returns.
using LauncherRole = void (*)(int socket, const LauncherSettings &settings);

} // namespace pfsdoc::batch

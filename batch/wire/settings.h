// What is asked of the processes that read strangers' bytes: they get it by being forked. Tests:
// those of tests/batch/run.
#pragma once

#include "pfsdoc/module.h"
#include "pfsdoc/writer.h"

#include <cstdint>

namespace pfsdoc::batch {

enum class SandboxMode {
    off,
    available, // whatever the kernel has
    required   // an error where any of it is missing
};

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
    SandboxMode sandbox = SandboxMode::available;
};

// What a process that was just forked goes on with. It keeps these descriptors and the standard
// streams, and never returns.
using WorkerRole = void (*)(int socket, const WorkerSettings &settings);
using ArchiveReaderRole = void (*)(int archive, int output, const ArchiveSettings &settings);
struct ProcessRoles {
    WorkerRole worker;
    ArchiveReaderRole archive_reader;
};

} // namespace pfsdoc::batch

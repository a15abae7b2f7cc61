// One file from descriptor to descriptor: what a worker does, and all that it does. Nothing
// is opened here. Test: tests/batch/run/batch_test.cpp.
#pragma once

#include "batch/inputs/inputs.h"
#include "batch/messages.h"
#include "batch/outcome.h"
#include "pfsdoc/module.h"
#include "pfsdoc/writer.h"

#include <cstdint>

namespace pfsdoc::batch {

// The same for all files of a run.
struct ConversionSettings {
    const Format *format = nullptr;
    WriterOptions options;
    const Module *module = nullptr; // outlives the run
    uint64_t max_output = UINT64_MAX;
};

// What came with a job; no earlier output where the job says so.
struct JobFiles {
    OpenFile input;
    OpenFile output;
    OpenFile earlier_output;
};

// The answer to anything that is wrong is an outcome too, except that std::bad_alloc is thrown.
Outcome convert_file(const Job &job, JobFiles files, const ConversionSettings &settings);

} // namespace pfsdoc::batch

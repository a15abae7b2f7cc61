// One file from descriptor to descriptor: what a worker does, and all that it does. Nothing
// is opened here. Test: tests/batch/run/batch_test.cpp.
#pragma once

#include "batch/wire/job.h"
#include "batch/wire/outcome.h"
#include "batch/wire/settings.h"
#include "lib/base/descriptor.h"

namespace pfsdoc::batch {

// What came with a job; no earlier output where the job says so.
struct JobFiles {
    base::Descriptor input;
    base::Descriptor output;
    base::Descriptor earlier_output;
};

// The answer to anything that is wrong is an outcome too, except that std::bad_alloc is thrown.
Outcome convert_file(const Job &job, JobFiles files, const ConversionSettings &settings);

} // namespace pfsdoc::batch

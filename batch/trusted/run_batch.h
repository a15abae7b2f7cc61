// A batch from its beginning to its exit code. Test: tests/batch/run/batch_test.cpp.
#pragma once

#include "batch/trusted/batch_request.h"
#include "batch/wire/settings.h"

namespace pfsdoc::batch {

// The program's exit code; what went wrong has been reported on standard error. To be called by
// a process of one thread.
int run_batch(const BatchRequest &request, LauncherRole launcher);

} // namespace pfsdoc::batch

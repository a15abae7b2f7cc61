// The process that starts workers and archive readers. It reads no stranger's byte, and is itself
// in all of the sandbox but what it needs for that. Test: tests/batch/trusted/launcher_test.cpp.
#pragma once

#include "batch/wire/settings.h"

namespace pfsdoc::batch {

// What a process that was just forked goes on with; never returns.
[[noreturn]] void run_launcher(int socket, const LauncherSettings &settings);

} // namespace pfsdoc::batch

// A small process that starts the processes which read strangers' bytes.
//
// It is forked before there is anything to know of any file, and reads no byte of one. So a
// process that it forks has a memory that is quickly copied and holds nothing of other files. They
// are children of the process that has this object, which alone can end them, and end with it.
// Test: tests/batch/trusted/launcher_test.cpp.
#pragma once

#include "batch/trusted/child_process.h"
#include "batch/wire/launch.h"
#include "batch/wire/settings.h"
#include "lib/base/descriptor.h"
#include "pfsdoc/error.h"

#include <cstdint>
#include <map>
#include <span>

namespace pfsdoc::batch {

class Launcher {
public:
    // The settings are copied by forking. Errors: internal (no process can be started).
    static Result<Launcher> start(LauncherRole role, const LauncherSettings &settings);

    // Asks for a process, without waiting for it, and returns the request's number. The process
    // gets the descriptors; they stay open here, too.
    uint64_t request(LaunchKind kind, std::span<const int> descriptors);
    // The process that was asked for, when it has been started; once for each request. Errors:
    // internal (there is none).
    Result<ChildProcess> take(uint64_t request);

private:
    Launcher(ChildProcess process, base::Descriptor socket)
        : process_(std::move(process)), socket_(std::move(socket))
    {
    }
    Result<ChildProcess> receive();

    ChildProcess process_;
    base::Descriptor socket_;
    uint64_t requested_ = 0;
    uint64_t answered_ = 0;
    std::map<uint64_t, Result<ChildProcess>> started_; // and not taken yet
};

} // namespace pfsdoc::batch

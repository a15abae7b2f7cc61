// What the launcher is asked for, and its answer: one for each request, in their order. Test:
// tests/batch/trusted/launcher_test.cpp.
#pragma once

#include <cstdint>

namespace pfsdoc::batch {

enum class LaunchKind : uint32_t {
    worker,        // descriptors: its socket
    archive_reader // descriptors: the archive, and the pipe to write to
};

struct LaunchRequest {
    LaunchKind kind = LaunchKind::worker;
};

struct LaunchReply {
    int32_t process = 0;
    int32_t error_number = 0; // set: there is no process
};

} // namespace pfsdoc::batch

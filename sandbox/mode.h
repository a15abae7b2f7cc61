// Whether a process goes into a sandbox.
#pragma once

namespace pfsdoc::sandbox {

enum class Mode {
    off,
    available, // whatever the kernel has
    required   // an error where any of it is missing
};

} // namespace pfsdoc::sandbox

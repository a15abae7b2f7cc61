// Landlock goes first: seccomp would not let it through. Test:
// tests/batch/sandboxed/sandbox_test.cpp.
#include "batch/sandboxed/sandbox.h"

#include "batch/sandboxed/landlock.h"
#include "batch/sandboxed/system_calls.h"

#include <sys/prctl.h>
#include <system_error>

namespace pfsdoc::batch {

namespace {

Error lacking(const std::string &what)
{
    return {ErrorKind::internal, "the sandbox is not available: the kernel " + what,
            "use a kernel that has it, or read without it with --no-sandbox"};
}

} // namespace

std::string SandboxReport::words() const
{
    std::string words = seccomp ? "seccomp" : "";
    if (landlock > 0) {
        words += (seccomp ? ", Landlock " : "Landlock ") + std::to_string(landlock);
    }
    return words.empty() ? "none" : words;
}

Result<SandboxReport> enter_sandbox(SandboxMode mode)
{
    SandboxReport report;
    if (mode == SandboxMode::off) {
        return report;
    }
    // Both ask for this, and fail where it failed.
    ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0);
    const Landlock landlock = restrict_by_landlock();
    report.landlock = landlock.version;
    if (mode == SandboxMode::required && landlock.version == 0) {
        return lacking("has no Landlock (" +
                       std::generic_category().message(landlock.error_number) + ")");
    }
    report.seccomp = restrict_system_calls();
    if (mode == SandboxMode::required && !report.seccomp) {
        return lacking("takes no filter for seccomp");
    }
    return report;
}

} // namespace pfsdoc::batch

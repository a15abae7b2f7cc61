// The file system goes before the system calls: seccomp would not let that through. Test:
// tests/sandbox/sandbox_test.cpp.
#include "sandbox/sandbox.h"

#include "sandbox/landlock.h"
#include "sandbox/system_calls.h"

#include <cerrno>
#include <sys/prctl.h>
#include <system_error>
#include <utility>

namespace pfsdoc::sandbox {

namespace {

Error lacking(const std::string &what)
{
    return {ErrorKind::internal, "the sandbox is not available: the kernel " + what,
            "use a kernel that has it, or read without it with --sandbox=off"};
}

} // namespace

std::string Report::words() const
{
    std::string words = seccomp ? "seccomp" : "";
    if (landlock > 0) {
        words += (seccomp ? ", Landlock " : "Landlock ") + std::to_string(landlock);
    }
    return words.empty() ? "none" : words;
}

Sandbox Sandbox::build(Mode mode)
{
    Sandbox sandbox(mode);
    if (mode != Mode::off) {
        LandlockRules rules = landlock_rules();
        sandbox.landlock_rules_ = std::move(rules.descriptor);
        sandbox.landlock_version_ = rules.version;
        sandbox.landlock_error_ = rules.error_number;
        // Landlock and seccomp both ask for this, and fail where it failed.
        ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0);
        sandbox.filters_calls_ = restrict_system_calls();
    }
    return sandbox;
}

Result<Report> Sandbox::enter() const
{
    Report report;
    int landlock_error = landlock_error_;
    if (landlock_version_ > 0) {
        landlock_error = restrict_by_landlock(landlock_rules_.get()) ? 0 : errno;
        report.landlock = landlock_error == 0 ? landlock_version_ : 0;
    }
    if (mode_ == Mode::required && report.landlock == 0) {
        return lacking("has no Landlock (" + std::generic_category().message(landlock_error) + ")");
    }
    report.seccomp = filters_calls_ && restrict_last_system_calls();
    if (mode_ == Mode::required && !report.seccomp) {
        return lacking("takes no filter for seccomp");
    }
    return report;
}

Result<Report> enter(Mode mode)
{
    return Sandbox::build(mode).enter();
}

} // namespace pfsdoc::sandbox

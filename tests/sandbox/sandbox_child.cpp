#include "tests/sandbox/sandbox_child.h"

#include <cerrno>
#include <exception>
#include <seccomp.h>
#include <string_view>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace tests {

namespace {

using pfsdoc::sandbox::Mode;

constexpr unsigned patience_seconds = 60;

// Lets every call through but those by which the feature is asked for.
void take_away(Kernel kernel)
{
    const scmp_filter_ctx filter = ::seccomp_init(SCMP_ACT_ALLOW);
    if (kernel == Kernel::without_landlock || kernel == Kernel::without_both) {
        ::seccomp_rule_add_array(filter, SCMP_ACT_ERRNO(ENOSYS), SCMP_SYS(landlock_create_ruleset),
                                 0, nullptr);
    }
    if (kernel == Kernel::without_seccomp || kernel == Kernel::without_both) {
        const scmp_arg_cmp set_seccomp{0, SCMP_CMP_EQ, PR_SET_SECCOMP, 0};
        ::seccomp_rule_add_array(filter, SCMP_ACT_ERRNO(EINVAL), SCMP_SYS(prctl), 1, &set_seccomp);
        ::seccomp_rule_add_array(filter, SCMP_ACT_ERRNO(ENOSYS), SCMP_SYS(seccomp), 0, nullptr);
    }
    ::seccomp_load(filter);
    ::seccomp_release(filter);
}

bool say(int descriptor, std::string_view text)
{
    while (!text.empty()) {
        const ssize_t count = ::write(descriptor, text.data(), text.size());
        if (count <= 0) {
            return false;
        }
        text.remove_prefix(static_cast<std::size_t>(count));
    }
    return true;
}

std::string all_of(int descriptor)
{
    std::string text;
    char buffer[4096];
    ssize_t count = 0;
    while ((count = ::read(descriptor, buffer, sizeof buffer)) > 0) {
        text.append(buffer, static_cast<std::size_t>(count));
    }
    return text;
}

std::string child_says(pfsdoc::sandbox::Mode mode, const std::function<std::string()> &work)
{
    const auto sandbox = pfsdoc::sandbox::enter(mode);
    if (!sandbox.ok()) {
        return "no sandbox: " + sandbox.error().what;
    }
    try {
        return work();
    } catch (const std::exception &exception) {
        return std::string("threw: ") + exception.what();
    }
}

Ending run(const std::function<std::string()> &child)
{
    int ends[2];
    if (::pipe(ends) != 0) {
        return {"no pipe", -1, 0};
    }
    const pid_t process = ::fork();
    if (process == 0) {
        ::close(ends[0]);
        ::alarm(patience_seconds);
        ::_exit(say(ends[1], child()) ? 0 : 1);
    }
    ::close(ends[1]);
    Ending ending;
    ending.said = all_of(ends[0]);
    ::close(ends[0]);
    int status = 0;
    ::waitpid(process, &status, 0);
    ending.exit_status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    ending.signal = WIFSIGNALED(status) ? WTERMSIG(status) : 0;
    return ending;
}

} // namespace

Ending in_sandbox(pfsdoc::sandbox::Mode mode, const std::function<std::string()> &work,
                  Kernel kernel)
{
    return run([&] {
        if (kernel != Kernel::whole) {
            take_away(kernel);
        }
        return child_says(mode, work);
    });
}

Ending in_sandbox_after(const std::function<void()> &before,
                        const std::function<std::string()> &work)
{
    return run([&] {
        before();
        return child_says(Mode::required, work);
    });
}

} // namespace tests

#include "batch/trusted/child_process.h"

#include "lib/base/descriptor.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <string>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace pfsdoc::batch {

namespace {

constexpr int status_of_killed = SIGKILL; // as waitpid has it
constexpr int first_own_descriptor = STDERR_FILENO + 1;

void close_all_but(std::span<const int> descriptors)
{
    std::vector<int> kept(descriptors.begin(), descriptors.end());
    std::sort(kept.begin(), kept.end());
    int next = first_own_descriptor;
    for (const int descriptor : kept) {
        if (descriptor > next) {
            ::close_range(static_cast<unsigned>(next), static_cast<unsigned>(descriptor - 1), 0);
        }
        next = std::max(next, descriptor + 1);
    }
    ::close_range(static_cast<unsigned>(next), ~0U, 0);
}

// Ctrl-C and requests to end reach all processes of the terminal; it is for the parent to say
// what they mean. An exception must not unwind what belongs to the parent: noexcept ends the
// process.
[[noreturn]] void play(pid_t parent, int nowhere, std::span<const int> descriptors,
                       const std::function<void()> &role) noexcept
{
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (::getppid() == parent) {
        for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
            static_cast<void>(std::signal(signal, SIG_IGN));
        }
        for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
            ::dup2(nowhere, stream);
        }
        close_all_but(descriptors);
        role();
    }
    ::_exit(EXIT_FAILURE);
}

} // namespace

Result<ChildProcess> ChildProcess::start(std::span<const int> descriptors,
                                         const std::function<void()> &role)
{
    const base::Descriptor nowhere(::open("/dev/null", O_RDWR | O_CLOEXEC));
    const pid_t parent = ::getpid();
    const pid_t child = nowhere.is_open() ? ::fork() : -1;
    if (child == 0) {
        play(parent, nowhere.get(), descriptors, role);
    }
    if (child < 0) {
        const std::string why = nowhere.is_open() ? "" : "/dev/null: ";
        return Error{ErrorKind::internal,
                     "no process can be started: " + why + std::strerror(errno),
                     "close other programs and try again"};
    }
    return ChildProcess(child);
}

ChildProcess::~ChildProcess()
{
    end();
}

ChildProcess::ChildProcess(ChildProcess &&other) noexcept : id_(std::exchange(other.id_, 0)) {}

ChildProcess &ChildProcess::operator=(ChildProcess &&other) noexcept
{
    const ChildProcess old(std::exchange(id_, std::exchange(other.id_, 0)));
    return *this;
}

void ChildProcess::kill() const
{
    if (id_ != 0) {
        ::kill(id_, SIGKILL);
    }
}

// A process that is dying already dies of what it is dying of.
int ChildProcess::end()
{
    int status = status_of_killed;
    if (const pid_t process = std::exchange(id_, 0); process != 0) {
        ::kill(process, SIGKILL);
        while (::waitpid(process, &status, 0) < 0 && errno == EINTR) {
        }
    }
    return status;
}

std::string words_of_end(int wait_status)
{
    if (!WIFSIGNALED(wait_status)) {
        return "with code " + std::to_string(WEXITSTATUS(wait_status));
    }
    const int number = WTERMSIG(wait_status);
    const char *name = ::sigabbrev_np(number);
    return "by " +
           (name != nullptr ? std::string("SIG") + name : "signal " + std::to_string(number));
}

} // namespace pfsdoc::batch

#include "interruption.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace pfsdoc {

namespace {

constexpr std::array<int, 3> ending_signals = {SIGINT, SIGTERM, SIGHUP};

volatile std::sig_atomic_t interrupted = 0;
std::array<int, 2> wake_pipe = {-1, -1};

void note(int)
{
    const int error_number = errno;
    if (interrupted != 0) {
        ::_exit(exit_code(ErrorKind::interrupted));
    }
    interrupted = 1;
    [[maybe_unused]] const ssize_t written = ::write(wake_pipe[1], "", 1);
    errno = error_number;
}

} // namespace

Result<int> watch_interruptions()
{
    if (::pipe2(wake_pipe.data(), O_CLOEXEC | O_NONBLOCK) != 0) {
        return Error{ErrorKind::internal, std::string("no pipe: ") + std::strerror(errno),
                     "end other programs and try again"};
    }
    struct sigaction action {};
    action.sa_handler = note;
    for (const int signal : ending_signals) {
        struct sigaction before {};
        if (::sigaction(signal, nullptr, &before) == 0 && before.sa_handler != SIG_IGN) {
            ::sigaction(signal, &action, nullptr);
        }
    }
    return wake_pipe[0];
}

bool was_interrupted()
{
    return interrupted != 0;
}

} // namespace pfsdoc

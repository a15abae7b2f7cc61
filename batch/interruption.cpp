#include "batch/interruption.h"

#include "pfsdoc/error.h"

#include <array>
#include <atomic>
#include <csignal>
#include <unistd.h>

namespace pfsdoc::batch {

namespace {

constexpr std::array<int, 3> ending_signals = {SIGINT, SIGTERM, SIGHUP};

// A signal may come to any thread.
std::atomic<bool> interrupted = false;
static_assert(std::atomic<bool>::is_always_lock_free);

void note(int)
{
    if (interrupted.exchange(true)) {
        ::_exit(exit_code(ErrorKind::interrupted));
    }
}

} // namespace

void watch_interruptions()
{
    struct sigaction action {};
    action.sa_handler = note;
    for (const int signal : ending_signals) {
        struct sigaction before {};
        if (::sigaction(signal, nullptr, &before) == 0 && before.sa_handler != SIG_IGN) {
            ::sigaction(signal, &action, nullptr);
        }
    }
}

bool was_interrupted()
{
    return interrupted;
}

} // namespace pfsdoc::batch

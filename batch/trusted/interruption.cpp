#include "batch/trusted/interruption.h"

#include "cli/interruption.h"

#include <atomic>
#include <unistd.h>

namespace pfsdoc::batch {

namespace {

// A signal may come at any time.
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
    cli::on_ending_signals(note);
}

bool was_interrupted()
{
    return interrupted;
}

} // namespace pfsdoc::batch

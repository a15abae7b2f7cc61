#include "batch/processes/processors.h"

#include <algorithm>
#include <sched.h>

namespace pfsdoc::batch {

namespace {

constexpr pid_t calling_thread = 0;

// Empty where the system does not tell.
cpu_set_t own_processors()
{
    cpu_set_t set;
    CPU_ZERO(&set);
    static_cast<void>(::sched_getaffinity(calling_thread, sizeof set, &set));
    return set;
}

} // namespace

std::size_t count_processors()
{
    const cpu_set_t own = own_processors();
    return static_cast<std::size_t>(std::max(CPU_COUNT(&own), 1));
}

void bind_to_processor(std::size_t index)
{
    const cpu_set_t own = own_processors();
    std::size_t found = 0;
    for (std::size_t processor = 0; processor < CPU_SETSIZE; ++processor) {
        if (!CPU_ISSET(processor, &own)) {
            continue;
        }
        if (found == index) {
            cpu_set_t one;
            CPU_ZERO(&one);
            CPU_SET(processor, &one);
            static_cast<void>(::sched_setaffinity(calling_thread, sizeof one, &one));
            return;
        }
        ++found;
    }
}

void bind_beside(pid_t process)
{
    const cpu_set_t own = own_processors();
    static_cast<void>(::sched_setaffinity(process, sizeof own, &own));
}

} // namespace pfsdoc::batch

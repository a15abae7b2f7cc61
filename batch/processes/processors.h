// The processors of a run. A lane and its worker take turns, so they do with one between them;
// but the system sees threads that sleep and wake all the time, and now and then has two wait for
// the same processor while another has nothing to do. Where there is a worker for each, binding
// avoids that: an eighth more letters a second on two processors. Where there are fewer workers
// nothing is bound, since another run would be bound to the same processors. Test:
// tests/batch/processors_test.cpp.
#pragma once

#include <cstddef>
#include <sys/types.h>

namespace pfsdoc::batch {

// Those that the calling thread may run on; 1 where the system does not tell.
std::size_t count_processors();

// From now on the calling thread runs on this one of them only, counted from 0. Of no effect
// where that cannot be had, as bind_beside.
void bind_to_processor(std::size_t index);
// From now on that process, which must be of one thread, runs only where the calling thread may.
void bind_beside(pid_t process);

} // namespace pfsdoc::batch

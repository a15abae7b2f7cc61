// Ctrl-C and requests to end: the first one asks the run to end in an orderly way, the second
// one ends the program, and with it its workers, at once. Test: tests/batch/run/batch_test.cpp.
#pragma once

namespace pfsdoc::batch {

// To be called once. A signal that was ignored when the program began stays ignored.
void watch_interruptions();
bool was_interrupted();

} // namespace pfsdoc::batch

// What surrounds each program's own part: its streams and signals are as it needs them, and
// what it throws ends it with a message. Test: tests/command/command_test.cpp.
#pragma once

namespace pfsdoc::cli {

// The main function of a program: calls run with the same arguments; the exit code.
int run_program(int (*run)(int argument_count, char **arguments), int argument_count,
                char **arguments);

} // namespace pfsdoc::cli

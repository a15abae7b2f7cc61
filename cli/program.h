// What surrounds each program's own part: its streams and signals are as it needs them, and
// what it throws ends it with a message. Test: tests/command/command_test.cpp.
#pragma once

#include "lib/base/file_output.h"

namespace pfsdoc::cli {

// The main function of a program: calls run with the same arguments; the exit code.
int run_program(int (*run)(int argument_count, char **arguments), int argument_count,
                char **arguments);

// Where the output is a pipe that nobody reads any more: ends the program as filters end then, by
// the signal of a broken pipe and without a word. Returns where that signal was ignored when the
// program began: whoever ignores it asks for errors.
void end_if_reader_is_gone(const base::FileOutput &output);

} // namespace pfsdoc::cli

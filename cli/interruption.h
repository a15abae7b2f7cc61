// What Ctrl-C and a request to end do. Test: tests/command/command_test.cpp.
#pragma once

#include "lib/base/file_output.h"

namespace pfsdoc::cli {

// Calls the handler for each signal that asks the program to end, from here on. A signal that
// was ignored when the program began stays ignored.
void on_ending_signals(void (*handler)(int signal));

// Ends the program at once, whatever is going on: the output's temporary file is removed, and
// the exit code is 130.
void handle_interruptions();

// FileOutput::create, with its temporary file known to the above from its first moment on.
// For one output at a time.
Result<std::unique_ptr<base::FileOutput>>
create_interruptible(const std::string &path, const base::FileOutputOptions &options);

} // namespace pfsdoc::cli

// What Ctrl-C and a request to end do: at once, whatever is going on, the output's temporary
// file is removed and the program ends with code 130. Test: tests/command/command_test.cpp.
#pragma once

#include "lib/base/file_output.h"

namespace pfsdoc::cli {

// From here on. A signal that was ignored when the program began stays ignored.
void handle_interruptions();

// FileOutput::create, with its temporary file known to the above from its first moment on.
// For one output at a time.
Result<std::unique_ptr<base::FileOutput>> create_interruptible(const std::string &path,
                                                               uint64_t max_bytes = UINT64_MAX);

} // namespace pfsdoc::cli

// Which options of the command line mean something for which format: shared by the commands
// that convert. Tests: tests/host/convert_command_test.cpp, tests/batch/run/batch_test.cpp.
#pragma once

#include "error.h"
#include "writer.h"

#include <CLI/CLI.hpp>

namespace pfsdoc {

// An error for the first option that was given and that the format does not read.
Status check_format_options(const CLI::App &command, const Format &format);

} // namespace pfsdoc

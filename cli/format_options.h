// Which options of the command line mean something for which format: shared by the commands
// that convert. Tests: tests/command/convert_command_test.cpp, tests/batch/run/batch_test.cpp.
#pragma once

#include "pfsdoc/error.h"
#include "pfsdoc/writer.h"

#include <CLI/CLI.hpp>

namespace pfsdoc::cli {

// An error for the first option that was given and that the format does not read.
Status check_format_options(const CLI::App &command, const Format &format);

} // namespace pfsdoc::cli

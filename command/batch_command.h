// pfsdoc batch: a program of its own, pfsdoc-batch, which loads more than one document is
// worth. It stands beside this one, or where programs stand that only programs call. Test:
// tests/batch/run/batch_test.cpp.
#pragma once

#include "command/command_line.h"

#include <memory>
#include <string_view>

namespace pfsdoc::cli {

inline constexpr std::string_view batch_command = "batch";

// For the list of commands.
std::unique_ptr<CommandLine> batch_command_line();

// Goes on as pfsdoc-batch with these arguments, the first of which is the command's name. Comes
// back only where that fails, with the exit code.
int become_batch(char **arguments);

} // namespace pfsdoc::cli

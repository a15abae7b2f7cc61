// The subcommands, each with a file of its own; the options that each has stand in
// cli/option_table.cpp. Test: tests/command/command_test.cpp.
#pragma once

#include "cli/options.h"

namespace pfsdoc::cli {

struct Subcommand {
    const char *name;
    const char *description;
    const char *footer; // below the options of its help text
    Command command;
    // Does what was asked for, and reports what is wrong; the program's exit code.
    int (*run)(const Options &options);
};

extern const Subcommand identify_subcommand;
extern const Subcommand text_subcommand;
extern const Subcommand convert_subcommand;
extern const Subcommand trace_subcommand;
extern const Subcommand explain_subcommand;
extern const Subcommand batch_subcommand;

} // namespace pfsdoc::cli

// The one table of options of all commands: what each is called, what its help says, which
// commands have it, and where its value goes. docs/man has a page for each command that must
// agree with it; tests/manual_page.sh and tests/cli/option_table_test.cpp see to that.
#pragma once

#include "cli/arguments.h"

#include <CLI/CLI.hpp>

#include <span>

namespace pfsdoc::cli {

// Bits: an option may belong to several commands.
enum Command : unsigned {
    identify_command = 1U << 0,
    text_command = 1U << 1,
    convert_command = 1U << 2,
    trace_command = 1U << 3,
    explain_command = 1U << 4,
    batch_command = 1U << 5,
};

struct OptionEntry {
    unsigned commands;    // bits of Command
    const char *names;    // without dashes for operands
    const char *argument; // in the help text; null for a flag
    const char *help;
    // Sets the option up so that its value goes into the arguments.
    CLI::Option *(*add)(CLI::App &, const OptionEntry &, Arguments &);
    // Those of a writer that it stands for: an option that the output's format does not read is
    // an error.
    OptionSet writer_options = {};
    const char *excludes = nullptr; // an earlier entry's name
};

// In the order in which help texts list them.
std::span<const OptionEntry> option_table();

} // namespace pfsdoc::cli

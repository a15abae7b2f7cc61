// Parsing of a command line, and what ends a program right after it. Test:
// tests/command/command_test.cpp.
#pragma once

#include <CLI/CLI.hpp>

#include <optional>

namespace pfsdoc::cli {

// The exit code where that was all: help was asked for, or the command line is wrong.
std::optional<int> parse(CLI::App &app, int argument_count, char **arguments, const char *remedy);

} // namespace pfsdoc::cli

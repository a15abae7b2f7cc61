// The command lines of identify and explain, the commands that look at files as they are.
// Test: tests/host/command_test.cpp.
#pragma once

#include "commands.h"

#include <CLI/CLI.hpp>

#include <string>

namespace pfsdoc {

struct IdentifyOptions {
    IdentifyRequest request;
    bool json_array = false;
    bool json_lines = false;
};

struct ExplainOptions {
    ExplainRequest request; // its document's options are added by the caller
    std::string colours = "auto";
    std::string charset;
};

// The options must outlive the parsing.
CLI::App *add_identify(CLI::App &app, IdentifyOptions &options);
CLI::App *add_explain(CLI::App &app, ExplainOptions &options);

// Run what was parsed; the program's exit code.
int run_identify(const IdentifyOptions &options);
int run_explain(const ExplainOptions &options);

} // namespace pfsdoc

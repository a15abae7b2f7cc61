// The commands' own parts of the command line. main.cpp has the list of them, and sets up the
// one that is called only, with the options that its arguments need: most of what a small
// document costs is starting up.
// Test: tests/command/command_test.cpp.
#pragma once

#include "cli/option_set.h"
#include "command/commands.h"
#include "pfsdoc/code_page.h"

#include <CLI/CLI.hpp>

#include <memory>
#include <string>

namespace pfsdoc::cli {

class CommandLine {
public:
    virtual ~CommandLine() = default;

    virtual const char *name() const = 0;
    virtual const char *description() const = 0;
    // Adds at least those that are wanted. Must stay where it is from here until the command
    // line has been parsed.
    virtual void add_options(CLI::App &command, OptionSet wanted) = 0;
    // Does what was parsed; the program's exit code.
    virtual int run(const CLI::App &command) = 0;
};

std::unique_ptr<CommandLine> identify_command_line();
std::unique_ptr<CommandLine> text_command_line();
std::unique_ptr<CommandLine> convert_command_line();
std::unique_ptr<CommandLine> trace_command_line();
std::unique_ptr<CommandLine> explain_command_line();

// What all commands for one document have: the document, the output, the module.
void add_document_options(CLI::App &command, DocumentRequest &request, OptionSet wanted);

// What commands that show characters have, too.
class CharsetOption {
public:
    void add_to(CLI::App &command);
    // Code page 437 unless another one was asked for.
    Result<CodePage> page() const;

private:
    std::string name_;
};

} // namespace pfsdoc::cli

// The command pfsdoc: finds the subcommand that is called. The manual page is
// docs/man/pfsdoc.1, which must agree with the help text. Test: tests/command/command_test.cpp.
#include "cli/interruption.h"
#include "cli/parse.h"
#include "cli/program.h"
#include "command/batch_command.h"
#include "command/subcommand.h"

#include <algorithm>
#include <optional>
#include <span>
#include <string_view>

namespace {

using namespace pfsdoc::cli;

constexpr const char *description =
    "Reads documents of PFS: WRITE, Professional Write, IBM Writing Assistant\n"
    "and PFS: First Choice.";

constexpr const char *examples = R"(Examples:
  pfsdoc identify *            what each file is, by its content
  pfsdoc text LETTER           the letter as text, on the screen
  pfsdoc convert LETTER -o letter.html
                               as a page for the browser
  pfsdoc trace --fold LETTER   what the module reports, one event a line
  pfsdoc explain LETTER        every byte of it, and what it was read as
  pfsdoc text - < LETTER       from standard input
  pfsdoc batch letters/ -o out -t odt
                               a whole folder, and what became of each file

Exit codes:
  0    done
  1    some of several inputs failed
  2    the command line is wrong
  3    an input cannot be read
  4    a file is not a supported document
  5    the document is truncated; the part that could be read was written
  6    a limit was hit
  7    the output cannot be written
  70   a fault of pfsdoc itself, or of its module
  130  interrupted)";

constexpr const Subcommand *subcommands[] = {
    &identify_subcommand, &text_subcommand,  &convert_subcommand,
    &explain_subcommand,  &trace_subcommand, &batch_subcommand,
};

// The one of this name; all where there is none, as for the help text. Setting one up takes as
// long as reading a page.
std::span<const Subcommand *const> candidates(std::string_view name)
{
    const std::span<const Subcommand *const> all = subcommands;
    const auto found = std::find_if(all.begin(), all.end(), [name](const Subcommand *subcommand) {
        return subcommand->name == name;
    });
    return found == all.end() ? all : all.subspan(static_cast<std::size_t>(found - all.begin()), 1);
}

int run(int argument_count, char **arguments)
{
    handle_interruptions();
    if (argument_count > 1 && std::string_view(arguments[1]) == batch_subcommand.name) {
        return become_batch(arguments + 1);
    }
    CLI::App app(description, "pfsdoc");
    app.set_version_flag("--version", "pfsdoc " PFSDOC_VERSION, "Print the version and exit");
    app.require_subcommand(1);
    app.footer(examples);
    Options options;
    const Subcommand *called = nullptr;
    for (const Subcommand *subcommand : candidates(argument_count > 1 ? arguments[1] : "")) {
        CLI::App *parser = app.add_subcommand(subcommand->name, subcommand->description);
        parser->preparse_callback([&options, &called, parser, subcommand](std::size_t) {
            called = subcommand;
            parser->footer(subcommand->footer);
            options.add_to(*parser, subcommand->command);
        });
    }
    const std::optional<int> ended = parse(app, argument_count, arguments, "see pfsdoc --help");
    return ended ? *ended : called->run(options);
}

} // namespace

int main(int argument_count, char **arguments)
{
    return run_program(run, argument_count, arguments);
}

// The command pfsdoc: reads the command line and hands over to commands.h. The manual page
// is docs/man/pfsdoc.1; what is said here and there must agree. Test:
// tests/command/command_test.cpp.
#include "cli/arguments.h"
#include "cli/interruption.h"
#include "command/batch_command.h"
#include "command/command_line.h"

#include <algorithm>
#include <csignal>
#include <exception>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace {

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
  4    a file is not a document of a kind known here
  5    the document is cut short; what there is of it has been written
  6    a limit was hit
  7    the output cannot be written
  70   a fault of pfsdoc itself, or of its module
  130  interrupted)";

std::vector<std::unique_ptr<pfsdoc::cli::CommandLine>> all_command_lines()
{
    std::vector<std::unique_ptr<pfsdoc::cli::CommandLine>> lines;
    lines.push_back(pfsdoc::cli::identify_command_line());
    lines.push_back(pfsdoc::cli::text_command_line());
    lines.push_back(pfsdoc::cli::convert_command_line());
    lines.push_back(pfsdoc::cli::explain_command_line());
    lines.push_back(pfsdoc::cli::trace_command_line());
    lines.push_back(pfsdoc::cli::batch_command_line());
    return lines;
}

// The one that is called. All where the first argument is none: as for help.
std::vector<std::unique_ptr<pfsdoc::cli::CommandLine>> command_lines_for(const std::string &first)
{
    std::vector<std::unique_ptr<pfsdoc::cli::CommandLine>> lines = all_command_lines();
    const auto is_called = [&first](const auto &line) { return line->name() == first; };
    if (std::any_of(lines.begin(), lines.end(), is_called)) {
        std::erase_if(lines, std::not_fn(is_called));
    }
    return lines;
}

int run(int argument_count, char **arguments)
{
    if (argument_count > 1 && std::string_view(arguments[1]) == pfsdoc::cli::batch_command) {
        return pfsdoc::cli::become_batch(arguments + 1);
    }
    CLI::App app(description, "pfsdoc");
    app.set_version_flag("--version", "pfsdoc " PFSDOC_VERSION, "Print the version and exit");
    app.require_subcommand(1);
    app.footer(examples);
    std::vector<std::string> reversed = pfsdoc::cli::reversed_arguments(argument_count, arguments);
    const pfsdoc::cli::OptionSet wanted = pfsdoc::cli::wanted_options(reversed);
    const auto command_lines = command_lines_for(reversed.empty() ? "" : reversed.back());
    for (const auto &line : command_lines) {
        CLI::App *command = app.add_subcommand(line->name(), line->description());
        if (std::find(reversed.begin(), reversed.end(), line->name()) != reversed.end()) {
            line->add_options(*command, wanted);
        }
    }
    try {
        app.parse(std::move(reversed));
    } catch (const CLI::CallForHelp &) {
        return pfsdoc::cli::run_print(app.help());
    } catch (const CLI::CallForVersion &version) {
        return pfsdoc::cli::run_print(std::string(version.what()) + "\n");
    } catch (const CLI::ParseError &error) {
        return pfsdoc::cli::report("",
                                   {pfsdoc::ErrorKind::usage, error.what(), "see pfsdoc --help"});
    }
    const CLI::App &command = *app.get_subcommands().front();
    const auto called =
        std::find_if(command_lines.begin(), command_lines.end(),
                     [&command](const auto &line) { return line->name() == command.get_name(); });
    return (*called)->run(command);
}

} // namespace

int main(int argument_count, char **arguments)
{
    // A reader that goes away, or a file that may not grow, is an output that cannot be written,
    // with a message of its own.
    for (const int signal : {SIGPIPE, SIGXFSZ}) {
        static_cast<void>(std::signal(signal, SIG_IGN));
    }
    pfsdoc::cli::occupy_standard_streams();
    pfsdoc::cli::handle_interruptions();
    try {
        return run(argument_count, arguments);
    } catch (const std::bad_alloc &) {
        return pfsdoc::cli::report("", {pfsdoc::ErrorKind::internal, "there is not enough memory",
                                        "end other programs and try again"});
    } catch (const std::exception &fault) {
        return pfsdoc::cli::report("", {pfsdoc::ErrorKind::internal, fault.what(),
                                        "please report this as a fault of pfsdoc"});
    }
}

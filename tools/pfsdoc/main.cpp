// The command pfsdoc: reads the command line and hands over to commands.h. The manual page
// is docs/man/pfsdoc.1; what is said here and there must agree. Test:
// tests/host/command_test.cpp.
#include "command_line.h"
#include "interruption.h"

#include <algorithm>
#include <csignal>
#include <exception>
#include <fcntl.h>
#include <memory>
#include <string>
#include <unistd.h>
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

// Whether an argument that can only be a file's name would be taken for something else: for
// an option after "--", for a list of names in brackets.
bool is_misread_name(const std::string &argument, bool only_names)
{
    const bool is_bracketed =
        argument.size() > 1 && argument.front() == '[' && argument.back() == ']';
    return is_bracketed || (only_names && argument.size() > 1 && argument.front() == '-');
}

// The arguments without the program's name, in the reverse order in which CLI11 takes them.
// Names that would be misread are given a path that leads to the same file.
std::vector<std::string> reversed_arguments(int argument_count, char **arguments)
{
    std::vector<std::string> result;
    bool only_names = false;
    for (int index = 1; index < argument_count; ++index) {
        const std::string argument = arguments[index];
        if (!only_names && argument == "--") {
            only_names = true;
        } else {
            result.push_back(is_misread_name(argument, only_names) ? "./" + argument : argument);
        }
    }
    std::reverse(result.begin(), result.end());
    return result;
}

std::vector<std::unique_ptr<pfsdoc::CommandLine>> all_command_lines()
{
    std::vector<std::unique_ptr<pfsdoc::CommandLine>> lines;
    lines.push_back(pfsdoc::identify_command_line());
    lines.push_back(pfsdoc::text_command_line());
    lines.push_back(pfsdoc::convert_command_line());
    lines.push_back(pfsdoc::explain_command_line());
    lines.push_back(pfsdoc::trace_command_line());
    return lines;
}

int run(int argument_count, char **arguments)
{
    CLI::App app(description, "pfsdoc");
    app.set_version_flag("--version", "pfsdoc " PFSDOC_VERSION, "Print the version and exit");
    app.require_subcommand(1);
    app.footer(examples);
    std::vector<std::string> reversed = reversed_arguments(argument_count, arguments);
    const auto command_lines = all_command_lines();
    for (const auto &line : command_lines) {
        CLI::App *command = app.add_subcommand(line->name(), line->description());
        if (std::find(reversed.begin(), reversed.end(), line->name()) != reversed.end()) {
            line->add_options(*command);
        }
    }
    try {
        app.parse(std::move(reversed));
    } catch (const CLI::CallForHelp &) {
        return pfsdoc::run_print(app.help());
    } catch (const CLI::CallForVersion &version) {
        return pfsdoc::run_print(std::string(version.what()) + "\n");
    } catch (const CLI::ParseError &error) {
        return pfsdoc::report("", {pfsdoc::ErrorKind::usage, error.what(), "see pfsdoc --help"});
    }
    const CLI::App &command = *app.get_subcommands().front();
    const auto called =
        std::find_if(command_lines.begin(), command_lines.end(),
                     [&command](const auto &line) { return line->name() == command.get_name(); });
    return (*called)->run(command);
}

// A standard stream that is closed would give its number to the next file that is opened, and
// messages would go into a document. The stand-ins fail when they are used.
void occupy_standard_streams()
{
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (::fcntl(descriptor, F_GETFD) < 0) {
            ::open("/dev/null", descriptor == STDIN_FILENO ? O_WRONLY : O_RDONLY);
        }
    }
}

} // namespace

int main(int argument_count, char **arguments)
{
    // A reader that goes away is an output that cannot be written, with a message of its own.
    static_cast<void>(std::signal(SIGPIPE, SIG_IGN));
    occupy_standard_streams();
    pfsdoc::handle_interruptions();
    try {
        return run(argument_count, arguments);
    } catch (const std::bad_alloc &) {
        return pfsdoc::report("", {pfsdoc::ErrorKind::internal, "there is not enough memory",
                                   "end other programs and try again"});
    } catch (const std::exception &fault) {
        return pfsdoc::report("", {pfsdoc::ErrorKind::internal, fault.what(),
                                   "please report this as a fault of pfsdoc"});
    }
}

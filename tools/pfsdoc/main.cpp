// The command pfsdoc: reads the command line and hands over to commands.h. The manual page
// is docs/man/pfsdoc.1; what is said here and there must agree. Test:
// tests/host/command_test.cpp.
#include "commands.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <csignal>
#include <exception>
#include <fcntl.h>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

constexpr const char *description =
    "Reads documents of PFS: WRITE, Professional Write, IBM Writing Assistant\n"
    "and PFS: First Choice.";

constexpr const char *examples = R"(Examples:
  pfsdoc identify *            what each file is, by its content
  pfsdoc text LETTER           the letter as text, on the screen
  pfsdoc text LETTER -o l.txt  the same into a file
  pfsdoc trace --fold LETTER   what the module reports, one event a line
  pfsdoc text - < LETTER       from standard input

Exit codes:
  0   done
  2   the command line is wrong
  3   an input cannot be read
  4   a file is not a document of a kind known here
  5   the document is cut short; what there is of it has been written
  7   the output cannot be written
  70  a fault of pfsdoc itself, or of its module)";

constexpr const char *identify_examples =
    R"(Goes on after a file that fails; the exit code is that of the first failure.

Example:
  pfsdoc identify letters/*)";

constexpr const char *text_examples =
    R"(The text is UTF-8, wrapped to the document's margins; page breaks are form feeds.

Examples:
  pfsdoc text LETTER | less
  pfsdoc text --no-page-breaks LETTER -o letter.txt)";

constexpr const char *trace_examples = R"(Example:
  pfsdoc trace --fold --offsets LETTER)";

struct Requests {
    std::vector<std::string> identify;
    pfsdoc::TextRequest text;
    pfsdoc::TraceRequest trace;
    bool no_page_breaks = false;
};

void add_document_options(CLI::App &command, pfsdoc::DocumentRequest &request)
{
    command.add_option("FILE", request.file, "the document; - is standard input")
        ->required()
        ->option_text(" ");
    command.add_option("-o,--output", request.output, "write to this file, whole or not at all")
        ->option_text("FILE");
    command
        .add_option("--module", request.module,
                    "the filter module to read with, or \"linked\" for the built-in one")
        ->option_text("PATH");
}

CLI::App *add_identify(CLI::App &app, Requests &requests)
{
    CLI::App *command = app.add_subcommand("identify", "Tell what files are, one line for each");
    command->add_option("FILE", requests.identify, "the files; - is standard input")
        ->required()
        ->option_text("...");
    command->footer(identify_examples);
    return command;
}

CLI::App *add_text(CLI::App &app, Requests &requests)
{
    CLI::App *command = app.add_subcommand("text", "Write a document as plain text");
    add_document_options(*command, requests.text.document);
    command->add_flag("--no-page-breaks", requests.no_page_breaks, "leave the form feeds out");
    command->add_flag("--commands", requests.text.options.commands,
                      "show the commands embedded in the text");
    command->footer(text_examples);
    return command;
}

CLI::App *add_trace(CLI::App &app, Requests &requests)
{
    CLI::App *command =
        app.add_subcommand("trace", "Write what the module reports, one event a line");
    add_document_options(*command, requests.trace.document);
    command->add_flag("--offsets", requests.trace.options.offsets,
                      "put the position in the file before each event");
    command->add_flag("--fold", requests.trace.options.fold,
                      "join characters that follow each other into one line");
    command->add_flag("--stop", requests.trace.stop,
                      "stop at every paragraph, go on from saved states: the same output");
    command->footer(trace_examples);
    return command;
}

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

int run(int argument_count, char **arguments)
{
    Requests requests;
    CLI::App app(description, "pfsdoc");
    app.set_version_flag("--version", "pfsdoc " PFSDOC_VERSION, "Print the version and exit");
    app.require_subcommand(1);
    app.footer(examples);
    const CLI::App *identify = add_identify(app, requests);
    const CLI::App *text = add_text(app, requests);
    add_trace(app, requests);
    try {
        app.parse(reversed_arguments(argument_count, arguments));
    } catch (const CLI::CallForHelp &) {
        return pfsdoc::run_print(app.help());
    } catch (const CLI::CallForVersion &version) {
        return pfsdoc::run_print(std::string(version.what()) + "\n");
    } catch (const CLI::ParseError &error) {
        return pfsdoc::report("", {pfsdoc::ErrorKind::usage, error.what(), "see pfsdoc --help"});
    }
    requests.text.options.page_breaks = !requests.no_page_breaks;
    if (identify->parsed()) {
        return pfsdoc::run_identify(requests.identify);
    }
    return text->parsed() ? pfsdoc::run_text(requests.text) : pfsdoc::run_trace(requests.trace);
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

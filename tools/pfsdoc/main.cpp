// The command pfsdoc: reads the command line and hands over to commands.h. The manual page
// is docs/man/pfsdoc.1; what is said here and there must agree. Test:
// tests/host/command_test.cpp.
#include "commands.h"
#include "inspection_options.h"
#include "interruption.h"

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

constexpr const char *text_examples =
    R"(The text is UTF-8, wrapped to the document's margins; page breaks are form feeds.

Examples:
  pfsdoc text LETTER | less
  pfsdoc text --no-page-breaks LETTER -o letter.txt)";

constexpr const char *trace_examples = R"(Example:
  pfsdoc trace --fold --offsets LETTER)";

constexpr const char *convert_examples =
    R"(Options that a format does not read are refused. Without -t, the name after -o tells the
format.

Examples:
  pfsdoc convert LETTER -o letter.odt
  pfsdoc convert -t html --charset 850 --report LETTER > letter.html
  pfsdoc convert -t text --wrap 72 --no-headers LETTER)";

struct Requests {
    pfsdoc::IdentifyOptions identify;
    pfsdoc::ExplainOptions explain;
    pfsdoc::ConvertRequest text;
    pfsdoc::ConvertRequest convert;
    std::string format;
    pfsdoc::TraceRequest trace;
    std::string charset;
    bool no_page_breaks = false;
    bool no_headers = false;
};

// An option of the command line and the names that formats list it by.
struct FormatOption {
    std::string_view option;
    std::string_view name;
};
constexpr FormatOption format_options[] = {
    {"--no-page-breaks", "page_breaks"},
    {"--no-headers", "headers"},
    {"--commands", "commands"},
    {"--wrap", "wrap"},
    {"--raw-lines", "raw_lines"},
    {"--lines", "lines"},
    {"--offsets", "offsets"},
    {"--fold", "fold"},
};

void add_document_options(CLI::App &command, pfsdoc::DocumentRequest &request)
{
    command.add_option("FILE", request.file, "the document; - is standard input")
        ->required()
        ->option_text(" ");
    command.add_option("-o,--output", request.output, "write to this file, whole or not at all")
        ->option_text("FILE");
    command
        .add_option("--max-output", request.max_output,
                    "end with code 6 when the output grows larger, such as 64MB")
        ->transform(CLI::AsSizeValue(false))
        ->option_text("SIZE");
    command
        .add_option("--module", request.module,
                    "the filter module to read with, or \"linked\" for the built-in one")
        ->option_text("PATH");
}

void add_text_options(CLI::App &command, Requests &requests, pfsdoc::WriterOptions &options)
{
    command.add_flag("--no-page-breaks", requests.no_page_breaks, "leave page breaks out");
    command.add_flag("--no-headers", requests.no_headers, "leave header and footer lines out");
    command.add_flag("--commands", options.commands, "show the commands embedded in the text");
    command
        .add_option("--wrap", options.wrap,
                    "fill lines to this many columns; 0 gives each paragraph one line")
        ->option_text("COLUMNS");
    command.add_flag("--raw-lines", options.raw_lines, "end lines where they end in the file")
        ->excludes("--wrap");
    command
        .add_option("--charset", requests.charset,
                    "the document's character set: 437 unless given, 850, ...")
        ->option_text("NAME");
}

CLI::App *add_text(CLI::App &app, Requests &requests)
{
    CLI::App *command =
        app.add_subcommand("text", "Write a document as plain text: convert -t text");
    add_document_options(*command, requests.text.document);
    add_text_options(*command, requests, requests.text.options);
    command->footer(text_examples);
    return command;
}

std::string format_list()
{
    std::string list = "the output format:";
    for (const pfsdoc::Format *format : pfsdoc::formats()) {
        list.append("\n  ").append(format->name);
        list.append(std::max<std::size_t>(10, format->name.size() + 1) - format->name.size(), ' ');
        list.append(format->description);
    }
    return list;
}

CLI::App *add_convert(CLI::App &app, Requests &requests)
{
    pfsdoc::ConvertRequest &request = requests.convert;
    CLI::App *command = app.add_subcommand("convert", "Write a document in another format");
    add_document_options(*command, request.document);
    command->add_option("-t,--to", requests.format, format_list())->option_text("FORMAT");
    add_text_options(*command, requests, request.options);
    command->add_flag("--lines", request.options.lines, "json: one object a line");
    command->add_flag("--offsets", request.options.offsets,
                      "trace: put the position in the file before each event");
    command->add_flag("--fold", request.options.fold,
                      "trace: join characters that follow each other into one line");
    command->add_flag("--report", request.report,
                      "list on standard error what the format could not say");
    command->footer(convert_examples);
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

pfsdoc::Result<const pfsdoc::Format *> wanted_format(const Requests &requests)
{
    const std::string &output = requests.convert.document.output;
    const std::size_t dot = output.rfind('.');
    if (requests.format.empty() && dot == std::string::npos) {
        return pfsdoc::Error{pfsdoc::ErrorKind::usage, "the output format is not told",
                             "give it with -t; see pfsdoc convert --help"};
    }
    const std::string name = requests.format.empty() ? output.substr(dot + 1) : requests.format;
    for (const pfsdoc::Format *format : pfsdoc::formats()) {
        if (format->name == name || (requests.format.empty() && format->extension == name)) {
            return format;
        }
    }
    return pfsdoc::Error{pfsdoc::ErrorKind::usage, "there is no output format \"" + name + "\"",
                         "see pfsdoc convert --help"};
}

pfsdoc::Status check_format_options(const CLI::App &command, const pfsdoc::Format &format)
{
    for (const FormatOption &entry : format_options) {
        const CLI::Option *option = command.get_option_no_throw(std::string(entry.option));
        if (option != nullptr && option->count() > 0 && !format.reads_option(entry.name)) {
            std::string what(entry.option);
            what.append(" means nothing for ").append(format.name);
            return pfsdoc::Error{pfsdoc::ErrorKind::usage, what, "leave it out"};
        }
    }
    return {};
}

int convert(const CLI::App &command, const Requests &requests, pfsdoc::ConvertRequest request)
{
    const pfsdoc::Status misfit = check_format_options(command, *request.format);
    if (misfit) {
        return pfsdoc::report("", *misfit);
    }
    request.options.page_breaks = !requests.no_page_breaks;
    request.options.headers = !requests.no_headers;
    if (requests.charset.empty()) {
        return pfsdoc::run_convert(request);
    }
    const pfsdoc::Result<pfsdoc::CodePage> page = pfsdoc::CodePage::named(requests.charset);
    if (!page.ok()) {
        return pfsdoc::report("", page.error());
    }
    request.options.code_page = &page.value();
    return pfsdoc::run_convert(request);
}

int run_command(const CLI::App &app, Requests &requests)
{
    const CLI::App &command = *app.get_subcommands().front();
    if (command.get_name() == "identify") {
        return pfsdoc::run_identify(requests.identify);
    }
    if (command.get_name() == "explain") {
        return pfsdoc::run_explain(requests.explain);
    }
    if (command.get_name() == "trace") {
        return pfsdoc::run_trace(requests.trace);
    }
    if (command.get_name() == "text") {
        requests.text.format = pfsdoc::find_format("text");
        return convert(command, requests, requests.text);
    }
    const pfsdoc::Result<const pfsdoc::Format *> format = wanted_format(requests);
    if (!format.ok()) {
        return pfsdoc::report("", format.error());
    }
    requests.convert.format = format.value();
    return convert(command, requests, requests.convert);
}

int run(int argument_count, char **arguments)
{
    Requests requests;
    CLI::App app(description, "pfsdoc");
    app.set_version_flag("--version", "pfsdoc " PFSDOC_VERSION, "Print the version and exit");
    app.require_subcommand(1);
    app.footer(examples);
    pfsdoc::add_identify(app, requests.identify);
    add_text(app, requests);
    add_convert(app, requests);
    add_trace(app, requests);
    add_document_options(*pfsdoc::add_explain(app, requests.explain),
                         requests.explain.request.document);
    try {
        app.parse(reversed_arguments(argument_count, arguments));
    } catch (const CLI::CallForHelp &) {
        return pfsdoc::run_print(app.help());
    } catch (const CLI::CallForVersion &version) {
        return pfsdoc::run_print(std::string(version.what()) + "\n");
    } catch (const CLI::ParseError &error) {
        return pfsdoc::report("", {pfsdoc::ErrorKind::usage, error.what(), "see pfsdoc --help"});
    }
    return run_command(app, requests);
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

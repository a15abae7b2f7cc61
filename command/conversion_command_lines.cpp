#include "cli/format_options.h"
#include "command/command_line.h"

#include <algorithm>
#include <charconv>
#include <string>
#include <string_view>
#include <system_error>

namespace pfsdoc::cli {

namespace {

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

std::string format_list()
{
    std::string list = "the output format:";
    for (const Format *format : formats()) {
        list.append("\n  ").append(format->name);
        list.append(std::max<std::size_t>(10, format->name.size() + 1) - format->name.size(), ' ');
        list.append(format->description);
    }
    return list;
}

// Made when it is needed: the table of units costs more than all other options together.
uint64_t bytes_of(std::string size)
{
    const bool is_negative = size.find('-') != std::string::npos; // it would wrap around
    const std::string problem =
        is_negative ? size + " is less than nothing" : CLI::AsSizeValue(false)(size);
    if (!problem.empty()) {
        throw CLI::ValidationError("--max-output", problem);
    }
    uint64_t bytes = 0;
    if (std::from_chars(size.data(), size.data() + size.size(), bytes).ec != std::errc()) {
        throw CLI::ValidationError("--max-output", size + " is too large");
    }
    return bytes;
}

// What text and convert have in common.
class ConversionCommandLine : public CommandLine {
protected:
    void add_text_options(CLI::App &command)
    {
        command.add_flag("--no-page-breaks", no_page_breaks_, "leave page breaks out");
        command.add_flag("--no-headers", no_headers_, "leave header and footer lines out");
        command.add_flag("--commands", request_.options.commands,
                         "show the commands embedded in the text");
        command
            .add_option("--wrap", request_.options.wrap,
                        "fill lines to this many columns; 0 gives each paragraph one line")
            ->option_text("COLUMNS");
        command
            .add_flag("--raw-lines", request_.options.raw_lines,
                      "end lines where they end in the file")
            ->excludes("--wrap");
        charset_.add_to(command);
    }

    int run_with(const CLI::App &command, const Format &format)
    {
        const Status misfit = check_format_options(command, format);
        if (misfit) {
            return report("", *misfit);
        }
        const Result<CodePage> page = charset_.page();
        if (!page.ok()) {
            return report("", page.error());
        }
        request_.format = &format;
        request_.options.code_page = &page.value();
        request_.options.page_breaks = !no_page_breaks_;
        request_.options.headers = !no_headers_;
        return run_convert(request_);
    }

    ConvertRequest request_;

private:
    CharsetOption charset_;
    bool no_page_breaks_ = false;
    bool no_headers_ = false;
};

class TextCommandLine final : public ConversionCommandLine {
public:
    const char *name() const override
    {
        return "text";
    }
    const char *description() const override
    {
        return "Write a document as plain text: convert -t text";
    }
    void add_options(CLI::App &command, OptionSet wanted) override
    {
        add_document_options(command, request_.document, wanted);
        if (wanted == OptionSet::usual) {
            return;
        }
        add_text_options(command);
        command.footer(text_examples);
    }
    int run(const CLI::App &command) override
    {
        return run_with(command, *find_format("text"));
    }
};

class ConvertCommandLine final : public ConversionCommandLine {
public:
    const char *name() const override
    {
        return "convert";
    }
    const char *description() const override
    {
        return "Write a document in another format";
    }
    void add_options(CLI::App &command, OptionSet wanted) override
    {
        add_document_options(command, request_.document, wanted);
        command.add_option("-t,--to", format_, format_list())->option_text("FORMAT");
        if (wanted == OptionSet::usual) {
            return;
        }
        add_text_options(command);
        command.add_flag("--lines", request_.options.lines, "json: one object a line");
        command.add_flag("--offsets", request_.options.offsets,
                         "trace: put the position in the file before each event");
        command.add_flag("--fold", request_.options.fold,
                         "trace: join characters that follow each other into one line");
        command.add_flag("--report", request_.report,
                         "list on standard error what the format could not say");
        command.footer(convert_examples);
    }
    int run(const CLI::App &command) override
    {
        const Result<const Format *> format = wanted_format();
        return format.ok() ? run_with(command, *format.value()) : report("", format.error());
    }

private:
    Result<const Format *> wanted_format() const
    {
        const std::string &output = request_.document.output;
        const std::size_t dot = output.rfind('.');
        if (format_.empty() && dot == std::string::npos) {
            return Error{ErrorKind::usage, "the output format is not told",
                         "give it with -t; see pfsdoc convert --help"};
        }
        const std::string name = format_.empty() ? output.substr(dot + 1) : format_;
        for (const Format *format : formats()) {
            if (format->name == name || (format_.empty() && format->extension == name)) {
                return format;
            }
        }
        return Error{ErrorKind::usage, "there is no output format \"" + name + "\"",
                     "see pfsdoc convert --help"};
    }

    std::string format_;
};

class TraceCommandLine final : public CommandLine {
public:
    const char *name() const override
    {
        return "trace";
    }
    const char *description() const override
    {
        return "Write what the module reports, one event a line";
    }
    void add_options(CLI::App &command, OptionSet wanted) override
    {
        add_document_options(command, request_.document, wanted);
        if (wanted == OptionSet::usual) {
            return;
        }
        command.add_flag("--offsets", request_.options.offsets,
                         "put the position in the file before each event");
        command.add_flag("--fold", request_.options.fold,
                         "join characters that follow each other into one line");
        command.add_flag("--stop", request_.stop,
                         "stop at every paragraph, go on from saved states: the same output");
        command.footer(trace_examples);
    }
    int run(const CLI::App &) override
    {
        return run_trace(request_);
    }

private:
    TraceRequest request_;
};

} // namespace

void add_document_options(CLI::App &command, DocumentRequest &request, OptionSet wanted)
{
    command.add_option("FILE", request.file, "the document; - is standard input")
        ->required()
        ->option_text(" ");
    command.add_option("-o,--output", request.output, "write to this file, whole or not at all")
        ->option_text("FILE");
    if (wanted == OptionSet::usual) {
        return;
    }
    command
        .add_option_function<std::string>(
            "--max-output",
            [&request](const std::string &size) { request.max_output = bytes_of(size); },
            "end with code 6 when the output grows larger, such as 64MB")
        ->option_text("SIZE");
    command
        .add_option("--module", request.module,
                    "the filter module to read with, or \"linked\" for the built-in one")
        ->option_text("PATH");
}

void CharsetOption::add_to(CLI::App &command)
{
    command
        .add_option("--charset", name_, "the document's character set: 437 unless given, 850, ...")
        ->option_text("NAME");
}

Result<CodePage> CharsetOption::page() const
{
    return name_.empty() ? CodePage::ibm437() : CodePage::named(name_);
}

std::unique_ptr<CommandLine> text_command_line()
{
    return std::make_unique<TextCommandLine>();
}

std::unique_ptr<CommandLine> convert_command_line()
{
    return std::make_unique<ConvertCommandLine>();
}

std::unique_ptr<CommandLine> trace_command_line()
{
    return std::make_unique<TraceCommandLine>();
}

} // namespace pfsdoc::cli

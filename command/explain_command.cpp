// pfsdoc explain: every byte of a document with what it was read as.
#include "cli/report.h"
#include "command/document_job.h"
#include "command/subcommand.h"
#include "command/walls.h"
#include "lib/explain/explain_json.h"
#include "lib/explain/explain_text.h"
#include "pfsdoc/explain.h"
#include "pfsdoc/reading_stopped.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <string_view>
#include <sys/ioctl.h>
#include <system_error>
#include <unistd.h>

namespace pfsdoc::cli {

namespace {

using explaining::Colours;

constexpr const char *footer =
    R"(For each span of the file: position, bytes, characters, and what they were read
as, in lines as wide as the window. In a pager, colours need to be asked for.

Examples:
  pfsdoc explain LETTER
  pfsdoc explain --color always LETTER | less -R
  pfsdoc explain --json LETTER | grep '"line_end":"soft"')";

// Empty for a variable that is missing.
std::string_view environment(const char *variable)
{
    const char *value = std::getenv(variable);
    return value != nullptr ? value : "";
}

// Colours are for people who look at a terminal and have not asked to be spared.
Colours wanted_colours(const Arguments &arguments)
{
    if (arguments.color != "auto") {
        return arguments.color == "always" ? Colours::on : Colours::off;
    }
    const std::string_view forced = environment("CLICOLOR_FORCE");
    const bool is_forced = !forced.empty() && forced != "0";
    const bool is_shown = is_standard_output(arguments.output) && ::isatty(STDOUT_FILENO) == 1;
    return (is_forced || is_shown) && environment("NO_COLOR").empty() ? Colours::on : Colours::off;
}

// Of the window: what the environment says, for a pager too, or the terminal.
std::size_t window_columns(const Arguments &arguments)
{
    constexpr std::size_t most = 1000;
    const std::string_view digits = environment("COLUMNS");
    std::size_t columns = 0;
    const auto [end, fault] =
        std::from_chars(digits.data(), digits.data() + digits.size(), columns);
    if (fault == std::errc() && end == digits.data() + digits.size() && columns > 0) {
        return std::min(columns, most);
    }
    winsize size{};
    const bool is_known = is_standard_output(arguments.output) &&
                          ::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
    return is_known ? size.ws_col : explaining::usual_columns;
}

std::unique_ptr<SpanSink> make_writer(Output &output, const Arguments &arguments,
                                      const CodePage &page)
{
    if (arguments.json) {
        return std::make_unique<explaining::ExplainJsonWriter>(output, page);
    }
    return std::make_unique<explaining::ExplainTextWriter>(output, page, wanted_colours(arguments),
                                                           window_columns(arguments));
}

// Passes on what it gets as long as the output takes it: what is not wanted need not be read.
class SpanGuard final : public SpanSink {
public:
    SpanGuard(SpanSink &writer, const base::DescriptorOutput &output)
        : writer_(writer), output_(output)
    {
    }

    void span(const Span &span) override
    {
        if (output_.failed()) {
            throw ReadingStopped(output_.failure().error());
        }
        writer_.span(span);
    }

private:
    SpanSink &writer_;
    const base::DescriptorOutput &output_;
};

// Opens nothing and commits nothing, as convert_document.
Status explain_into(base::DescriptorOutput &output, const Input &input, SpanSink &writer)
{
    SpanGuard guard(writer, output);
    try {
        return explain(input.module, *input.source, input.identity.kind, guard);
    } catch (const ReadingStopped &stopped) {
        return stopped.error();
    }
}

Status explain_file(const Arguments &arguments, const CodePage &page)
{
    const ProtectedFiles protected_files({arguments.file});
    const Result<Input> input = open_input(arguments.file, arguments);
    if (!input.ok()) {
        return input.error();
    }
    const auto output = make_output(arguments.output, protected_files, arguments);
    if (!output.ok()) {
        return output.error();
    }
    base::DescriptorOutput &stream = output.value()->stream();
    const std::unique_ptr<SpanSink> writer = make_writer(stream, arguments, page);
    const Status failure = work_in_walls(wanted_walls(arguments), stream, [&] {
        return explain_into(stream, input.value(), *writer);
    });
    return finish(*output.value(), failure);
}

int run(const Options &options)
{
    const Arguments &arguments = options.arguments();
    const Result<CodePage> page = code_page_of(arguments);
    if (!page.ok()) {
        return report("", page.error());
    }
    const Status failure = explain_file(arguments, page.value());
    return failure.ok() ? 0 : report(subject_of(arguments.file), failure.error());
}

} // namespace

const Subcommand explain_subcommand = {
    .name = "explain",
    .description = "Show what every byte of a document was read as",
    .footer = footer,
    .command = explain_command,
    .run = run,
};

} // namespace pfsdoc::cli

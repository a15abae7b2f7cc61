// pfsdoc convert, and pfsdoc text, which is convert -t text.
#include "cli/report.h"
#include "command/conversion.h"
#include "command/document_job.h"
#include "command/subcommand.h"
#include "lib/base/printable.h"
#include "lib/reading/read_document.h"

#include <string>
#include <unistd.h>
#include <utility>

namespace pfsdoc::cli {

namespace {

constexpr const char *text_footer =
    R"(The text is UTF-8, wrapped to the document's margins; page breaks are form feeds.

Examples:
  pfsdoc text LETTER | less
  pfsdoc text --no-page-breaks LETTER -o letter.txt)";

constexpr const char *convert_footer =
    R"(Options that a format does not read are refused. Without -t, the name after -o selects the
format.

Examples:
  pfsdoc convert LETTER -o letter.odt
  pfsdoc convert -t html --charset 850 --report LETTER > letter.html
  pfsdoc convert -t text --wrap 72 --no-headers LETTER)";

// The name that a document is known by: its file's, without the folders.
std::string title_of(const std::string &file)
{
    return file == "-" ? "" : base::printable(base::base_name(file));
}

void report_losses(const std::string &subject, const Converted &converted)
{
    for (const LossEntry &entry : converted.losses) {
        std::string line = subject + ": not in the output: ";
        line.append(loss_words(entry.loss)).append(" (").append(std::to_string(entry.count));
        line.append(", first at byte ").append(std::to_string(entry.first_source)).append(")");
        report_line(line);
    }
    if (converted.after_end) {
        report_line(subject + ": not in the output: bytes behind the end mark (" +
                    std::to_string(converted.after_end->bytes) + ", first at byte " +
                    std::to_string(converted.after_end->offset) + ")");
    }
}

Status convert(const std::string &file, const Conversion &conversion, const Arguments &arguments)
{
    const ProtectedFiles protected_files({file});
    Result<Input> input = open_input(file, arguments);
    if (!input.ok()) {
        return input.error();
    }
    const auto output = make_output(arguments.output, protected_files, arguments);
    if (!output.ok()) {
        return output.error();
    }
    const Converted converted =
        convert_document(std::move(input.value().source), input.value().module, title_of(file),
                         conversion, output.value()->stream());
    if (arguments.report && reading::is_read_to_end(converted.status)) {
        report_losses(subject_of(file), converted);
    }
    return finish(*output.value(), converted.status);
}

// What is wrong before anything is read is the command line's fault, not the file's.
Status check(const Format &format, const Options &options)
{
    const Arguments &arguments = options.arguments();
    if (Status refusal = options.check_format(format); !refusal.ok()) {
        return refusal;
    }
    if (format.is_binary && is_standard_output(arguments.output) && ::isatty(STDOUT_FILENO) != 0) {
        return Error{ErrorKind::usage, std::string(format.name) + " cannot be shown on a terminal",
                     "name a file with -o"};
    }
    return {};
}

int run_with(const Format &format, const Options &options)
{
    if (const Status failure = check(format, options); !failure.ok()) {
        return report("", failure.error());
    }
    const Arguments &arguments = options.arguments();
    const Result<CodePage> page = code_page_of(arguments);
    if (!page.ok()) {
        return report("", page.error());
    }
    Conversion conversion = {.format = &format, .options = arguments.writer};
    conversion.options.code_page = &page.value();
    conversion.source_offsets = format.wants_offsets || arguments.writer.offsets ||
                                arguments.writer.raw_lines || arguments.report;
    const Status failure = convert(arguments.file, conversion, arguments);
    return failure.ok() ? 0 : report(subject_of(arguments.file), failure.error());
}

Result<const Format *> wanted_format(const Arguments &arguments)
{
    const std::size_t dot = arguments.output.rfind('.');
    if (arguments.format.empty() && dot == std::string::npos) {
        return Error{ErrorKind::usage, "the output format is missing",
                     "name it with -t; see pfsdoc convert --help"};
    }
    const std::string name =
        arguments.format.empty() ? arguments.output.substr(dot + 1) : arguments.format;
    for (const Format *format : formats()) {
        if (format->name == name || (arguments.format.empty() && format->extension == name)) {
            return format;
        }
    }
    return Error{ErrorKind::usage, "there is no output format \"" + name + "\"",
                 "see pfsdoc convert --help"};
}

int run_convert(const Options &options)
{
    const Result<const Format *> format = wanted_format(options.arguments());
    return format.ok() ? run_with(*format.value(), options) : report("", format.error());
}

int run_text(const Options &options)
{
    return run_with(*find_format("text"), options);
}

} // namespace

const Subcommand text_subcommand = {
    .name = "text",
    .description = "Write a document as plain text: convert -t text",
    .footer = text_footer,
    .command = text_command,
    .run = run_text,
};

const Subcommand convert_subcommand = {
    .name = "convert",
    .description = "Write a document in another format",
    .footer = convert_footer,
    .command = convert_command,
    .run = run_convert,
};

} // namespace pfsdoc::cli

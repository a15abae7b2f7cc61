// pfsdoc convert, and pfsdoc text, which is convert -t text.
#include "cli/report.h"
#include "command/subcommand.h"
#include "command/write_document.h"
#include "lib/base/printable.h"
#include "lib/reading/read_document.h"

#include <optional>
#include <string>
#include <unistd.h>

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

void report_losses(const std::string &subject, const Writer &writer,
                   const std::optional<AfterEnd> &after_end)
{
    for (const LossEntry &entry : writer.losses().entries()) {
        std::string line = subject + ": not in the output: ";
        line.append(loss_words(entry.loss)).append(" (").append(std::to_string(entry.count));
        line.append(", first at byte ").append(std::to_string(entry.first_source)).append(")");
        report_line(line);
    }
    if (after_end) {
        report_line(subject + ": not in the output: bytes behind the end mark (" +
                    std::to_string(after_end->bytes) + ", first at byte " +
                    std::to_string(after_end->offset) + ")");
    }
}

Status write(Job &job, const Format &format, const Arguments &arguments,
             const WriterOptions &options)
{
    if (format.make_event_writer != nullptr) {
        const auto writer = format.make_event_writer(*job.output, options);
        return write_events(job, *writer, false);
    }
    const DocumentInfo info{job.document.kind(), title_of(arguments.file)};
    const auto writer = format.make_writer(*job.output, info, options);
    if (!writer.ok()) {
        return writer.error();
    }
    Status failure = write_blocks(job, *writer.value());
    if (arguments.report && reading::is_read_to_end(failure)) {
        const Result<std::optional<AfterEnd>> after_end = job.document.after_end();
        report_losses(subject_of(arguments.file), *writer.value(),
                      after_end.ok() ? after_end.value() : std::nullopt);
    }
    return failure;
}

Status convert(const Format &format, const Arguments &arguments, const WriterOptions &options)
{
    const bool source_offsets =
        format.wants_offsets || options.offsets || options.raw_lines || arguments.report;
    Result<Job> job = begin_job(arguments, source_offsets);
    return job.ok() ? write(job.value(), format, arguments, options) : job.error();
}

// What is wrong before anything is read is the command line's fault, not the file's.
Status check(const Format &format, const Options &options)
{
    const Arguments &arguments = options.arguments();
    if (Status refusal = options.check_format(format); !refusal.ok()) {
        return refusal;
    }
    if (format.is_binary && writes_to_standard_output(arguments) && ::isatty(STDOUT_FILENO) != 0) {
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
    WriterOptions writer_options = arguments.writer;
    writer_options.code_page = &page.value();
    const Status failure = convert(format, arguments, writer_options);
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

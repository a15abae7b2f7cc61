// pfsdoc convert, and pfsdoc text, which is convert -t text.
#include "cli/format_names.h"
#include "cli/report.h"
#include "command/conversion.h"
#include "command/document_job.h"
#include "command/output_paths.h"
#include "command/subcommand.h"
#include "command/walls.h"
#include "lib/base/escaped_name.h"
#include "lib/base/printable.h"
#include "lib/reading/read_document.h"

#include <cerrno>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace pfsdoc::cli {

namespace {

constexpr int some_failed = 1; // of several documents

constexpr const char *text_footer =
    R"(The text is UTF-8, wrapped to the document's margins; page breaks are form
feeds. Several documents follow one another, each on a new page; -o FOLDER/
makes a file of each. A document, the image of a diskette or an input is never
replaced.

Examples:
  pfsdoc text LETTER | less
  pfsdoc text --no-page-breaks LETTER -o letter.txt)";

constexpr const char *convert_footer =
    R"(Options that a format does not read are refused. Without -t, the name after -o
selects the format. Several documents need -o FOLDER/, and LETTER.DOC becomes
FOLDER/LETTER.DOC.html. A document, the image of a diskette or an input is
never replaced.

Examples:
  pfsdoc convert LETTER -o letter.odt
  pfsdoc convert -t odt letters/* -o converted/
  pfsdoc convert -t html --charset 850 --report LETTER > letter.html
  pfsdoc convert -t text --wrap 72 --no-headers LETTER)";

// The name that a document is known by: its file's, without the folders.
std::string title_of(const std::string &file)
{
    return file == "-" ? "" : base::escaped_name(base::base_name(file));
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

// One document's way from its file to its output.
struct Task {
    const std::string &file;
    const std::string &output; // empty: standard output
    bool follows_another;      // on standard output
};

// Between documents on standard output: each begins a page of its own.
std::string_view separator(const WriterOptions &options)
{
    return options.page_breaks ? "\f" : "\n";
}

Status convert(const Task &task, const Conversion &conversion, const Arguments &arguments,
               const ProtectedFiles &protected_files)
{
    Result<Input> input = open_input(task.file, arguments);
    if (!input.ok()) {
        return input.error();
    }
    const auto output = make_output(task.output, protected_files, arguments);
    if (!output.ok()) {
        return output.error();
    }
    output.value()->write(task.follows_another ? separator(conversion.options) : "");
    const Converted converted = convert_in_walls(
        wanted_walls(arguments), std::move(input.value().source), input.value().module,
        title_of(task.file), conversion, output.value()->stream());
    if (arguments.report && reading::is_read_to_end(converted.status)) {
        report_losses(subject_of(task.file), converted);
    }
    return finish(*output.value(), converted.status);
}

// All of them, whichever fails; the program's exit code.
int convert_all(const std::vector<std::string> &outputs, const Conversion &conversion,
                const Arguments &arguments)
{
    ProtectedFiles protected_files(arguments.paths);
    bool follows_another = false;
    int code = 0;
    for (std::size_t i = 0; i < outputs.size(); ++i) {
        const Task task{arguments.paths[i], outputs[i], follows_another && outputs[i].empty()};
        const Status failure = convert(task, conversion, arguments, protected_files);
        if (!failure.ok()) {
            const int own = report(subject_of(task.file), failure.error());
            code = outputs.size() == 1 ? own : some_failed;
        }
        follows_another = follows_another || reading::is_read_to_end(failure);
        protected_files.add_output(task.output);
    }
    return code;
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

Status make_folder(const std::string &output)
{
    const bool is_made = !is_folder(output) || ::mkdir(output.c_str(), 0777) == 0;
    return is_made || errno == EEXIST ? Status() : base::output_error(errno, output);
}

Result<std::vector<std::string>> prepare(const Format &format, const Options &options)
{
    if (const Status failure = check(format, options); !failure.ok()) {
        return failure.error();
    }
    const Result<std::vector<std::string>> outputs =
        output_paths(options.arguments(), format.extension);
    const Status folder = outputs.ok() ? make_folder(options.arguments().output) : Status();
    return folder.ok() ? outputs : folder.error();
}

int run_with(const Format &format, const Options &options)
{
    const Arguments &arguments = options.arguments();
    const Result<CodePage> page = code_page_of(arguments);
    if (!page.ok()) {
        return report("", page.error());
    }
    const Result<std::vector<std::string>> outputs = prepare(format, options);
    if (!outputs.ok()) {
        return report("", outputs.error());
    }
    Conversion conversion = {.format = &format, .options = arguments.writer};
    conversion.options.code_page = &page.value();
    conversion.source_offsets = format.wants_offsets || arguments.writer.offsets ||
                                arguments.writer.raw_lines || arguments.report;
    return convert_all(outputs.value(), conversion, arguments);
}

Result<const Format *> wanted_format(const Arguments &arguments)
{
    if (!arguments.format.empty()) {
        return format_named(arguments.format);
    }
    const std::string_view name = base::base_name(arguments.output);
    if (is_folder(arguments.output) || name.find('.') == std::string_view::npos) {
        return Error{ErrorKind::usage, "the output format is missing",
                     "name it with -t; see pfsdoc convert --help"};
    }
    const Format *format = format_of_file(name);
    return format != nullptr ? format : format_named(name.substr(name.rfind('.') + 1));
}

int run_convert(const Options &options)
{
    const Arguments &arguments = options.arguments();
    if (const Status failure = check_output(arguments, false); !failure.ok()) {
        return report("", failure.error());
    }
    const Result<const Format *> format = wanted_format(arguments);
    return format.ok() ? run_with(*format.value(), options) : report("", format.error());
}

int run_text(const Options &options)
{
    const Status failure = check_output(options.arguments(), true);
    return failure.ok() ? run_with(*find_format("text"), options) : report("", failure.error());
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

#include "batch/trusted/command_line.h"

#include "batch/trusted/reserved_names.h"
#include "cli/format_names.h"
#include "lib/base/scratch_file.h"
#include "pfsdoc/output.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <string_view>
#include <unistd.h>

namespace pfsdoc::batch {

namespace {

constexpr const char *description =
    "Write many documents in another format, and a manifest with the result of each";

constexpr const char *examples =
    R"(Each document is read in a process that can open no file, no connection and no
other process. One that crashes, hangs or takes too much memory costs its own
file only. The manifest has one line of JSON for each file. An interrupted run
continues when it is started again.

Examples:
  pfsdoc batch letters/ -o out -t odt
  pfsdoc batch disks.zip more/ -o out -t text -j 4
  find /archive -name '*.PFS' | pfsdoc batch --files-from - -o out -t html
  pfsdoc batch --verify out
  jq -r 'select(.status != "converted") | .name' out/manifest.ndjson

The exit code is 0 if all documents have been converted (with --strict: all
files) and 1 if some have not, or only in part, or if --verify finds that the
folder is not as its manifest says; pfsdoc(1) lists the others.)";

constexpr double max_seconds_unless_given = 30;
constexpr uint64_t max_bytes_unless_given = uint64_t{1} << 30; // of memory, and of an output

SandboxMode sandbox_mode(const std::string &name)
{
    if (name == "require") {
        return SandboxMode::required;
    }
    return name == "off" ? SandboxMode::off : SandboxMode::available;
}

// Every worker will need such files, and better fails now than at the first one's start.
Status check_scratch_files(const Format &format)
{
    if (format.scratch_files == 0) {
        return {};
    }
    const base::Descriptor file(base::open_scratch_file());
    return file.get() < 0 ? Status(base::scratch_error(errno)) : Status();
}

// Those that the outputs depend on: a run goes on from one with the same.
std::string options_that_matter(const cli::Arguments &arguments)
{
    const WriterOptions &writer = arguments.writer;
    std::string words;
    const auto add = [&words](bool is_given, const std::string &word) {
        words.append(words.empty() || !is_given ? "" : " ").append(is_given ? word : "");
    };
    add(!writer.page_breaks, "--no-page-breaks");
    add(!writer.headers, "--no-headers");
    add(writer.commands, "--commands");
    add(writer.raw_lines, "--raw-lines");
    add(writer.lines, "--lines");
    add(writer.wrap.has_value(), "--wrap " + std::to_string(writer.wrap.value_or(0)));
    add(!arguments.charset.empty(), "--charset " + arguments.charset);
    add(arguments.max_output.has_value(),
        "--max-output " + std::to_string(arguments.max_output.value_or(0)));
    return words;
}

std::chrono::milliseconds max_time(const cli::Arguments &arguments)
{
    const double seconds = arguments.max_seconds.value_or(max_seconds_unless_given);
    return std::chrono::milliseconds(static_cast<int64_t>(std::ceil(seconds * 1000)));
}

InputOptions input_options(const cli::Arguments &arguments, SandboxMode mode)
{
    InputOptions options;
    options.paths = arguments.paths;
    options.list_files = arguments.list_files;
    options.max_input = arguments.max_input.value_or(options.max_input);
    options.max_memory = arguments.max_memory.value_or(max_bytes_unless_given);
    options.max_time = max_time(arguments);
    options.exclude = arguments.output;
    options.sandbox = mode;
    return options;
}

std::string manifest_path(const cli::Arguments &arguments, const std::string &folder)
{
    return arguments.manifest.empty() ? folder + "/" + manifest_name : arguments.manifest;
}

ProgressForm progress_form(bool quiet)
{
    if (quiet) {
        return ProgressForm::none;
    }
    return ::isatty(STDERR_FILENO) != 0 ? ProgressForm::bar : ProgressForm::lines;
}

} // namespace

BatchCommandLine::BatchCommandLine() : app_(description, "pfsdoc batch")
{
    options_.add_to(app_, cli::batch_command);
    app_.footer(examples);
}

Result<ConversionSettings> BatchCommandLine::conversion()
{
    const cli::Arguments &arguments = options_.arguments();
    const Result<const Format *> named = cli::format_named(arguments.format);
    if (!named.ok()) {
        return named.error();
    }
    const Format *format = named.value();
    if (const Status refusal = options_.check_format(*format); !refusal.ok()) {
        return refusal.error();
    }
    Result<CodePage> page = cli::code_page_of(arguments);
    if (!page.ok()) {
        return page.error();
    }
    Result<Module> module = find_module(arguments.module, PFSDOC_LIBRARY_DIRECTORY);
    if (!module.ok()) {
        return module.error();
    }
    code_page_.emplace(std::move(page.value()));
    module_.emplace(std::move(module.value()));
    WriterOptions writer_options = arguments.writer;
    writer_options.code_page = &*code_page_;
    const ConversionSettings settings{format, writer_options, &*module_,
                                      arguments.max_output.value_or(max_bytes_unless_given)};
    const Status unfit = check_scratch_files(*format);
    return unfit.ok() ? settings : Result<ConversionSettings>(unfit.error());
}

Status BatchCommandLine::check_arguments() const
{
    const cli::Arguments &arguments = options_.arguments();
    if (arguments.paths.empty() && arguments.list_files.empty()) {
        return Error{ErrorKind::usage, "there is nothing to read",
                     "name files, folders or archives; see pfsdoc batch --help"};
    }
    if (arguments.output.empty()) {
        return Error{ErrorKind::usage, "the output folder is missing", "name it with -o"};
    }
    if (arguments.format.empty()) {
        return Error{ErrorKind::usage, "the output format is missing", "name it with -t"};
    }
    return {};
}

Result<VerificationRequest> BatchCommandLine::verification() const
{
    const cli::Arguments &arguments = options_.arguments();
    if (!arguments.paths.empty() || !arguments.list_files.empty() || !arguments.output.empty() ||
        !arguments.format.empty()) {
        return Error{ErrorKind::usage, "--verify reads no documents and writes nothing",
                     "name only the folder, and --manifest where it is elsewhere"};
    }
    return VerificationRequest{arguments.verified, manifest_path(arguments, arguments.verified),
                               arguments.quiet};
}

Result<BatchRequest> BatchCommandLine::request()
{
    const cli::Arguments &arguments = options_.arguments();
    if (Status fault = check_arguments(); !fault.ok()) {
        return fault.error();
    }
    const Result<ConversionSettings> settings = conversion();
    if (!settings.ok()) {
        return settings.error();
    }
    const SandboxMode mode =
        arguments.no_sandbox ? SandboxMode::off : sandbox_mode(arguments.sandbox);
    BatchRequest request;
    request.inputs = input_options(arguments, mode);
    request.output = arguments.output;
    request.manifest = manifest_path(arguments, arguments.output);
    request.inputs.extension = settings.value().format->extension;
    request.inputs.reserved = ReservedNames(request.output, request.manifest).names();
    request.worker = {settings.value(), mode,
                      arguments.max_memory.value_or(max_bytes_unless_given)};
    request.workers = arguments.jobs.value_or(std::min(count_processors(), cli::most_jobs));
    request.files_per_process = arguments.files_per_process;
    request.max_time = max_time(arguments);
    request.recorded = {std::string(settings.value().format->name),
                        std::string(settings.value().format->extension),
                        options_that_matter(arguments), arguments.module};
    request.progress = progress_form(arguments.quiet);
    request.quiet = arguments.quiet;
    request.strict = arguments.strict;
    request.overwrite = arguments.overwrite;
    request.verbose = arguments.verbose;
    return request;
}

} // namespace pfsdoc::batch

#include "batch/command_line.h"

#include "batch/canary.h"
#include "batch/processes/processors.h"
#include "cli/format_options.h"
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
    "Write many documents in another format, and a manifest that tells what became of each";

constexpr const char *examples =
    R"(Each document is read in a process that can open no file, no connection and no other
process. One that crashes, hangs or takes too much memory costs its own file only. The
manifest has one line of JSON for each file. A run that was ended in its middle goes on when
it is started again.

Examples:
  pfsdoc batch letters/ -o out -t odt
  pfsdoc batch disks.zip more/ -o out -t text -j 4
  find /archive -name '*.PFS' | pfsdoc batch --files-from - -o out -t html
  jq -r 'select(.status != "converted") | .name' out/manifest.ndjson

Exit codes:
  0    all files have been converted
  1    some have not, or not whole; the manifest tells which
  2    the command line is wrong
  7    an output or the manifest cannot be written
  70   a fault of pfsdoc itself, or the sandbox that is required cannot be had
  130  interrupted)";

constexpr double longest_time = 86400;
constexpr std::size_t most_jobs = 1024;

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
    const OpenFile file(base::open_scratch_file());
    return file.get() < 0 ? Status(base::scratch_error(errno)) : Status();
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
    add_files();
    add_text_options();
    add_limits();
    add_canary_option(app_);
    app_.footer(examples);
}

void BatchCommandLine::add_files()
{
    app_.add_option("IN", inputs_.paths, "files, folders, and zip and tar archives")
        ->option_text(" ");
    app_.add_option("--files-from", inputs_.list_files,
                    "read names of files from this file, one a line or each with a NUL byte\n"
                    "behind it; - is standard input")
        ->option_text("FILE")
        ->expected(1)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    app_.add_option("-o,--output", output_, "the folder to write to; made where it is missing")
        ->required()
        ->option_text("OUT");
    app_.add_option("-t,--to", format_, "the output format; see pfsdoc convert --help")
        ->required()
        ->option_text("FORMAT");
    app_.add_option("--manifest", manifest_, "instead of OUT/manifest.ndjson")->option_text("FILE");
    app_.add_flag("-q,--quiet", quiet_, "show neither progress nor the sum at the end");
}

void BatchCommandLine::add_text_options()
{
    app_.add_flag("--no-page-breaks", no_page_breaks_, "leave page breaks out");
    app_.add_flag("--no-headers", no_headers_, "leave header and footer lines out");
    app_.add_flag("--commands", options_.commands, "show the commands embedded in the text");
    app_.add_option("--wrap", options_.wrap,
                    "fill lines to this many columns; 0 gives each paragraph one line")
        ->option_text("COLUMNS");
    app_.add_flag("--raw-lines", options_.raw_lines, "end lines where they end in the file")
        ->excludes("--wrap");
    app_.add_flag("--lines", options_.lines, "json: one object a line");
    app_.add_option("--charset", charset_,
                    "the documents' character set: 437 unless given, 850, ...")
        ->option_text("NAME");
}

void BatchCommandLine::add_limits()
{
    app_.add_option("-j,--jobs", jobs_, "how many files at a time; one for each processor")
        ->option_text("NUMBER")
        ->check(CLI::Range(std::size_t{1}, most_jobs));
    app_.add_option("--max-input", inputs_.max_input, "leave larger files out: 4GB unless given")
        ->option_text("SIZE")
        ->transform(CLI::AsSizeValue(false));
    app_.add_option("--max-time", max_seconds_, "for each file: 30 unless given")
        ->option_text("SECONDS")
        ->check(CLI::Range(0.001, longest_time));
    app_.add_option("--max-memory", max_memory_, "for each file: 1GB unless given")
        ->option_text("SIZE")
        ->transform(CLI::AsSizeValue(false));
    app_.add_option("--max-output", max_output_, "for each file: 1GB unless given")
        ->option_text("SIZE")
        ->transform(CLI::AsSizeValue(false));
    CLI::Option *mode =
        app_.add_option("--sandbox", sandbox_, "off, available (as far as it can be had), require")
            ->option_text("MODE")
            ->check(CLI::IsMember({"off", "available", "require"}));
    app_.add_flag("--no-sandbox", no_sandbox_, "the same as --sandbox=off")->excludes(mode);
    app_.add_option("--module", module_path_,
                    "the filter module to read with, or \"linked\" for the built-in one")
        ->option_text("PATH");
}

std::string BatchCommandLine::options_that_matter() const
{
    std::string words;
    const auto add = [&words](const std::string &word) {
        words.append(words.empty() ? "" : " ").append(word);
    };
    for (const char *flag :
         {"--no-page-breaks", "--no-headers", "--commands", "--raw-lines", "--lines"}) {
        if (app_.count(flag) > 0) {
            add(flag);
        }
    }
    if (options_.wrap) {
        add("--wrap " + std::to_string(*options_.wrap));
    }
    if (!charset_.empty()) {
        add("--charset " + charset_);
    }
    if (app_.count("--max-output") > 0) {
        add("--max-output " + std::to_string(max_output_));
    }
    return words;
}

Result<ConversionSettings> BatchCommandLine::conversion()
{
    const Format *format = find_format(format_);
    if (format == nullptr) {
        return Error{ErrorKind::usage, "there is no output format \"" + format_ + "\"",
                     "see pfsdoc convert --help"};
    }
    if (const Status misfit = cli::check_format_options(app_, *format)) {
        return *misfit;
    }
    Result<CodePage> page = charset_.empty() ? CodePage::ibm437() : CodePage::named(charset_);
    if (!page.ok()) {
        return page.error();
    }
    Result<Module> module = find_module(module_path_, PFSDOC_LIBRARY_DIRECTORY);
    if (!module.ok()) {
        return module.error();
    }
    code_page_.emplace(std::move(page.value()));
    module_.emplace(std::move(module.value()));
    options_.code_page = &*code_page_;
    options_.page_breaks = !no_page_breaks_;
    options_.headers = !no_headers_;
    const ConversionSettings settings{format, options_, &*module_, max_output_};
    const Status unfit = check_scratch_files(*format);
    return unfit ? Result<ConversionSettings>(*unfit) : settings;
}

Result<BatchRequest> BatchCommandLine::request()
{
    if (inputs_.paths.empty() && inputs_.list_files.empty()) {
        return Error{ErrorKind::usage, "there is nothing to be read",
                     "name files, folders or archives; see pfsdoc batch --help"};
    }
    const Result<ConversionSettings> settings = conversion();
    if (!settings.ok()) {
        return settings.error();
    }
    const SandboxMode mode = no_sandbox_ ? SandboxMode::off : sandbox_mode(sandbox_);
    BatchRequest request;
    request.inputs = inputs_;
    request.inputs.exclude = output_;
    request.inputs.sandbox = mode;
    request.output = output_;
    request.manifest = manifest_.empty() ? output_ + "/manifest.ndjson" : manifest_;
    request.worker = {settings.value(), mode, max_memory_};
    request.workers = jobs_ != 0 ? jobs_ : std::min(count_processors(), most_jobs);
    request.max_time =
        std::chrono::milliseconds(static_cast<int64_t>(std::ceil(max_seconds_ * 1000)));
    request.recorded = {format_, std::string(settings.value().format->extension),
                        options_that_matter()};
    request.progress = progress_form(quiet_);
    request.quiet = quiet_;
    return request;
}

} // namespace pfsdoc::batch

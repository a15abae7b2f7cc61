#include "inspection_options.h"

namespace pfsdoc {

namespace {

constexpr const char *identify_examples =
    R"(Goes on after a file that fails; with several files the exit code is then 1. How sure the
kind is: certain (signature, plausible header, end mark), likely (no end mark at the end)
or signature (that alone).

Examples:
  pfsdoc identify letters/*
  pfsdoc identify --json letters/* > letters.json)";

constexpr const char *explain_examples =
    R"(One span of the file a line: position, bytes, characters, and what they were read as.

Examples:
  pfsdoc explain LETTER | less
  pfsdoc explain --json LETTER | grep '"line_end":"soft"')";

} // namespace

CLI::App *add_identify(CLI::App &app, IdentifyOptions &options)
{
    CLI::App *command = app.add_subcommand("identify", "Tell what files are, one line for each");
    command->add_option("FILE", options.request.files, "the files; - is standard input")
        ->required()
        ->option_text("...");
    command->add_flag("--json", options.json_array, "write an array of JSON objects");
    command->add_flag("--lines", options.json_lines, "write JSON objects, one a line")
        ->excludes("--json");
    command->footer(identify_examples);
    return command;
}

CLI::App *add_explain(CLI::App &app, ExplainOptions &options)
{
    CLI::App *command =
        app.add_subcommand("explain", "Tell of every byte of a document what it was read as");
    command->add_flag("--json", options.request.json, "write JSON objects, one a line");
    command->add_option("--color", options.colours, "auto (on a terminal), always or never")
        ->check(CLI::IsMember({"auto", "always", "never"}))
        ->option_text("WHEN");
    command
        ->add_option("--charset", options.charset,
                     "the document's character set: 437 unless given, 850, ...")
        ->option_text("NAME");
    command->footer(explain_examples);
    return command;
}

int run_identify(const IdentifyOptions &options)
{
    IdentifyRequest request = options.request;
    if (options.json_array) {
        request.form = IdentifyForm::json_array;
    } else if (options.json_lines) {
        request.form = IdentifyForm::json_lines;
    }
    return run_identify(request);
}

int run_explain(const ExplainOptions &options)
{
    ExplainRequest request = options.request;
    if (options.colours != "auto") {
        request.colours = options.colours == "always" ? Colours::on : Colours::off;
    }
    const Result<CodePage> page =
        options.charset.empty() ? CodePage::ibm437() : CodePage::named(options.charset);
    if (!page.ok()) {
        return report("", page.error());
    }
    request.code_page = &page.value();
    return run_explain(request);
}

} // namespace pfsdoc

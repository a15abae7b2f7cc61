#include "command/command_line.h"

#include <string>

namespace pfsdoc::cli {

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

class IdentifyCommandLine final : public CommandLine {
public:
    const char *name() const override
    {
        return "identify";
    }
    const char *description() const override
    {
        return "Tell what files are, one line for each";
    }
    void add_options(CLI::App &command, OptionSet wanted) override
    {
        command.add_option("FILE", request_.files, "the files; - is standard input")
            ->required()
            ->option_text("...");
        if (wanted == OptionSet::usual) {
            return;
        }
        command.add_flag("--json", json_array_, "write an array of JSON objects");
        command.add_flag("--lines", json_lines_, "write JSON objects, one a line")
            ->excludes("--json");
        command.footer(identify_examples);
    }
    int run(const CLI::App &) override
    {
        if (json_array_) {
            request_.form = IdentifyForm::json_array;
        } else if (json_lines_) {
            request_.form = IdentifyForm::json_lines;
        }
        return run_identify(request_);
    }

private:
    IdentifyRequest request_;
    bool json_array_ = false;
    bool json_lines_ = false;
};

class ExplainCommandLine final : public CommandLine {
public:
    const char *name() const override
    {
        return "explain";
    }
    const char *description() const override
    {
        return "Tell of every byte of a document what it was read as";
    }
    void add_options(CLI::App &command, OptionSet wanted) override
    {
        if (wanted == OptionSet::all) {
            command.add_flag("--json", request_.json, "write JSON objects, one a line");
            command.add_option("--color", colours_, "auto (on a terminal), always or never")
                ->check(CLI::IsMember({"auto", "always", "never"}))
                ->option_text("WHEN");
            charset_.add_to(command);
        }
        add_document_options(command, request_.document, wanted);
        command.footer(explain_examples);
    }
    int run(const CLI::App &) override
    {
        if (colours_ != "auto") {
            request_.colours =
                colours_ == "always" ? explaining::Colours::on : explaining::Colours::off;
        }
        const Result<CodePage> page = charset_.page();
        if (!page.ok()) {
            return report("", page.error());
        }
        request_.code_page = &page.value();
        return run_explain(request_);
    }

private:
    ExplainRequest request_;
    std::string colours_ = "auto";
    CharsetOption charset_;
};

} // namespace

std::unique_ptr<CommandLine> identify_command_line()
{
    return std::make_unique<IdentifyCommandLine>();
}

std::unique_ptr<CommandLine> explain_command_line()
{
    return std::make_unique<ExplainCommandLine>();
}

} // namespace pfsdoc::cli

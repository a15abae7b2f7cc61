// pfsdoc identify: what files are, one line or one JSON object for each.
#include "cli/program.h"
#include "cli/report.h"
#include "command/document_job.h"
#include "command/subcommand.h"
#include "lib/base/escaped_name.h"
#include "lib/base/json_text.h"
#include "lib/base/printable.h"
#include "pfsdoc/examine.h"

#include <algorithm>

namespace pfsdoc::cli {

namespace {

constexpr int some_failed = 1; // of several files

constexpr const char *footer =
    R"(A file that is no document is an answer too: the exit code is 4 where it is the
only one, and 0 among several, and with --json and --lines. A file that cannot
be read is named on standard error, the others are identified nevertheless, and
the exit code is 1. A document whose kind is not certain is marked: likely (its
end mark is not at its end) or signature (its header is not plausible).

Examples:
  pfsdoc identify letters/*
  pfsdoc identify -v LETTER
  pfsdoc identify --json letters/* > letters.json)";

// What has been found out about one file.
struct Finding {
    Identity identity;
    Examination examination;
    std::string mismatch; // of the name's extension; empty: none
};

Result<Finding> find_out(const std::string &file)
{
    const Result<std::unique_ptr<ByteSource>> source = open_source(file);
    if (!source.ok()) {
        return source.error();
    }
    const Result<Identity> identity = identify(*source.value());
    if (!identity.ok()) {
        return identity.error();
    }
    const DocumentKind kind = identity.value().kind;
    const Examination examination = examine(*source.value(), kind);
    if (const Status failure = source.value()->failure(); !failure.ok()) {
        return failure.error();
    }
    const std::string name = file == "-" ? "" : file;
    return Finding{identity.value(), examination, extension_mismatch(name, kind)};
}

// For a person who wants to know what it is. What is not certain is marked.
std::string short_line(const std::string &file, const Finding &finding)
{
    const Confidence confidence = finding.examination.confidence;
    std::string line = base::escaped_name(file);
    line.append(": ").append(display_name(finding.identity.kind));
    if (confidence != Confidence::certain) {
        line.append(", ").append(confidence_name(confidence));
    }
    return line.append("\n");
}

// With all that is behind it.
std::string long_line(const std::string &file, const Finding &finding)
{
    const DocumentKind kind = finding.identity.kind;
    std::string line = base::escaped_name(file);
    line.append(": ").append(display_name(kind));
    line.append(", file id ").append(std::to_string(file_id(kind)));
    line.append(", ").append(confidence_name(finding.examination.confidence));
    line.append(pronom_id(kind).empty() ? "" : ", ").append(pronom_id(kind));
    line.append(": ").append(base::printable(finding.identity.basis));
    for (const std::string &note : finding.examination.notes) {
        line.append("; ").append(note);
    }
    line.append(finding.mismatch.empty() ? "" : "; ").append(finding.mismatch);
    return line.append("\n");
}

// Errors of files begin with "is ": their names stand before it.
std::string line_of_other(const std::string &file, const Error &error)
{
    constexpr std::string_view verb = "is ";
    const std::string what = base::printable(error.what);
    return base::escaped_name(file) + ": " +
           (what.starts_with(verb) ? what.substr(verb.size()) : what) + "\n";
}

bool is_answer(const Result<Finding> &finding)
{
    return finding.ok() || finding.error().kind == ErrorKind::not_a_document;
}

// A JSON object, member by member.
class Object {
public:
    Object &text(std::string_view member, std::string_view value)
    {
        name(member);
        base::append_json_string(json_, value);
        return *this;
    }
    Object &text_or_null(std::string_view member, std::string_view value)
    {
        return value.empty() ? word(member, "null") : text(member, value);
    }
    // A number, or one of the words that JSON knows.
    Object &word(std::string_view member, std::string_view value)
    {
        name(member);
        json_.append(value);
        return *this;
    }
    Object &texts(std::string_view member, const std::vector<std::string> &values)
    {
        name(member);
        std::string_view before = "[";
        for (const std::string &value : values) {
            json_.append(before);
            base::append_json_string(json_, value);
            before = ",";
        }
        json_.append(values.empty() ? "[]" : "]");
        return *this;
    }
    std::string closed() const
    {
        return json_ + "}";
    }

private:
    void name(std::string_view member)
    {
        json_.append(json_.empty() ? "{" : ",");
        base::append_json_string(json_, member);
        json_.append(":");
    }

    std::string json_;
};

std::string_view json_word(RegistrySignature signature)
{
    switch (signature) {
    case RegistrySignature::matches: return "true";
    case RegistrySignature::differs: return "false";
    default: return "null";
    }
}

std::string json_of(const std::string &file, const Finding &finding)
{
    const DocumentKind kind = finding.identity.kind;
    const Examination &examination = finding.examination;
    return Object()
        .text("source", base::escaped_name(file))
        .text("kind", display_name(kind))
        .word("file_id", std::to_string(file_id(kind)))
        .text("confidence", confidence_name(examination.confidence))
        .text("basis", base::printable(finding.identity.basis))
        .text_or_null("puid", pronom_id(kind))
        .word("pronom_signature", json_word(examination.registry_signature))
        .text_or_null("extension_mismatch", finding.mismatch)
        .texts("notes", examination.notes)
        .closed();
}

std::string json_of(const std::string &file, const Error &error)
{
    return Object()
        .text("source", base::escaped_name(file))
        .text("error", base::printable(error.what))
        .text("remedy", base::printable(error.remedy))
        .word("exit_code", std::to_string(exit_code(error.kind)))
        .closed();
}

enum class Form { short_lines, long_lines, json_array, json_lines };

bool is_json(Form form)
{
    return form == Form::json_array || form == Form::json_lines;
}

// Puts one file's findings after the other, in the form that is wanted.
class Report {
public:
    Report(base::FileOutput &output, Form form) : output_(output), form_(form)
    {
        if (form_ == Form::json_array) {
            output_.write("[");
        }
    }

    void add(const std::string &file, const Result<Finding> &finding)
    {
        if (is_json(form_)) {
            add_object(finding.ok() ? json_of(file, finding.value())
                                    : json_of(file, finding.error()));
        } else if (finding.ok()) {
            output_.write(form_ == Form::long_lines ? long_line(file, finding.value())
                                                    : short_line(file, finding.value()));
        } else if (is_answer(finding)) {
            output_.write(line_of_other(file, finding.error()));
        }
        output_.flush(); // so that it stands in order among the lines on standard error
    }
    void finish()
    {
        if (form_ == Form::json_array) {
            output_.write("\n]\n");
        }
    }

private:
    void add_object(const std::string &object)
    {
        if (form_ == Form::json_lines) {
            output_.write(object + "\n");
            return;
        }
        output_.write(first_ ? "\n" : ",\n");
        output_.write("  " + object);
        first_ = false;
    }

    base::FileOutput &output_;
    Form form_;
    bool first_ = true;
};

Form wanted_form(const Arguments &arguments)
{
    if (arguments.json || arguments.json_lines) {
        return arguments.json ? Form::json_array : Form::json_lines;
    }
    return arguments.verbose ? Form::long_lines : Form::short_lines;
}

// What a finding makes of the exit code: a file that is something else has been identified too.
int code_of(const std::string &file, const Result<Finding> &finding, bool is_only_one, Form form)
{
    if (finding.ok()) {
        return 0;
    }
    if (!is_answer(finding)) {
        const int own = report(subject_of(file), finding.error());
        return is_only_one ? own : some_failed;
    }
    return is_only_one && !is_json(form) ? exit_code(finding.error().kind) : 0;
}

int run(const Options &options)
{
    const Arguments &arguments = options.arguments();
    const Result<std::unique_ptr<base::FileOutput>> output = base::FileOutput::create("");
    if (!output.ok()) {
        return report("", output.error());
    }
    const Form form = wanted_form(arguments);
    Report findings(*output.value(), form);
    int code = 0;
    for (const std::string &file : arguments.paths) {
        const Result<Finding> finding = find_out(file);
        findings.add(file, finding);
        code = std::max(code, code_of(file, finding, arguments.paths.size() == 1, form));
    }
    findings.finish();
    const Status failure = output.value()->commit();
    end_if_reader_is_gone(*output.value());
    return failure.ok() ? code : report("", failure.error());
}

} // namespace

const Subcommand identify_subcommand = {
    .name = "identify",
    .description = "Identify files by their content, one line for each",
    .footer = footer,
    .command = identify_command,
    .run = run,
};

} // namespace pfsdoc::cli

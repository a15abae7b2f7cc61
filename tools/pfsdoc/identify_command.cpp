// pfsdoc identify: what files are, one line or one JSON object for each.
#include "commands.h"

#include "document_job.h"
#include "examine.h"
#include "printable.h"

#include <nlohmann/json.hpp>

namespace pfsdoc {

namespace {

using Json = nlohmann::ordered_json;

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
    if (const Status failure = source.value()->failure()) {
        return *failure;
    }
    const std::string name = file == "-" ? "" : file;
    return Finding{identity.value(), examination, extension_mismatch(name, kind)};
}

std::string line_of(const std::string &file, const Finding &finding)
{
    const DocumentKind kind = finding.identity.kind;
    std::string line = printable(file);
    line.append(": ").append(display_name(kind));
    line.append(", file id ").append(std::to_string(file_id(kind)));
    line.append(", ").append(confidence_name(finding.examination.confidence));
    line.append(pronom_id(kind).empty() ? "" : ", ").append(pronom_id(kind));
    line.append(": ").append(printable(finding.identity.basis));
    for (const std::string &note : finding.examination.notes) {
        line.append("; ").append(note);
    }
    line.append(finding.mismatch.empty() ? "" : "; ").append(finding.mismatch);
    return line.append("\n");
}

Json json_of(const std::string &file, const Finding &finding)
{
    const DocumentKind kind = finding.identity.kind;
    const RegistrySignature signature = finding.examination.registry_signature;
    Json object;
    object["file"] = printable(file);
    object["kind"] = display_name(kind);
    object["file_id"] = file_id(kind);
    object["confidence"] = confidence_name(finding.examination.confidence);
    object["basis"] = printable(finding.identity.basis);
    object["pronom"] = pronom_id(kind).empty() ? Json() : Json(pronom_id(kind));
    object["pronom_signature"] = signature == RegistrySignature::none
                                     ? Json()
                                     : Json(signature == RegistrySignature::matches);
    object["extension_mismatch"] = finding.mismatch.empty() ? Json() : Json(finding.mismatch);
    object["notes"] = finding.examination.notes;
    return object;
}

Json json_of(const std::string &file, const Error &error)
{
    Json object;
    object["file"] = printable(file);
    object["error"] = printable(error.what);
    object["remedy"] = printable(error.remedy);
    object["exit_code"] = exit_code(error.kind);
    return object;
}

// Puts one file's findings after the other, in the form that is wanted.
class Report {
public:
    Report(FileOutput &output, IdentifyForm form) : output_(output), form_(form)
    {
        if (form_ == IdentifyForm::json_array) {
            output_.write("[");
        }
    }

    void add(const std::string &file, const Result<Finding> &finding)
    {
        if (form_ != IdentifyForm::table) {
            add_object(finding.ok() ? json_of(file, finding.value())
                                    : json_of(file, finding.error()));
        } else if (finding.ok()) {
            output_.write(line_of(file, finding.value()));
        }
        output_.flush(); // so that it stands in order among the lines on standard error
    }
    void finish()
    {
        if (form_ == IdentifyForm::json_array) {
            output_.write("\n]\n");
        }
    }

private:
    void add_object(const Json &object)
    {
        if (form_ == IdentifyForm::json_lines) {
            output_.write(object.dump() + "\n");
            return;
        }
        output_.write(first_ ? "\n" : ",\n");
        output_.write("  " + object.dump());
        first_ = false;
    }

    FileOutput &output_;
    IdentifyForm form_;
    bool first_ = true;
};

} // namespace

int run_identify(const IdentifyRequest &request)
{
    constexpr int some_failed = 1;
    const Result<std::unique_ptr<FileOutput>> output = FileOutput::create("");
    if (!output.ok()) {
        return report("", output.error());
    }
    Report findings(*output.value(), request.form);
    int code = 0;
    for (const std::string &file : request.files) {
        const Result<Finding> finding = find_out(file);
        findings.add(file, finding);
        if (!finding.ok()) {
            const int own = report(subject_of(file), finding.error());
            code = request.files.size() == 1 ? own : some_failed;
        }
    }
    findings.finish();
    const Status fault = output.value()->commit();
    return fault ? report("", *fault) : code;
}

} // namespace pfsdoc

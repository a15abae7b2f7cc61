#include "batch/trusted/record.h"

#include "batch/trusted/recorded_line.h"
#include "lib/base/escaped_name.h"
#include "lib/base/json_text.h"
#include "lib/base/printable.h"

#include <nlohmann/json.hpp>

namespace pfsdoc::batch {

namespace {

using nlohmann::json;

void append_null(std::string &line, std::string_view name)
{
    base::append_json_name(line, name);
    line += "null";
}

// A worker's texts may be anything.
void append_text(std::string &line, std::string_view name, std::string_view text)
{
    base::append_json_member(line, name, base::printable(text));
}

std::optional<std::string> module_of(const RecordedRequest &request)
{
    return request.module.empty() ? std::nullopt
                                  : std::optional(base::escaped_name(request.module));
}

void append_or_null(std::string &line, std::string_view name, std::string_view text)
{
    if (text.empty()) {
        append_null(line, name);
    } else {
        base::append_json_member(line, name, text);
    }
}

// Begins a member that is an object.
void open_object(std::string &line, std::string_view name)
{
    base::append_json_name(line, name);
    line += '{';
}

void append_kind(std::string &line, const Outcome &outcome)
{
    if (outcome.kind == no_kind) {
        for (const char *name : {"kind", "file_id", "puid", "confidence", "basis"}) {
            append_null(line, name);
        }
        return;
    }
    const auto kind = static_cast<DocumentKind>(outcome.kind);
    base::append_json_member(line, "kind", display_name(kind));
    base::append_json_member(line, "file_id", file_id(kind));
    append_or_null(line, "puid", pronom_id(kind));
    base::append_json_member(line, "confidence",
                             confidence_name(static_cast<Confidence>(outcome.confidence)));
    append_text(line, "basis", outcome.basis.get());
}

void append_error(std::string &line, const Outcome &outcome)
{
    if (outcome.what.get().empty()) {
        append_null(line, "error");
        return;
    }
    open_object(line, "error");
    append_text(line, "words", outcome.what.get());
    append_text(line, "remedy", outcome.remedy.get());
    if (outcome.error_offset != no_offset) {
        base::append_json_member(line, "offset", outcome.error_offset);
    }
    line += '}';
}

void append_counts(std::string &line, const Outcome &outcome)
{
    if (outcome.has_counts == 0) {
        append_null(line, "counts");
        return;
    }
    open_object(line, "counts");
    base::append_json_member(line, "paragraphs", outcome.counts.paragraphs);
    base::append_json_member(line, "characters", outcome.counts.characters);
    base::append_json_member(line, "page_breaks", outcome.counts.page_breaks);
    base::append_json_member(line, "header_lines", outcome.counts.header_lines);
    base::append_json_member(line, "footer_lines", outcome.counts.footer_lines);
    line += '}';
}

void append_losses(std::string &line, const Outcome &outcome)
{
    open_object(line, "losses");
    for (std::size_t i = 0; i < outcome.losses.size(); ++i) {
        if (outcome.losses[i] != 0) {
            base::append_json_member(line, loss_name(static_cast<Loss>(i)), outcome.losses[i]);
        }
    }
    line += '}';
}

void append_after_end(std::string &line, const Outcome &outcome)
{
    if (outcome.after_end_offset == no_offset) {
        append_null(line, "after_end");
        return;
    }
    open_object(line, "after_end");
    base::append_json_member(line, "offset", outcome.after_end_offset);
    base::append_json_member(line, "bytes", outcome.after_end_bytes);
    line += '}';
}

void append_output(std::string &line, const RecordedFile &file, const Outcome &outcome)
{
    if (!has_output(outcome.status)) {
        append_null(line, "output");
        return;
    }
    open_object(line, "output");
    append_text(line, "name", file.output);
    base::append_json_member(line, "size", outcome.output_size);
    base::append_json_member(line, "sha256", hex_of(outcome.output_digest));
    line += '}';
}

std::optional<FileStatus> status_of_name(const std::string &name)
{
    for (std::size_t i = 0; i < file_status_count; ++i) {
        if (status_name(static_cast<FileStatus>(i)) == name) {
            return static_cast<FileStatus>(i);
        }
    }
    return std::nullopt;
}

// These throw what the library throws where a member is missing or of another type.
bool is_of_request(const json &members, const RecordedRequest &request)
{
    const json &module = members.at("module");
    return members.at("format").get<std::string>() == request.format &&
           members.at("options").get<std::string>() == request.options &&
           (module.is_null() ? std::nullopt : std::optional(module.get<std::string>())) ==
               module_of(request) &&
           members.at("pfsdoc").get<std::string>() == PFSDOC_VERSION;
}

bool is_of_file(const json &members, const RecordedFile &file)
{
    return members.at("name").get<std::string>() == base::printable(file.name) &&
           members.at("source").get<std::string>() == base::escaped_name(file.source) &&
           members.at("size").get<uint64_t>() == file.size;
}

std::optional<EarlierRecord> usable(const json &members, const RecordedFile &file,
                                    const RecordedRequest &request)
{
    const auto status = status_of_name(members.at("status").get<std::string>());
    if (!is_of_file(members, file) || !is_of_request(members, request) || !status ||
        !is_final(*status) || members.at("sha256").is_null()) {
        return std::nullopt;
    }
    EarlierRecord record{*status, {}, {}, 0, {}};
    const auto input = digest_of_hex(members.at("sha256").get<std::string>());
    const std::optional<RecordedOutput> output = recorded_output(members);
    if (!input || output.has_value() != has_output(*status) ||
        (output && output->name != file.output)) {
        return std::nullopt;
    }
    record.input = *input;
    if (output) {
        record.output = output->name;
        record.output_size = output->content.size;
        record.output_digest = output->content.sha256;
    }
    return record;
}

} // namespace

std::string record_line(const RecordedFile &file, const RecordedRequest &request,
                        const Outcome &outcome)
{
    std::string line = "{";
    append_text(line, "name", file.name);
    base::append_json_member(line, "source", base::escaped_name(file.source));
    base::append_json_member(line, "size", file.size);
    if (outcome.has_input_digest != 0) {
        base::append_json_member(line, "sha256", hex_of(outcome.input_digest));
    } else {
        append_null(line, "sha256");
    }
    append_kind(line, outcome);
    base::append_json_member(line, "status", status_name(outcome.status));
    append_error(line, outcome);
    append_counts(line, outcome);
    append_losses(line, outcome);
    append_after_end(line, outcome);
    append_output(line, file, outcome);
    base::append_json_member(line, "format", request.format);
    base::append_json_member(line, "options", request.options);
    append_or_null(line, "module", module_of(request).value_or(""));
    base::append_json_member(line, "pfsdoc", std::string_view(PFSDOC_VERSION));
    return line + "}\n";
}

std::optional<EarlierRecord> usable_record(std::string_view line, const RecordedFile &file,
                                           const RecordedRequest &request)
{
    try {
        return usable(parsed_line(line), file, request);
    } catch (const json::exception &) {
        return std::nullopt;
    }
}

} // namespace pfsdoc::batch

#include "record.h"

#include "printable.h"

#include <array>
#include <nlohmann/json.hpp>

namespace pfsdoc {

namespace {

using Json = nlohmann::ordered_json;

Json error_of(const Outcome &outcome)
{
    if (outcome.what.get().empty()) {
        return nullptr;
    }
    Json error = {{"words", printable(outcome.what.get())},
                  {"remedy", printable(outcome.remedy.get())}};
    if (outcome.error_offset != no_offset) {
        error["offset"] = outcome.error_offset;
    }
    return error;
}

Json counts_of(const Outcome &outcome)
{
    if (outcome.has_counts == 0) {
        return nullptr;
    }
    return {{"paragraphs", outcome.counts.paragraphs},
            {"characters", outcome.counts.characters},
            {"page_breaks", outcome.counts.page_breaks},
            {"header_lines", outcome.counts.header_lines}};
}

Json losses_of(const Outcome &outcome)
{
    Json losses = Json::object();
    for (std::size_t i = 0; i < outcome.losses.size(); ++i) {
        if (outcome.losses[i] != 0) {
            losses[std::string(loss_name(static_cast<Loss>(i)))] = outcome.losses[i];
        }
    }
    return losses;
}

Json output_of(const RecordedFile &file, const Outcome &outcome)
{
    if (!has_output(outcome.status)) {
        return nullptr;
    }
    return {{"name", printable(file.output)},
            {"size", outcome.output_size},
            {"sha256", hex_of(outcome.output_digest)}};
}

// A worker's texts were cut to size, maybe within a character.
std::string dumped(const Json &json)
{
    return json.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n";
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

// Throws what the library throws where a member is missing or of another type.
std::optional<EarlierRecord> usable(const Json &json, const RecordedFile &file,
                                    const RecordedRequest &request)
{
    const auto status = status_of_name(json.at("status").get<std::string>());
    const bool is_same = json.at("name").get<std::string>() == printable(file.name) &&
                         json.at("size").get<uint64_t>() == file.size &&
                         json.at("format").get<std::string>() == request.format &&
                         json.at("options").get<std::string>() == request.options &&
                         json.at("pfsdoc").get<std::string>() == PFSDOC_VERSION;
    if (!is_same || !status || !is_final(*status) || json.at("sha256").is_null()) {
        return std::nullopt;
    }
    EarlierRecord record{*status, {}, {}, 0, {}};
    const auto input = digest_of_hex(json.at("sha256").get<std::string>());
    if (!input || !has_output(*status)) {
        record.input = input.value_or(Digest{});
        return input ? std::optional(record) : std::nullopt;
    }
    record.input = *input;
    record.output = json.at("output").at("name").get<std::string>();
    record.output_size = json.at("output").at("size").get<uint64_t>();
    const auto digest = digest_of_hex(json.at("output").at("sha256").get<std::string>());
    record.output_digest = digest.value_or(Digest{});
    return digest ? std::optional(record) : std::nullopt;
}

} // namespace

std::string record_line(const RecordedFile &file, const RecordedRequest &request,
                        const Outcome &outcome)
{
    Json json;
    json["name"] = printable(file.name);
    json["size"] = file.size;
    json["sha256"] = outcome.has_input_digest != 0 ? Json(hex_of(outcome.input_digest)) : nullptr;
    const bool is_known = outcome.kind != no_kind;
    const auto kind = static_cast<DocumentKind>(outcome.kind);
    json["kind"] = is_known ? Json(display_name(kind)) : nullptr;
    json["file_id"] = is_known ? Json(file_id(kind)) : nullptr;
    json["basis"] = is_known ? Json(printable(outcome.basis.get())) : nullptr;
    json["status"] = status_name(outcome.status);
    json["error"] = error_of(outcome);
    json["counts"] = counts_of(outcome);
    json["losses"] = losses_of(outcome);
    json["output"] = output_of(file, outcome);
    json["format"] = request.format;
    json["options"] = request.options;
    json["pfsdoc"] = PFSDOC_VERSION;
    return dumped(json);
}

std::optional<EarlierRecord> usable_record(std::string_view line, const RecordedFile &file,
                                           const RecordedRequest &request)
{
    try {
        return usable(Json::parse(line), file, request);
    } catch (const Json::exception &) {
        return std::nullopt;
    }
}

std::optional<std::string> recorded_name(std::string_view line)
{
    try {
        return Json::parse(line).at("name").get<std::string>();
    } catch (const Json::exception &) {
        return std::nullopt;
    }
}

} // namespace pfsdoc

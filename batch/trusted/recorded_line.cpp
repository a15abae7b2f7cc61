#include "batch/trusted/recorded_line.h"

#include "pfsdoc/formats.h"
#include "pfsdoc/writer.h"

#include <nlohmann/json.hpp>

namespace pfsdoc::batch {

namespace {

using nlohmann::json;

constexpr int deepest_line = 8; // of two that are needed

struct InvalidLine final : json::exception {
    InvalidLine() : json::exception(0, "is not a line of a manifest") {}
};

// As names of outputs are made: each part names something in the folder before it.
bool is_safe(std::string_view name)
{
    for (bool is_last = false; !is_last;) {
        const std::size_t end = name.find('/');
        const std::string_view part = name.substr(0, end);
        is_last = end == std::string_view::npos;
        name.remove_prefix(is_last ? name.size() : end + 1);
        if (part.empty() || part == "." || part == ".." ||
            part.find('\0') != std::string_view::npos) {
            return false;
        }
    }
    return true;
}

RecordedLine read(const json &members)
{
    RecordedLine line;
    line.name = members.at("name").get<std::string>();
    line.status = members.at("status").get<std::string>();
    const Format *format = find_format(members.at("format").get_ref<const std::string &>());
    line.output = recorded_output(members);
    if (line.output) {
        line.output_name = line.output->name;
    } else if (format != nullptr) {
        line.output_name = line.name + "." + std::string(format->extension);
    }
    if (!is_safe(line.output_name)) {
        throw InvalidLine();
    }
    return line;
}

} // namespace

json parsed_line(std::string_view line)
{
    return json::parse(line, [](int depth, json::parse_event_t, json &) {
        if (depth > deepest_line) {
            throw InvalidLine();
        }
        return true;
    });
}

std::optional<RecordedOutput> recorded_output(const json &members)
{
    const json &output = members.at("output");
    if (output.is_null()) {
        return std::nullopt;
    }
    const auto digest = digest_of_hex(output.at("sha256").get_ref<const std::string &>());
    const json &size = output.at("size");
    std::string name = output.at("name").get<std::string>();
    if (!digest || !size.is_number_unsigned() || !is_safe(name)) {
        throw InvalidLine();
    }
    return RecordedOutput{std::move(name), {size.get<uint64_t>(), *digest}};
}

std::optional<RecordedLine> recorded_line(std::string_view line)
{
    try {
        return read(parsed_line(line));
    } catch (const json::exception &) {
        return std::nullopt;
    }
}

std::string output_of_line(std::string_view line)
{
    const std::optional<RecordedLine> read = recorded_line(line);
    return read ? read->output_name : "";
}

} // namespace pfsdoc::batch

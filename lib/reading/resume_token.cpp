#include "lib/reading/resume_token.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <charconv>
#include <exception>
#include <utility>

namespace pfsdoc::reading {

namespace {

using nlohmann::json;

constexpr int token_version = 1;

// The headers end at 837 bytes or before.
constexpr std::size_t hashed_size = 1024;
constexpr uint64_t fnv_offset_basis = 0xCBF29CE484222325U;
constexpr uint64_t fnv_prime = 0x100000001B3U;

constexpr std::string_view hex_digits = "0123456789abcdef";
constexpr int hex_base = 16;

// FNV-1a: distinguishes files that differ by accident.
uint64_t hash_of(std::span<const uint8_t> bytes)
{
    uint64_t hash = fnv_offset_basis;
    for (const uint8_t byte : bytes) {
        hash = (hash ^ byte) * fnv_prime;
    }
    return hash;
}

std::string hex(std::span<const uint8_t> bytes)
{
    std::string text;
    for (const uint8_t byte : bytes) {
        text.push_back(hex_digits[byte / hex_base]);
        text.push_back(hex_digits[byte % hex_base]);
    }
    return text;
}

// Whether the text is the hexadecimal form of just as many bytes.
bool read_hex(const std::string &text, std::span<uint8_t> bytes)
{
    if (text.size() != 2 * bytes.size()) {
        return false;
    }
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        const char *const begin = text.data() + 2 * i;
        if (std::from_chars(begin, begin + 2, bytes[i], hex_base).ptr != begin + 2) {
            return false;
        }
    }
    return true;
}

// What marks a token that parses and is none of ours.
class NoToken : public std::exception {};

// A whole number that fits; converting any other is not defined.
template <typename Number> Number number(const json &value)
{
    const bool is_unsigned = value.is_number_unsigned();
    const bool fits =
        is_unsigned ? std::in_range<Number>(value.get<uint64_t>())
                    : value.is_number_integer() && std::in_range<Number>(value.get<int64_t>());
    if (!fits) {
        throw NoToken();
    }
    return is_unsigned ? static_cast<Number>(value.get<uint64_t>())
                       : static_cast<Number>(value.get<int64_t>());
}

json margins_json(const Margins &margins)
{
    return {margins.left, margins.right};
}

Margins margins_of(const json &value)
{
    return {number<int32_t>(value.at(0)), number<int32_t>(value.at(1))};
}

json tab_stops_json(const TabStops &stops)
{
    json list = json::array();
    for (const TabStop &stop : stops) {
        list.push_back({stop.kind, stop.alignment_character, stop.leader_character, stop.position});
    }
    return list;
}

std::vector<TabStop> tab_stops_of(const json &list)
{
    std::vector<TabStop> stops;
    for (const json &stop : list) {
        stops.push_back({number<uint16_t>(stop.at(0)), number<uint16_t>(stop.at(1)),
                         number<uint16_t>(stop.at(2)), number<uint32_t>(stop.at(3))});
    }
    return stops;
}

json stitcher_json(const StitcherContext &context)
{
    json value = {{"in_block", context.in_block}, {"indents_reported", context.indents_reported}};
    if (context.margins) {
        value["margins"] = margins_json(*context.margins);
    }
    return value;
}

StitcherContext stitcher_of(const json &value)
{
    StitcherContext context;
    context.in_block = value.at("in_block").get<bool>();
    context.indents_reported = value.at("indents_reported").get<bool>();
    if (value.contains("margins")) {
        context.margins = margins_of(value.at("margins"));
    }
    return context;
}

json collector_json(const CollectorContext &context)
{
    json value = {{"attributes", context.attributes},
                  {"alignment", context.alignment},
                  {"line_spacing", context.line_spacing},
                  {"margins", margins_json(context.margins)},
                  {"tab_stops", tab_stops_json(context.tab_stops)},
                  {"offset_before", context.offset_before}};
    if (context.block) {
        value["block"] = *context.block == BlockKind::header ? "header" : "footer";
    }
    return value;
}

CollectorContext collector_of(const json &value)
{
    CollectorContext context;
    context.attributes = number<AttributeSet>(value.at("attributes"));
    context.alignment = number<int32_t>(value.at("alignment"));
    context.line_spacing = number<int32_t>(value.at("line_spacing"));
    context.margins = margins_of(value.at("margins"));
    context.tab_stops = tab_stops_of(value.at("tab_stops"));
    context.offset_before = number<uint32_t>(value.at("offset_before"));
    if (value.contains("block")) {
        context.block = value.at("block") == "header" ? BlockKind::header : BlockKind::footer;
    }
    return context;
}

Error no_token()
{
    return {ErrorKind::usage, "the resume token cannot be read", "take one from place() again"};
}

// Throws json::exception where something is missing or of another type, and NoToken.
MarkedPosition marked_position_of(const json &value)
{
    MarkedPosition marked;
    marked.document = {number<int32_t>(value.at("file_id")), number<uint32_t>(value.at("size")),
                       number<uint64_t>(value.at("start_hash")),
                       value.at("source_offsets").get<bool>()};
    ReadStart &start = marked.position.start;
    marked.position.blocks_before = number<uint64_t>(value.at("blocks_before"));
    start.at_beginning = !value.contains("position");
    if (!start.at_beginning) {
        start.checkpoint.position = number<uint32_t>(value.at("position"));
        start.stitcher = stitcher_of(value.at("stitcher"));
        start.collector = collector_of(value.at("collector"));
    }
    return marked;
}

} // namespace

Result<DocumentMark> document_mark(ByteSource &source, DocumentKind kind, bool source_offsets)
{
    std::array<uint8_t, hashed_size> bytes{};
    const std::optional<uint32_t> count = source.read_at(0, bytes);
    if (!count) {
        const Status failure = source.failure();
        return failure.ok() ? Error{ErrorKind::input, "cannot be read", ""} : failure.error();
    }
    return DocumentMark{file_id(kind), source.size(), hash_of(std::span(bytes).first(*count)),
                        source_offsets};
}

std::string token_text(const MarkedPosition &marked)
{
    const DocumentMark &document = marked.document;
    json value = {{"pfsdoc_place", token_version},
                  {"file_id", document.file_id},
                  {"size", document.size},
                  {"start_hash", document.start_hash},
                  {"source_offsets", document.source_offsets},
                  {"blocks_before", marked.position.blocks_before}};
    const ReadStart &start = marked.position.start;
    if (!start.at_beginning) {
        value["position"] = start.checkpoint.position;
        value["state"] = hex(start.checkpoint.state);
        value["stitcher"] = stitcher_json(start.stitcher);
        value["collector"] = collector_json(start.collector);
    }
    return value.dump();
}

Result<MarkedPosition> parse_token(std::string_view text)
{
    const json value = json::parse(text, nullptr, false);
    if (!value.is_object() || value.value("pfsdoc_place", json()) != token_version) {
        return no_token();
    }
    try {
        MarkedPosition marked = marked_position_of(value);
        ReadStart &start = marked.position.start;
        if (!start.at_beginning &&
            !read_hex(value.at("state").get<std::string>(), start.checkpoint.state)) {
            return no_token();
        }
        return marked;
    } catch (const json::exception &) {
        return no_token();
    } catch (const NoToken &) {
        return no_token();
    }
}

} // namespace pfsdoc::reading

// Spans as JSON objects, one a line. What does not apply to a span is left out.
#include "explain_writers.h"

#include "pfsdoc/attribute_names.h"
#include "printable.h"

#include <nlohmann/json.hpp>

namespace pfsdoc {

namespace {

using Json = nlohmann::ordered_json;

std::string hex_of(std::string_view bytes)
{
    std::string hex;
    hex.reserve(2 * bytes.size());
    for (const char byte : bytes) {
        hex.append(hex_byte(static_cast<unsigned char>(byte)));
    }
    return hex;
}

Json names_of(AttributeSet attributes)
{
    Json names = Json::array();
    for (const AttributeName &entry : attribute_names) {
        if ((attributes & attribute_bit(static_cast<int32_t>(entry.code))) != 0) {
            names.push_back(entry.name);
        }
    }
    return names;
}

} // namespace

void ExplainJsonWriter::span(const Span &span)
{
    Json object;
    object["offset"] = span.offset;
    object["length"] = span.bytes.size();
    object["kind"] = span_kind_name(span.kind);
    object["words"] = span.words;
    object["hex"] = hex_of(span.bytes);
    if (!span.characters.empty()) {
        std::string text;
        code_page_.append_utf8(text, span.characters);
        object["text"] = text;
    }
    if (span.attributes != 0) {
        object["attributes"] = names_of(span.attributes);
    }
    if (span.attribute_bytes != 0) {
        object["attribute_bytes"] = span.attribute_bytes;
    }
    if (span.line_end != LineEnd::none) {
        object["line_end"] = span.line_end == LineEnd::hard ? "hard" : "soft";
    }
    if (span.disputed) {
        object["disputed"] = true;
    }
    output_.write(object.dump() + "\n");
}

} // namespace pfsdoc

#include "lib/explain/explain_json.h"

#include "lib/base/json_text.h"
#include "lib/base/printable.h"
#include "pfsdoc/attribute_names.h"

namespace pfsdoc::explaining {

namespace {

std::string hex_of(std::string_view bytes)
{
    std::string hex;
    hex.reserve(2 * bytes.size());
    for (const char byte : bytes) {
        hex.append(base::hex_byte(static_cast<unsigned char>(byte)));
    }
    return hex;
}

void append_attributes(std::string &json, AttributeSet attributes)
{
    std::string_view before = ",\"attributes\":[";
    for (const AttributeName &entry : attribute_names) {
        if ((attributes & attribute_bit(entry.code)) != 0) {
            json.append(before);
            base::append_json_string(json, entry.name);
            before = ",";
        }
    }
    json.append("]");
}

} // namespace

void ExplainJsonWriter::span(const Span &span)
{
    std::string json = "{\"offset\":" + std::to_string(span.offset) +
                       ",\"length\":" + std::to_string(span.bytes.size());
    base::append_json_member(json, "kind", span_kind_name(span.kind));
    base::append_json_member(json, "words", span.words);
    base::append_json_member(json, "hex", hex_of(span.bytes));
    if (!span.characters.empty()) {
        std::string text;
        code_page_.append_utf8(text, span.characters);
        base::append_json_member(json, "text", text);
    }
    if (span.attributes != 0) {
        append_attributes(json, span.attributes);
    }
    if (span.attribute_bytes != 0) {
        json.append(",\"attribute_bytes\":").append(std::to_string(span.attribute_bytes));
    }
    if (span.line_end != LineEnd::none) {
        base::append_json_member(json, "line_end",
                                 span.line_end == LineEnd::hard ? "hard" : "soft");
    }
    json.append(span.disputed ? ",\"disputed\":true}\n" : "}\n");
    output_.write(json);
}

} // namespace pfsdoc::explaining

#include "lib/explain/explain_header.h"

#include "formats/first_choice.h"
#include "formats/text.h"
#include "formats/write_family.h"
#include "lib/base/printable.h"
#include "lib/explain/margin_record.h"
#include "pfsdoc/attribute_names.h"

#include <algorithm>
#include <string>

namespace pfsdoc::explaining {

namespace {

using formats::FieldForm;
using formats::HeaderField;

constexpr uint32_t columns_in_byte = 8;

// Attribute bits of header and footer lines.
struct AttributeBit {
    int32_t bit;
    AttributeCode code;
};
constexpr AttributeBit attribute_bits[] = {{formats::underline, AttributeCode::underline},
                                           {formats::bold, AttributeCode::bold},
                                           {formats::italic, AttributeCode::italic}};

void append_to_list(std::string &list, std::string_view item)
{
    list.append(list.empty() ? "" : ", ").append(item);
}

// One header, field by field.
class HeaderExplainer {
public:
    HeaderExplainer(SpanBuilder &builder, DocumentKind kind) : builder_(builder), kind_(kind) {}

    void explain(std::span<const HeaderField> fields);

private:
    int32_t byte(uint32_t at)
    {
        return builder_.byte(at);
    }
    int16_t word(uint32_t at)
    {
        constexpr int32_t byte_values = 256;
        return static_cast<int16_t>(byte(at) + byte(at + 1) * byte_values);
    }
    void explain_field(const HeaderField &field);
    void claim_value(const HeaderField &field);
    std::string value(const HeaderField &field);
    std::string text_value(const HeaderField &field);
    std::string_view alignment_value(uint32_t at);
    std::string attributes_value(uint32_t at);
    std::string_view align_letter_value(uint32_t at);
    std::string style_value(uint32_t at);

    void claim_line_text(const HeaderField &field);
    void claim_ruler(const HeaderField &field);
    std::string ruler_words(const HeaderField &field, uint32_t unit);
    std::string_view ruler_entry(uint32_t entry);
    std::string stops_in_byte(uint32_t at, uint32_t first_column);

    SpanBuilder &builder_;
    DocumentKind kind_;
};

void HeaderExplainer::explain(std::span<const HeaderField> fields)
{
    for (const HeaderField &field : fields) {
        if ((field.kinds & reading::kind_bit(kind_)) != 0) {
            builder_.claim_to(field.offset, SpanKind::unused, "not used");
            explain_field(field);
        }
    }
}

void HeaderExplainer::explain_field(const HeaderField &field)
{
    switch (field.form) {
    case FieldForm::ignored:
        builder_.claim_alone(SpanKind::unused, field.size,
                             std::string(field.name) + ": read but not used");
        break;
    case FieldForm::line_text: claim_line_text(field); break;
    case FieldForm::ruler_kinds:
    case FieldForm::ruler_columns:
    case FieldForm::ruler_bytes:
    case FieldForm::ruler_bits: claim_ruler(field); break;
    default: claim_value(field);
    }
}

void HeaderExplainer::claim_value(const HeaderField &field)
{
    const bool whole = uint32_t{field.offset} + field.size <= builder_.size();
    builder_.claim_alone(SpanKind::field, field.size,
                         std::string(field.name) + ": " +
                             (whole ? value(field) : "cut off by the end of the file"));
}

std::string HeaderExplainer::value(const HeaderField &field)
{
    const uint32_t at = field.offset;
    switch (field.form) {
    case FieldForm::column: return "column " + std::to_string(word(at));
    case FieldForm::short_column: return "column " + std::to_string(byte(at));
    case FieldForm::line_length: return "length " + std::to_string(byte(at));
    case FieldForm::text: return text_value(field);
    case FieldForm::alignment: return std::string(alignment_value(at));
    case FieldForm::attributes: return attributes_value(at);
    case FieldForm::align_letter: return std::string(align_letter_value(at));
    case FieldForm::style_letter: return style_value(at);
    default: return std::to_string(byte(at));
    }
}

std::string HeaderExplainer::text_value(const HeaderField &field)
{
    constexpr int32_t first_letter = 0x20;
    constexpr int32_t behind_letters = 0x7F;
    std::string text;
    for (uint32_t i = 0; i < field.size; ++i) {
        const int32_t letter = byte(field.offset + i);
        if (letter < first_letter || letter >= behind_letters) {
            return "byte 0x" + base::hex_byte(static_cast<unsigned>(letter));
        }
        text.push_back(static_cast<char>(letter));
    }
    return "\"" + text + "\"";
}

std::string_view HeaderExplainer::alignment_value(uint32_t at)
{
    switch (byte(at)) {
    case formats::write::alignment_centred: return "centred";
    case formats::write::alignment_right: return "right";
    default: return "left";
    }
}

std::string HeaderExplainer::attributes_value(uint32_t at)
{
    std::string list;
    for (const AttributeBit &entry : attribute_bits) {
        if ((byte(at) & entry.bit) != 0) {
            append_to_list(list, attribute_name(static_cast<int32_t>(entry.code)));
        }
    }
    return list.empty() ? "none" : list;
}

std::string_view HeaderExplainer::align_letter_value(uint32_t at)
{
    switch (byte(at)) {
    case formats::choice::letter_centred: return "centred";
    case formats::choice::letter_right: return "right";
    default: return "left";
    }
}

std::string HeaderExplainer::style_value(uint32_t at)
{
    const auto has = [this, at](int32_t letter) {
        return byte(at) == letter || byte(at + 1) == letter;
    };
    std::string list;
    if (has(formats::choice::letter_underline)) {
        append_to_list(list, "underline");
    }
    if (has(formats::choice::letter_bold)) {
        append_to_list(list, "bold");
    }
    return list.empty() ? "none" : list;
}

// A text longer than its room goes on over the fields behind it, to which the bytes belong.
void HeaderExplainer::claim_line_text(const HeaderField &field)
{
    const auto length = static_cast<uint32_t>(std::max(byte(field.offset - 1U), 0));
    const uint32_t room = field.size;
    const std::string name(field.name);
    const std::string beyond =
        length > room ? ", and " + std::to_string(length - room) + " bytes after it" : "";
    Span &span = builder_.claim_alone(SpanKind::header_text, std::min(length, room),
                                      "text of " + name + beyond);
    span.characters = span.bytes;
    builder_.claim_to(field.offset + room, SpanKind::unused, "room for " + name + ": not used");
}

// Neighbours with the same words are joined.
void HeaderExplainer::claim_ruler(const HeaderField &field)
{
    const bool by_entries =
        field.form == FieldForm::ruler_kinds || field.form == FieldForm::ruler_columns;
    const uint32_t unit = by_entries ? 2 : 1;
    const uint32_t columns = field.form == FieldForm::ruler_bits ? columns_in_byte : 1;
    const std::string_view one = by_entries ? ", entry " : ", column ";
    const std::string_view several = by_entries ? ", entries " : ", columns ";
    const uint32_t count = field.size / unit;
    for (uint32_t first = 0; first < count;) {
        const std::string words = ruler_words(field, first);
        uint32_t next = first + 1;
        while (next < count && ruler_words(field, next) == words) {
            ++next;
        }
        const uint32_t last = next * columns - 1;
        std::string name(field.name);
        name.append(last == first * columns ? one : several);
        name.append(std::to_string(first * columns));
        name.append(last == first * columns ? "" : " to " + std::to_string(last));
        name.append(": ").append(words);
        builder_.claim_alone(SpanKind::field, (next - first) * unit, name);
        first = next;
    }
}

std::string HeaderExplainer::ruler_words(const HeaderField &field, uint32_t unit)
{
    switch (field.form) {
    case FieldForm::ruler_kinds: return std::string(ruler_entry(unit));
    case FieldForm::ruler_columns:
        return ruler_entry(unit) == ruler_entry(formats::write::ruler_entries)
                   ? "not used"
                   : "at column " + std::to_string(word(field.offset + 2 * unit));
    case FieldForm::ruler_bytes:
        return (byte(field.offset + unit) & 1) != 0 ? "tab stop" : "no tab stop";
    default: return stops_in_byte(field.offset + unit, unit * columns_in_byte);
    }
}

// An entry behind the last one is no tab stop.
std::string_view HeaderExplainer::ruler_entry(uint32_t entry)
{
    using namespace formats::write;
    const bool is_entry = entry < static_cast<uint32_t>(ruler_entries);
    switch (is_entry ? byte(ruler_kinds_offset + ruler_entry_size * entry) : 0) {
    case ruler_tab_stop: return "tab stop";
    case ruler_decimal_stop: return "decimal tab stop";
    default: return "no tab stop";
    }
}

std::string HeaderExplainer::stops_in_byte(uint32_t at, uint32_t first_column)
{
    std::string list;
    for (uint32_t bit = 0; bit < columns_in_byte; ++bit) {
        if ((byte(at) & (1 << bit)) != 0) {
            append_to_list(list, std::to_string(first_column + bit));
        }
    }
    return list.empty() ? "no tab stop" : "tab stops: " + list;
}

// The text of a Write-family document begins behind a form feed, and behind the records that
// may follow it.
void explain_way_to_text(SpanBuilder &builder, uint32_t body)
{
    const auto is_before = [&builder, body](int32_t sought) {
        return builder.position() < body && builder.byte(builder.position()) != sought;
    };
    while (is_before(formats::form_feed)) {
        builder.claim(SpanKind::unused, 1, "before the form feed: skipped");
    }
    builder.claim(SpanKind::field, builder.position() < body ? 1 : 0,
                  "form feed: the text begins after it");
    while (builder.position() < body) {
        claim_margin_record(builder);
    }
}

} // namespace

void explain_header(SpanBuilder &builder, DocumentKind kind, uint32_t body)
{
    HeaderExplainer header(builder, kind);
    if (is_first_choice(kind)) {
        using namespace formats::choice;
        const int32_t generation = builder.byte(generation_offset);
        const bool ruler_of_bytes = generation != generation_2 && generation != generation_3;
        header.explain(formats::choice_header_fields(ruler_of_bytes));
        builder.claim_to(std::min(header_size, builder.size()), SpanKind::unused, "not used");
    } else {
        header.explain(formats::write_header_fields);
        builder.claim_to(std::min(formats::write::header_size, builder.size()), SpanKind::unused,
                         "not used");
        explain_way_to_text(builder, body);
    }
    builder.separate();
}

} // namespace pfsdoc::explaining

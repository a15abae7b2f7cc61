// The header of the Write family: 1024 bytes at fixed offsets, which all its kinds share though
// none reads all of them. A form feed ends it; margin and font records may follow.
// Test: tests/builder/write_header_test.cpp.
#include "builder/bytes.h"
#include "builder/encoders.h"
#include "formats/write_family.h"

#include <string_view>

namespace pfs_builder {
namespace {

using namespace formats::write;

constexpr std::size_t record_mark_and_length = 2;

void put_byte(std::string &file, std::size_t offset, std::size_t value)
{
    file[offset] = static_cast<char>(value);
}

void put_word(std::string &file, std::size_t offset, int value)
{
    put_byte(file, offset, static_cast<std::size_t>(value) & 0xFF);
    put_byte(file, offset + 1, static_cast<std::size_t>(value) >> 8);
}

void put_text(std::string &file, std::size_t offset, const std::string &text)
{
    put_byte(file, offset, text.size());
    file.replace(offset + 1, text.size(), text);
}

std::string_view signature_of(const Document &document)
{
    switch (document.kind) {
    case Kind::writing_assistant: return signature_writing_assistant;
    case Kind::professional_write_1: return signature_professional_1;
    case Kind::professional_write_2: return signature_professional_2;
    default:
        return document.signature.value_or(Signature::type_2) == Signature::wrd_pc
                   ? signature_wrd_pc
                   : signature_type_2;
    }
}

void put_signature(std::string &file, const Document &document)
{
    file.replace(signature_offset, signature_size, signature_of(document));
    if (document.kind == Kind::write_a) {
        file[variant_offset] = variant_a;
    } else if (document.kind == Kind::write_b) {
        file[variant_offset] = variant_b;
    }
}

void put_ruler(std::string &file, const std::vector<TabStop> &stops)
{
    for (std::size_t i = 0; i < stops.size(); ++i) {
        const std::size_t entry = ruler_entry_size * i;
        put_byte(file, ruler_kinds_offset + entry,
                 stops[i].decimal ? ruler_decimal_stop : ruler_tab_stop);
        put_word(file, ruler_columns_offset + entry, stops[i].column - 1);
    }
}

int alignment_code(const std::optional<Alignment> &alignment)
{
    switch (alignment.value_or(Alignment::left)) {
    case Alignment::centre: return alignment_centred;
    case Alignment::right: return alignment_right;
    default: return alignment_left;
    }
}

void put_headers_and_footers(std::string &file, const Document &document)
{
    const HeaderFooter &header = document.header;
    const HeaderFooter &footer = document.footer;
    put_text(file, line_length_offsets[0], header.lines[0]);
    put_text(file, line_length_offsets[1], header.lines[1]);
    put_text(file, line_length_offsets[2], footer.lines[0]);
    put_text(file, line_length_offsets[3], footer.lines[1]);
    put_word(file, header_alignment_offset, alignment_code(header.alignment));
    put_word(file, footer_alignment_offset, alignment_code(footer.alignment));
    put_byte(file, header_attributes_offset, header.style);
    put_byte(file, footer_attributes_offset, footer.style);
}

void put_margins(std::string &file, const Margins &margins)
{
    put_word(file, left_margin_offset, margins.left);
    put_word(file, right_margin_offset, margins.right);
    for (std::size_t pair = 0; pair < 2; ++pair) {
        put_byte(file, further_margins_offset + 2 * pair, static_cast<std::size_t>(margins.left));
        put_byte(file, further_margins_offset + 2 * pair + 1,
                 static_cast<std::size_t>(margins.right));
    }
}

std::string record(const std::string &type_and_data)
{
    std::string bytes;
    append(bytes, record_mark);
    append(bytes, static_cast<uint8_t>(record_mark_and_length + type_and_data.size()));
    return bytes + type_and_data;
}

} // namespace

std::string encode_record(const MarginRecord &margins)
{
    std::string bytes;
    append(bytes, record_margins);
    append(bytes, static_cast<uint8_t>(margins.margins.left));
    append(bytes, static_cast<uint8_t>(margins.margins.right));
    return record(bytes);
}

std::string encode_record(const OtherRecord &other)
{
    return record(other.bytes);
}

Margins margins_before_body(const Document &document)
{
    Margins margins = document.margins;
    for (const Record &any : document.records) {
        if (const auto *change = std::get_if<MarginRecord>(&any)) {
            margins = change->margins;
        }
    }
    return margins;
}

std::string write_header(const Document &document)
{
    std::string file(header_size, '\0');
    put_margins(file, document.margins);
    put_ruler(file, document.tab_stops);
    put_headers_and_footers(file, document);
    put_signature(file, document);
    append(file, form_feed);
    for (const Record &any : document.records) {
        file += std::visit([](const auto &one) { return encode_record(one); }, any);
    }
    return file;
}

} // namespace pfs_builder

// The header of the Write family: 1024 bytes of fixed places, which all its kinds share
// though none reads all of them. A form feed ends it; margin and font records may follow.
// Test: tests/builder/write_header_test.cpp.
#include "builder/body_bytes.h"
#include "builder/encoders.h"

namespace pfs_builder {
namespace {

constexpr std::size_t header_size = 1024;

constexpr std::size_t margins_offset = 10;       // two words, columns counted from 1
constexpr std::size_t ruler_kinds_offset = 16;   // a word for each of 78 stops
constexpr std::size_t ruler_places_offset = 172; // the same, columns counted from 0
constexpr std::size_t signature_offset = 641;
constexpr std::size_t variant_offset = 649;
constexpr std::size_t alignments_offset = 822; // header's word, footer's word
constexpr std::size_t header_attributes_offset = 828;
constexpr std::size_t footer_attributes_offset = 830;
constexpr std::size_t extra_margins_offset = 963; // left, right, left, right

// Each text stands behind its length.
constexpr std::array<std::size_t, 4> text_offsets = {328, 402, 484, 558};
constexpr std::size_t after_texts = signature_offset;

constexpr uint8_t ruler_ordinary = 0x0F;
constexpr uint8_t ruler_decimal = 0x10;

constexpr uint8_t record_mark = 0x07;
constexpr uint8_t margin_record_type = 0x01;
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

const char *signature_of(const Document &document)
{
    switch (document.kind) {
    case Kind::writing_assistant: return "IBM   ";
    case Kind::professional_write_1: return "TYPE 3";
    case Kind::professional_write_2: return "TYPE 4";
    default:
        return document.signature.value_or(Signature::type_2) == Signature::wrd_pc ? "WRD PC"
                                                                                   : "TYPE 2";
    }
}

void put_signature(std::string &file, const Document &document)
{
    file.replace(signature_offset, 6, signature_of(document));
    if (document.kind == Kind::write_a) {
        put_byte(file, variant_offset, '1');
    } else if (document.kind == Kind::write_b) {
        put_byte(file, variant_offset, '2');
    }
}

void put_ruler(std::string &file, const std::vector<TabStop> &stops)
{
    for (std::size_t i = 0; i < stops.size(); ++i) {
        put_byte(file, ruler_kinds_offset + 2 * i,
                 stops[i].decimal ? ruler_decimal : ruler_ordinary);
        put_word(file, ruler_places_offset + 2 * i, stops[i].column - 1);
    }
}

int alignment_code(const std::optional<Alignment> &alignment)
{
    switch (alignment.value_or(Alignment::left)) {
    case Alignment::centre: return 0;
    case Alignment::right: return 2;
    default: return 1;
    }
}

void put_headers_and_footers(std::string &file, const Document &document)
{
    const HeaderFooter &header = document.header;
    const HeaderFooter &footer = document.footer;
    put_text(file, text_offsets[0], header.lines[0]);
    put_text(file, text_offsets[1], header.lines[1]);
    put_text(file, text_offsets[2], footer.lines[0]);
    put_text(file, text_offsets[3], footer.lines[1]);
    put_word(file, alignments_offset, alignment_code(header.alignment));
    put_word(file, alignments_offset + 2, alignment_code(footer.alignment));
    put_byte(file, header_attributes_offset, header.style);
    put_byte(file, footer_attributes_offset, footer.style);
}

void put_margins(std::string &file, const Margins &margins)
{
    put_word(file, margins_offset, margins.left);
    put_word(file, margins_offset + 2, margins.right);
    for (std::size_t pair = 0; pair < 2; ++pair) {
        put_byte(file, extra_margins_offset + 2 * pair, static_cast<std::size_t>(margins.left));
        put_byte(file, extra_margins_offset + 2 * pair + 1,
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

const TextLimits write_header_text_limits = {
    text_offsets[1] - text_offsets[0] - 1, text_offsets[2] - text_offsets[1] - 1,
    text_offsets[3] - text_offsets[2] - 1, after_texts - text_offsets[3] - 1};

std::string encode_record(const MarginRecord &margins)
{
    std::string bytes;
    append(bytes, margin_record_type);
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
    append(file, body_form_feed);
    for (const Record &any : document.records) {
        file += std::visit([](const auto &one) { return encode_record(one); }, any);
    }
    return file;
}

} // namespace pfs_builder

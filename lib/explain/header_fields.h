// The fields of the headers: where each stands, which kinds have it, and how its value is
// read. A header is what lies between them too, but nothing there is known to mean anything.
// Test: tests/lib/explain/header_test.cpp.
#pragma once

#include "pfsdoc/identify.h"

#include <cstdint>
#include <span>
#include <string_view>

namespace pfsdoc::explaining {

enum class FieldForm : uint8_t {
    column,        // 16 bits, low byte first, counted from 1
    short_column,  // the same in 8 bits
    number,        // 8 bits
    ignored,       // read, but nothing is made of it
    text,          // as it stands
    line_length,   // of the header or footer line that follows
    line_text,     // as long as the length before it says
    alignment,     // 16 bits: 0 centred, 2 right, else left
    attributes,    // bits: 1 underline, 2 bold, 4 italic
    align_letter,  // C, R, else left
    style_letter,  // U, B, else none
    ruler_kinds,   // two bytes for each entry, of which the first says what it is
    ruler_columns, // 16 bits for each entry
    ruler_bytes,   // a byte for each column, bit 1: tab stop
    ruler_bits     // a bit for each column, the lowest first
};

using KindSet = uint8_t;
constexpr KindSet kind_bit(DocumentKind kind)
{
    return static_cast<KindSet>(1U << static_cast<unsigned>(kind));
}

struct HeaderField {
    uint16_t offset;
    uint16_t size;
    FieldForm form;
    std::string_view name;
    KindSet kinds;
};

inline constexpr uint16_t choice_signature_offset = 9;
inline constexpr uint16_t choice_generation_offset = 18;
inline constexpr uint16_t write_signature_offset = 641;
inline constexpr uint16_t write_variant_offset = 649;

inline constexpr uint16_t ruler_kinds_offset = 16;
inline constexpr uint16_t ruler_entries = 78;

// In the order of their offsets; no two that a kind has overlap. First Choice before
// generation 2 has the ruler of bytes, all others that of bits.
std::span<const HeaderField> write_header_fields();
std::span<const HeaderField> choice_header_fields(bool ruler_of_bytes);

inline constexpr uint32_t write_header_size = 1024;
inline constexpr uint32_t choice_header_size = 512;

} // namespace pfsdoc::explaining

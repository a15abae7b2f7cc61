// How PFS: WRITE and IBM Writing Assistant documents store a character and its attributes.
//
//   types 1 and 2   0x80-0xFF: the character is the low seven bits; an attribute byte follows
//   type 3          0xC0-0xFF: an attribute byte follows, two bits of which say what is to
//                   be taken off; the result, like every other byte, is then translated
//
// All other bytes are characters without attributes.
// Test: tests/module/write_line_reader_test.cpp.
#pragma once

#include "line_text.h"

#include <array>

namespace vs_pfs {

// Type 3.
inline constexpr uint8_t prefix_bits = 0xC0;
inline constexpr uint8_t attribute_bits = 0x0F;
inline constexpr uint8_t select_bits = 0x30;
inline constexpr uint8_t select_low_half = 0x10;
inline constexpr uint8_t select_high_half = 0x20;
inline constexpr uint8_t low_half_mask = 0x7F;
inline constexpr uint8_t high_half_mask = 0xBF;
inline constexpr uint8_t low_quarter_mask = 0x3F;
inline constexpr uint8_t kept_as_it_is = 0xE0;

// What the attribute byte makes of a prefixed byte.
inline constexpr uint8_t select_range(uint8_t byte, int32_t attribute)
{
    switch (attribute & select_bits) {
    case select_low_half: return byte & low_half_mask;
    case select_high_half: return byte & high_half_mask;
    default: return byte == kept_as_it_is ? byte : byte & low_quarter_mask;
    }
}

// Ranges of type 3 that stand elsewhere in the character set of the other kinds.
struct Shift {
    uint8_t first;
    uint8_t last;
    uint8_t added;
};
inline constexpr Shift shifts[] = {
    {0x0F, 0x11, 0xD5}, {0x12, 0x15, 0xD9}, {0x16, 0x19, 0xDA},
    {0x1A, 0x1E, 0xDC}, {0x1F, 0x1F, 0xDF}, {0xB0, 0xB1, 0x03},
    {0xB2, 0xB8, 0x0D}, {0xB9, 0xBB, 0x20}, {0xBC, 0xBF, 0x24},
};

inline constexpr int byte_values = 256;
using Translation = std::array<uint8_t, byte_values>;

constexpr Translation make_translation()
{
    Translation translation = {};
    for (int byte = 0; byte < byte_values; ++byte) {
        translation[static_cast<unsigned>(byte)] = static_cast<uint8_t>(byte);
    }
    for (const Shift &shift : shifts) {
        for (unsigned byte = shift.first; byte <= shift.last; ++byte) {
            translation[byte] = static_cast<uint8_t>(byte + shift.added);
        }
    }
    return translation;
}
inline constexpr Translation translation = make_translation();

// Decodes the character that begins with `byte`. False: the data ended inside it.
struct WriteDecoder {
    template <typename NextByte>
    bool operator()(uint8_t byte, Decoded &decoded, NextByte next_byte) const
    {
        decoded = {byte, 0};
        if ((byte & high_bit) == 0) {
            return true;
        }
        const int32_t attribute = next_byte();
        decoded.character = byte & low_seven_bits;
        SetAttr(static_cast<uint8_t>(attribute), 0, attr_form_plain, &decoded.attributes, nullptr);
        return attribute != end_of_data;
    }
};

// The same for type 3.
struct WritingAssistantDecoder {
    template <typename NextByte>
    bool operator()(uint8_t byte, Decoded &decoded, NextByte next_byte) const
    {
        decoded = {translation[byte], 0};
        if ((byte & prefix_bits) != prefix_bits) {
            return true;
        }
        const int32_t attribute = next_byte();
        decoded.character = translation[select_range(byte, attribute)];
        SetAttr(attribute & attribute_bits, 0, attr_form_plain, &decoded.attributes, nullptr);
        return attribute != end_of_data;
    }
};

} // namespace vs_pfs

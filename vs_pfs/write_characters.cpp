// Decoding the characters of format types 1 to 3. Test: tests/module/write_line_reader_test.cpp.
#include "write_characters.h"

#include "document_headers.h"
#include "line_text.h"

#include <array>

namespace vs_pfs {
namespace {

// Type 3.
constexpr uint8_t prefix_bits = 0xC0;
constexpr uint8_t attribute_bits = 0x0F;
constexpr uint8_t select_bits = 0x30;
constexpr uint8_t select_low_half = 0x10;
constexpr uint8_t select_high_half = 0x20;
constexpr uint8_t low_half_mask = 0x7F;
constexpr uint8_t high_half_mask = 0xBF;
constexpr uint8_t low_quarter_mask = 0x3F;
constexpr uint8_t kept_as_it_is = 0xE0;

// What the attribute byte makes of a prefixed byte.
constexpr uint8_t select_range(uint8_t byte, int32_t attribute)
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
constexpr Shift shifts[] = {
    {0x0F, 0x11, 0xD5}, {0x12, 0x15, 0xD9}, {0x16, 0x19, 0xDA},
    {0x1A, 0x1E, 0xDC}, {0x1F, 0x1F, 0xDF}, {0xB0, 0xB1, 0x03},
    {0xB2, 0xB8, 0x0D}, {0xB9, 0xBB, 0x20}, {0xBC, 0xBF, 0x24},
};

constexpr int byte_values = 256;
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
constexpr Translation translation = make_translation();

bool decode_write(VwCharStream *stream, uint8_t byte, WriteCharacter &decoded, VwInstance *instance)
{
    decoded = {byte, 0};
    if ((byte & high_bit) == 0) {
        return true;
    }
    const int32_t attribute = VwCharGet(stream);
    decoded.character = byte & low_seven_bits;
    SetAttr(static_cast<uint8_t>(attribute), 0, attr_form_plain, &decoded.charAttrSet, instance);
    return attribute != end_of_data;
}

bool decode_writing_assistant(VwCharStream *stream, uint8_t byte, WriteCharacter &decoded,
                              VwInstance *instance)
{
    decoded = {translation[byte], 0};
    if ((byte & prefix_bits) != prefix_bits) {
        return true;
    }
    const int32_t attribute = VwCharGet(stream);
    decoded.character = translation[select_range(byte, attribute)];
    SetAttr(attribute & attribute_bits, 0, attr_form_plain, &decoded.charAttrSet, instance);
    return attribute != end_of_data;
}

} // namespace

bool decode_write_character(VwCharStream *stream, uint8_t byte, WriteCharacter &decoded,
                            VwInstance *instance)
{
    return instance->state.formatType == format_writing_assistant
               ? decode_writing_assistant(stream, byte, decoded, instance)
               : decode_write(stream, byte, decoded, instance);
}

} // namespace vs_pfs

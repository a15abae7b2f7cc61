#include "lib/explain/stored_characters.h"

#include "lib/explain/body_bytes.h"

namespace pfsdoc::explaining {

using namespace body_bytes;

namespace {

// IBM Writing Assistant: bytes from here on take an attribute byte, two bits of which say
// what is to be taken off.
constexpr int32_t assistant_prefix = 0xC0;
constexpr int32_t assistant_select = 0x30;
constexpr int32_t assistant_low_half = 0x10;
constexpr int32_t assistant_high_half = 0x20;
constexpr int32_t assistant_high_half_mask = 0xBF;
constexpr int32_t assistant_quarter_mask = 0x3F;
constexpr int32_t assistant_kept = 0xE0;

// Ranges of its characters that stand elsewhere in the other kinds' character set.
struct Shift {
    int32_t first;
    int32_t last;
    int32_t added;
};
constexpr Shift shifts[] = {
    {0x0F, 0x11, 0xD5}, {0x12, 0x15, 0xD9}, {0x16, 0x19, 0xDA},
    {0x1A, 0x1E, 0xDC}, {0x1F, 0x1F, 0xDF}, {0xB0, 0xB1, 0x03},
    {0xB2, 0xB8, 0x0D}, {0xB9, 0xBB, 0x20}, {0xBC, 0xBF, 0x24},
};

uint8_t translated(int32_t character)
{
    for (const Shift &shift : shifts) {
        if (character >= shift.first && character <= shift.last) {
            return static_cast<uint8_t>(character + shift.added);
        }
    }
    return static_cast<uint8_t>(character);
}

int32_t selected(int32_t byte, int32_t attribute)
{
    switch (attribute & assistant_select) {
    case assistant_low_half: return byte & low_seven_bits;
    case assistant_high_half: return byte & assistant_high_half_mask;
    default: return byte == assistant_kept ? byte : byte & assistant_quarter_mask;
    }
}

// The bit of an attribute byte by which a character keeps its high bit; 0: none does.
int32_t high_bit_keeper(DocumentKind kind)
{
    switch (kind) {
    case DocumentKind::professional_write_1:
    case DocumentKind::professional_write_2: return professional_keeps_high_bit;
    case DocumentKind::first_choice_2:
    case DocumentKind::first_choice_3: return choice_keeps_high_bit;
    default: return 0;
    }
}

} // namespace

bool has_attribute_bytes(DocumentKind kind, int32_t byte)
{
    return byte >= (kind == DocumentKind::writing_assistant ? assistant_prefix : high_bit);
}

uint8_t plain_character(DocumentKind kind, int32_t byte)
{
    return kind == DocumentKind::writing_assistant ? translated(byte) : static_cast<uint8_t>(byte);
}

uint8_t attributed_character(DocumentKind kind, int32_t byte, int32_t attribute)
{
    if (kind == DocumentKind::writing_assistant) {
        return translated(selected(byte, attribute));
    }
    const bool keeps = (attribute & high_bit_keeper(kind)) != 0;
    return static_cast<uint8_t>(keeps ? byte : byte & low_seven_bits);
}

bool has_second_attribute_byte(DocumentKind kind, int32_t attribute)
{
    return is_first_choice(kind) && (attribute & choice_more_attributes) != 0;
}

} // namespace pfsdoc::explaining

#include "lib/explain/stored_characters.h"

#include "formats/first_choice.h"
#include "formats/write_family.h"
#include "formats/writing_assistant.h"

namespace pfsdoc::explaining {

using namespace formats;

namespace {

uint8_t translated(int32_t character)
{
    return assistant::translation[static_cast<uint8_t>(character)];
}

int32_t selected(int32_t byte, int32_t attribute)
{
    switch (attribute & assistant::select_bits) {
    case assistant::select_low_half: return byte & assistant::low_half_mask;
    case assistant::select_high_half: return byte & assistant::high_half_mask;
    default: return byte == assistant::kept ? byte : byte & assistant::low_quarter_mask;
    }
}

// The bit of an attribute byte by which a character keeps its high bit; 0: none does.
int32_t high_bit_keeper(DocumentKind kind)
{
    switch (kind) {
    case DocumentKind::professional_write_1:
    case DocumentKind::professional_write_2: return write::professional_keeps_high_bit;
    case DocumentKind::first_choice_2:
    case DocumentKind::first_choice_3: return choice::keep_high_bit;
    default: return 0;
    }
}

} // namespace

bool has_attribute_bytes(DocumentKind kind, int32_t byte)
{
    return byte >= (kind == DocumentKind::writing_assistant ? assistant::prefix_bits : high_bit);
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
    return is_first_choice(kind) && (attribute & choice::more_attributes) != 0;
}

} // namespace pfsdoc::explaining

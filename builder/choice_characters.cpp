// A plain character below 0x80 is stored unchanged. Any other has its high bit set and is
// followed by one or two attribute bytes: styled characters, those of the code page's upper half,
// and those whose byte would end a line or the document.
// Test: tests/builder/choice_encoder_test.cpp.
#include "builder/choice_characters.h"
#include "builder/bytes.h"

namespace pfs_builder {
namespace {

bool ends_something(uint8_t character)
{
    return character == form_feed || character == carriage_return || character == document_end;
}

uint8_t second_attribute_byte(Style style)
{
    uint8_t second = 0;
    if ((style & style_subscript) != 0) {
        second |= choice::second_subscript;
    }
    if ((style & style_superscript) != 0) {
        second |= choice::second_superscript;
    }
    return second;
}

std::string attributed(uint8_t character, Style style)
{
    uint8_t first = style & (style_underline | style_bold | style_italic);
    if ((character & high_bit) != 0) {
        first |= choice::keep_high_bit;
    }
    const uint8_t second = second_attribute_byte(style);
    std::string bytes;
    append(bytes, character | high_bit);
    append(bytes, second != 0 ? first | choice::more_attributes : first);
    if (second != 0) {
        append(bytes, second);
    }
    return bytes;
}

} // namespace

std::string encode_choice_cell(const Cell &cell)
{
    if (cell.kind != CellKind::text) {
        return cell.bytes;
    }
    const auto character = static_cast<uint8_t>(cell.bytes.front());
    const bool plain =
        cell.style == style_none && (character & high_bit) == 0 && !ends_something(character);
    return plain ? cell.bytes : attributed(character, cell.style);
}

} // namespace pfs_builder

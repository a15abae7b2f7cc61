// In all three a styled character is a pair: its first byte has the high bit set, its second is a
// set of attributes. They differ in what the high bit costs.
//
// PFS: WRITE removes the bit again, so it has no character above 0x7F. Professional Write has a
// bit in the attribute byte that keeps it. IBM Writing Assistant has two bits there that select a
// quarter of a character set other than the code page: a table maps it to the code page, and a
// search of that table maps back.
// Tests: tests/builder/write_encoder_test.cpp, tests/builder/professional_write_encoder_test.cpp.
#include "builder/write_characters.h"
#include "builder/bytes.h"
#include "formats/write_family.h"
#include "formats/writing_assistant.h"

namespace pfs_builder {
namespace {

uint8_t character_of(const Cell &cell)
{
    return static_cast<uint8_t>(cell.bytes.front());
}

std::string pair(uint8_t character, uint8_t attributes)
{
    std::string bytes;
    append(bytes, character);
    append(bytes, attributes);
    return bytes;
}

// ------------------------------------------------------------------------ PFS: WRITE

bool is_write_control(uint8_t character)
{
    return character == form_feed || character == carriage_return || character == document_end;
}

// --------------------------------------------------------------- IBM Writing Assistant

using formats::assistant::kept;
using formats::assistant::prefix_bits;
using formats::assistant::translation;

// The set's code for a character of the code page, or -1.
constexpr int stored_form(uint8_t character)
{
    if (character == kept) {
        return kept;
    }
    for (uint8_t stored = 0; stored < prefix_bits; ++stored) {
        if (translation[stored] == character) {
            return stored;
        }
    }
    return -1;
}
static_assert(stored_form(0xB3) == 0xB0 && stored_form(0xB0) == -1 && stored_form('A') == 'A');

// The bits that select the quarter to which the first byte's low six bits belong. The one
// character beyond the quarters is selected like the lowest.
uint8_t quarter_of(uint8_t stored)
{
    if (stored == kept) {
        return formats::assistant::select_low_quarter;
    }
    if ((stored & high_bit) != 0) {
        return formats::assistant::select_high_half;
    }
    constexpr uint8_t upper_ascii_bit = 0x40;
    return (stored & upper_ascii_bit) != 0 ? formats::assistant::select_low_half
                                           : formats::assistant::select_low_quarter;
}

// ------------------------------------------------------------------ Professional Write

bool is_professional_write_control(uint8_t character)
{
    return character <= formats::write::line_double || character == formats::write::record_mark ||
           character == form_feed || character == document_end;
}

} // namespace

bool write_can_store(uint8_t character)
{
    return (character & high_bit) == 0;
}

bool writing_assistant_can_store(uint8_t character)
{
    return stored_form(character) >= 0;
}

std::string encode_write_cell(const Cell &cell)
{
    if (cell.kind != CellKind::text) {
        return cell.bytes;
    }
    const uint8_t character = character_of(cell);
    const bool plain = cell.style == style_none && !is_write_control(character);
    return plain ? cell.bytes : pair(character | high_bit, cell.style);
}

// Characters of the upper half are always written as pairs. 0x80 to 0xBF do not need it, but
// the lookahead at a line end takes every byte of the upper half for the first of two.
std::string encode_writing_assistant_cell(const Cell &cell)
{
    const uint8_t character = character_of(cell);
    if (cell.kind != CellKind::text || character == space) {
        return cell.bytes; // a space has no pair, so it has no style
    }
    const auto stored = static_cast<uint8_t>(stored_form(character));
    if (cell.style == style_none && (stored & high_bit) == 0 && !is_write_control(stored)) {
        return {static_cast<char>(stored)};
    }
    return pair(stored | prefix_bits, cell.style | quarter_of(stored));
}

std::string encode_professional_write_cell(const Cell &cell)
{
    if (cell.kind != CellKind::text) {
        return cell.bytes;
    }
    const uint8_t character = character_of(cell);
    if ((character & high_bit) != 0) {
        return pair(character, cell.style | formats::write::professional_keeps_high_bit);
    }
    const bool plain = cell.style == style_none && !is_professional_write_control(character);
    return plain ? cell.bytes : pair(character | high_bit, cell.style);
}

} // namespace pfs_builder

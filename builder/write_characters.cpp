// In all three a styled character is a pair, its first byte with the high bit set, its second
// a set of attributes. They differ in what the high bit costs.
//
// PFS: WRITE takes the bit away again, so it has no character above 0x7F. Professional Write
// has a bit in the attribute byte that keeps it. IBM Writing Assistant has two bits there
// that choose a quarter of a set of characters, and that set is not the code page: a table
// leads from it to the code page, and a search of that table leads back.
// Tests: tests/builder/write_encoder_test.cpp, tests/builder/professional_write_encoder_test.cpp.
#include "builder/write_characters.h"
#include "builder/body_bytes.h"

#include <array>

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
    return character == body_form_feed || character == body_return || character == body_end;
}

// --------------------------------------------------------------- IBM Writing Assistant

// Characters of the set, `first` to `last`, that stand for those of the code page `added`
// further on.
struct Shift {
    uint8_t first;
    uint8_t last;
    uint8_t added;
};
constexpr std::array<Shift, 9> shifts = {{{0x0F, 0x11, 0xD5},
                                          {0x12, 0x15, 0xD9},
                                          {0x16, 0x19, 0xDA},
                                          {0x1A, 0x1E, 0xDC},
                                          {0x1F, 0x1F, 0xDF},
                                          {0xB0, 0xB1, 0x03},
                                          {0xB2, 0xB8, 0x0D},
                                          {0xB9, 0xBB, 0x20},
                                          {0xBC, 0xBF, 0x24}}};

constexpr uint8_t shifted(uint8_t stored)
{
    for (const Shift &shift : shifts) {
        if (stored >= shift.first && stored <= shift.last) {
            return static_cast<uint8_t>(stored + shift.added);
        }
    }
    return stored;
}
static_assert(shifted(0x1F) == 0xFE && shifted(0xB0) == 0xB3 && shifted(0xAF) == 0xAF);

// Which quarter the first byte's low six bits mean.
constexpr uint8_t quarter_low = 0x00;   // 0x00 to 0x3F, and 0xE0 for the byte 0xE0
constexpr uint8_t quarter_ascii = 0x10; // 0x40 to 0x7F
constexpr uint8_t quarter_high = 0x20;  // 0x80 to 0xBF
constexpr uint8_t quarters_end = 0xC0;

// The one character beyond the quarters. Its byte is the one that a styled space would have.
constexpr uint8_t alpha = 0xE0;

// The set's character for one of the code page, or -1.
constexpr int stored_form(uint8_t character)
{
    if (character == alpha) {
        return alpha;
    }
    for (int stored = 0; stored < quarters_end; ++stored) {
        if (shifted(static_cast<uint8_t>(stored)) == character) {
            return stored;
        }
    }
    return -1;
}
static_assert(stored_form(0xB3) == 0xB0 && stored_form(0xB0) == -1 && stored_form('A') == 'A');

uint8_t quarter_of(uint8_t stored)
{
    if (stored == alpha) {
        return quarter_low;
    }
    if ((stored & high_bit) != 0) {
        return quarter_high;
    }
    constexpr uint8_t upper_ascii_bit = 0x40;
    return (stored & upper_ascii_bit) != 0 ? quarter_ascii : quarter_low;
}

// ------------------------------------------------------------------ Professional Write

constexpr uint8_t keep_high_bit = 0x40; // of the attribute byte
constexpr uint8_t record_mark = 0x07;
constexpr uint8_t last_line_type = 0x03;

bool is_professional_write_control(uint8_t character)
{
    return character <= last_line_type || character == record_mark || character == body_form_feed ||
           character == body_end;
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

// Characters of the upper half are always written as pairs. Those of 0x80 to 0xBF need none,
// but the lookahead at a line's end takes every byte of the upper half for the first of two.
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
    return pair(stored | writing_assistant_pair, cell.style | quarter_of(stored));
}

std::string encode_professional_write_cell(const Cell &cell)
{
    if (cell.kind != CellKind::text) {
        return cell.bytes;
    }
    const uint8_t character = character_of(cell);
    if ((character & high_bit) != 0) {
        return pair(character, cell.style | keep_high_bit);
    }
    const bool plain = cell.style == style_none && !is_professional_write_control(character);
    return plain ? cell.bytes : pair(character | high_bit, cell.style);
}

} // namespace pfs_builder

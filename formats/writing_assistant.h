// The characters of IBM Writing Assistant. Its character set is not the other kinds': ranges
// of it stand elsewhere. A byte from 0xC0 up takes an attribute byte, two bits of which say
// which quarter of the set the low six bits of the byte choose from.
#pragma once

#include "formats/text.h"

#include <array>
#include <cstdint>

namespace formats::assistant {

inline constexpr uint8_t prefix_bits = 0xC0; // both: an attribute byte follows
inline constexpr uint8_t attribute_bits = 0x0F;

// Values of two bits of the attribute byte, and what is kept of the byte before it.
inline constexpr uint8_t select_bits = 0x30;
inline constexpr uint8_t select_low_quarter = 0x00;
inline constexpr uint8_t select_low_half = 0x10;
inline constexpr uint8_t select_high_half = 0x20;
inline constexpr uint8_t low_quarter_mask = 0x3F;
inline constexpr uint8_t low_half_mask = 0x7F;
inline constexpr uint8_t high_half_mask = 0xBF;

// Beyond the quarters: kept as it is where the low quarter is selected. Without this
// exception it would be a space.
inline constexpr uint8_t kept = 0xE0;

// Ranges of the set whose characters stand `added` further on in the other kinds'.
struct Shift {
    uint8_t first;
    uint8_t last;
    uint8_t added;
};
inline constexpr std::array<Shift, 9> shifts = {{{0x0F, 0x11, 0xD5},
                                                 {0x12, 0x15, 0xD9},
                                                 {0x16, 0x19, 0xDA},
                                                 {0x1A, 0x1E, 0xDC},
                                                 {0x1F, 0x1F, 0xDF},
                                                 {0xB0, 0xB1, 0x03},
                                                 {0xB2, 0xB8, 0x0D},
                                                 {0xB9, 0xBB, 0x20},
                                                 {0xBC, 0xBF, 0x24}}};

// By the character of this set, the character of the others'.
inline constexpr auto translation = [] {
    std::array<uint8_t, 256> table = {};
    for (unsigned byte = 0; byte < table.size(); ++byte) {
        table[byte] = static_cast<uint8_t>(byte);
    }
    for (const Shift &shift : shifts) {
        for (unsigned byte = shift.first; byte <= shift.last; ++byte) {
            table[byte] = static_cast<uint8_t>(byte + shift.added);
        }
    }
    return table;
}();
static_assert(translation[0x1F] == 0xFE && translation[0xB0] == 0xB3 && translation[0xAF] == 0xAF);

} // namespace formats::assistant

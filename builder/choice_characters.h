// Characters of a First Choice text, of either generation.
#pragma once

#include "builder/document.h"

namespace pfs_builder {

// Bits of the first attribute byte. Those of underline, bold and italic are Style's own.
inline constexpr uint8_t choice_keep_high_bit = 0x08;
inline constexpr uint8_t choice_more_follows = 0x40; // of every attribute byte

// Bits of the second.
inline constexpr uint8_t choice_second_subscript = 0x02;
inline constexpr uint8_t choice_second_superscript = 0x04;

std::string encode_choice_cell(const Cell &cell);

} // namespace pfs_builder

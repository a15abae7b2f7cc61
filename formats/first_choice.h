// PFS: First Choice. Words are of 16 bits, low byte first. Margins count columns from 1,
// rulers from 0.
#pragma once

#include "formats/text.h"

#include <array>
#include <cstdint>
#include <string_view>

namespace formats::choice {

// ---------------------------------------------------------------- the header --------

inline constexpr uint32_t left_margin_offset = 0; // a word
inline constexpr uint32_t right_margin_offset = 2;

inline constexpr uint32_t magic_offset = 9;
inline constexpr std::string_view magic = "GERBILDOC";
inline constexpr uint32_t generation_offset = 18;
inline constexpr char generation_2 = '2';
inline constexpr char generation_3 = '3';
inline constexpr int unused_after_generation = 2;

// A letter each; any other is left.
inline constexpr uint32_t header_alignment_offset = 356;
inline constexpr uint32_t footer_alignment_offset = 357;
inline constexpr char letter_centred = 'C';
inline constexpr char letter_right = 'R';

// Each text stands behind its length.
inline constexpr LineTable line_length_offsets = {28, 110, 192, 274};
inline constexpr LineTable line_text_sizes =
    room_for_texts(line_length_offsets, header_alignment_offset);

// Two letters each; any other is no style.
inline constexpr uint32_t footer_style_offset = 359;
inline constexpr uint32_t header_style_offset = 363;
inline constexpr int style_letters = 2;
inline constexpr char letter_underline = 'U';
inline constexpr char letter_bold = 'B';

// Generations 2 and 3 have a bit for each column, the lowest first; all others a byte.
inline constexpr uint32_t ruler_offset = 366;
inline constexpr int byte_ruler_columns = 99;
inline constexpr uint8_t byte_ruler_stop = 0x01;
inline constexpr int bit_ruler_bytes = 31;

inline constexpr uint32_t header_size = 512;

// ---------------------------------------------------------------- the text ----------

// Bits of a character's first attribute byte, beside those of the attributes.
inline constexpr uint8_t keep_high_bit = 0x08;
inline constexpr uint8_t more_attributes = 0x40;
// Bits of its second. They stand crosswise to those of the Write family.
inline constexpr uint8_t second_subscript = 0x02;
inline constexpr uint8_t second_superscript = 0x04;

// Before generation 3.
inline constexpr uint8_t line_end_single = 0x0C;
inline constexpr uint8_t line_end_double = 0x0D;

// ---------------------------------------------------------------- generation 3 ------

// Bits of the first header byte of a line. Text has the first, or neither of the first two.
inline constexpr uint8_t line_text = 0x10;
inline constexpr uint8_t line_special = 0x08; // a page break or a ruler
inline constexpr uint8_t line_ruler = 0x04;
// Of any header byte: another follows.
inline constexpr uint8_t line_more = 0x40;
// Of the second, if it is the last: the line ends its paragraph.
inline constexpr uint8_t line_hard_end = 0x01;
inline constexpr int hard_end_chain_length = 2;

// A ruler within the text: unused bytes, then a byte for each column.
inline constexpr int ruler_unused_bytes = 3;
inline constexpr uint8_t mark_tab_stop = 0x54;     // 'T'
inline constexpr uint8_t mark_left_margin = 0x5B;  // '['
inline constexpr uint8_t mark_right_margin = 0x5D; // ']'
// These take the byte behind them with them, and one column.
inline constexpr uint8_t prefix_low = 0xC2;
inline constexpr uint8_t prefix_high = 0xC5;

} // namespace formats::choice

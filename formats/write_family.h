// The Write family: PFS: WRITE, IBM Writing Assistant and Professional Write. Its kinds share
// the layout of the header, though none of them uses all of it.
//
// Words are of 16 bits, low byte first. Margins count columns from 1, rulers from 0.
#pragma once

#include "formats/text.h"

#include <array>
#include <cstdint>
#include <string_view>

namespace formats::write {

// ---------------------------------------------------------------- the header --------

inline constexpr uint32_t left_margin_offset = 10; // a word
inline constexpr uint32_t right_margin_offset = 12;

// A word for each entry: its low byte says what the entry is, the other table in which column.
inline constexpr uint32_t ruler_kinds_offset = 16;
inline constexpr uint32_t ruler_columns_offset = 172;
inline constexpr int ruler_entries = 78;
inline constexpr int ruler_entry_size = 2;
inline constexpr uint8_t ruler_tab_stop = 0x0F;
inline constexpr uint8_t ruler_decimal_stop = 0x10;

// Two of the signatures are those of both kinds of PFS: WRITE: a digit tells them apart.
inline constexpr uint32_t signature_offset = 641;
inline constexpr int signature_size = 6;
inline constexpr std::string_view signature_wrd_pc = "WRD PC";
inline constexpr std::string_view signature_type_2 = "TYPE 2";
inline constexpr std::string_view signature_writing_assistant = "IBM   ";
inline constexpr std::string_view signature_professional_1 = "TYPE 3";
inline constexpr std::string_view signature_professional_2 = "TYPE 4";
inline constexpr uint32_t variant_offset = 649;
inline constexpr char variant_a = '1';
inline constexpr char variant_b = '2';

// Each text stands behind its length.
inline constexpr LineTable line_length_offsets = {328, 402, 484, 558};
inline constexpr LineTable line_text_sizes = room_for_texts(line_length_offsets, signature_offset);

// Words; any other value of theirs is left too.
inline constexpr uint32_t header_alignment_offset = 822;
inline constexpr uint32_t footer_alignment_offset = 824;
inline constexpr uint8_t alignment_centred = 0;
inline constexpr uint8_t alignment_left = 1;
inline constexpr uint8_t alignment_right = 2;

// Professional Write only.
inline constexpr uint32_t header_attributes_offset = 828;
inline constexpr uint32_t footer_attributes_offset = 830;
inline constexpr uint32_t flag_offset = 836;

// The second version of it: two pairs of left and right margins, a byte each, without effect.
inline constexpr uint32_t further_margins_offset = 963;

// A form feed at or after this ends the header.
inline constexpr uint32_t header_size = 1024;

// Of the second version of Professional Write, which stores none. Counted from 1.
inline constexpr int fixed_left_margin = 10;
inline constexpr int fixed_right_margin = 70;

// ---------------------------------------------------------------- records -----------

// Mark, size with mark and size included, type, data. They follow the form feed or stand in
// the text. The size may be too small: so much is there all the same.
inline constexpr uint8_t record_mark = 0x07;
inline constexpr uint8_t record_margins = 1; // type: left and right margin, a byte each
inline constexpr int record_least_size = 3;
inline constexpr int record_margins_size = 5;

// ---------------------------------------------------------------- Professional Write --

// The first byte of a line, which ends the line before.
inline constexpr uint8_t line_continued = 0x00;
inline constexpr uint8_t line_single = 0x01;   // ends its paragraph
inline constexpr uint8_t line_suppress = 0x02; // continued; the rest may be hidden
inline constexpr uint8_t line_double = 0x03;   // ends its paragraph

// A bit of an attribute byte by which the character keeps its high bit.
inline constexpr uint8_t professional_keeps_high_bit = 0x40;

} // namespace formats::write

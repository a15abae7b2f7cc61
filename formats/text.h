// Bytes of the text that mean the same in all kinds of documents.
#pragma once

#include <array>
#include <cstdint>

namespace formats {

inline constexpr uint8_t tab = 0x09;
inline constexpr uint8_t form_feed = 0x0C;
inline constexpr uint8_t carriage_return = 0x0D;
inline constexpr uint8_t document_end = 0x0E;
inline constexpr uint8_t space = 0x20;
inline constexpr uint8_t asterisk = 0x2A; // may open a command

// A byte with the high bit may be followed by one or more attribute bytes.
inline constexpr uint8_t high_bit = 0x80;
inline constexpr uint8_t low_seven_bits = 0x7F;

// A character that has no glyph in the documents' character set; shown as a space.
inline constexpr uint8_t no_glyph = 0xFF;

// Bits of an attribute byte. The last two are the Write family's; First Choice has them in a
// second byte.
inline constexpr uint8_t underline = 0x01;
inline constexpr uint8_t bold = 0x02;
inline constexpr uint8_t italic = 0x04;
inline constexpr uint8_t superscript = 0x08;
inline constexpr uint8_t subscript = 0x10;

// What a file transfer has filled the last block with, behind the end of the document, and what
// formatting a diskette leaves in its sectors: CP/M's byte and that of the PC.
inline constexpr uint8_t transfer_fill = 0x1A;
inline constexpr uint8_t cpm_format_fill = 0xE5;
inline constexpr uint8_t pc_format_fill = 0xF6;

// Whether a byte behind the end of a document only fills a sector or a block.
constexpr bool is_fill(uint8_t byte)
{
    return byte == 0 || byte == transfer_fill || byte == cpm_format_fill || byte == pc_format_fill;
}

// The texts of a header have this order: header lines 1 and 2, footer lines 1 and 2.
inline constexpr int header_footer_lines = 4;
using LineTable = std::array<uint32_t, header_footer_lines>;

// The room for each text: it stands behind its length, a byte, and ends where the next length
// stands, or something else at `end`.
constexpr LineTable room_for_texts(const LineTable &length_offsets, uint32_t end)
{
    return {length_offsets[1] - length_offsets[0] - 1, length_offsets[2] - length_offsets[1] - 1,
            length_offsets[3] - length_offsets[2] - 1, end - length_offsets[3] - 1};
}

} // namespace formats

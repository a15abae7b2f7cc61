// The bytes that mean something within a document's text, by their names; which of them mean
// what is told where a kind is explained.
#pragma once

#include <cstdint>

namespace pfsdoc::explaining::body_bytes {

inline constexpr int32_t form_feed = 0x0C;
inline constexpr int32_t carriage_return = 0x0D;
inline constexpr int32_t document_end = 0x0E;
inline constexpr int32_t space = 0x20;
inline constexpr int32_t asterisk = 0x2A;
inline constexpr int32_t high_bit = 0x80;
inline constexpr int32_t low_seven_bits = 0x7F;
inline constexpr uint8_t no_picture = 0xFF; // shown as a space

// Attribute bytes of First Choice.
inline constexpr int32_t choice_more_attributes = 0x40;
inline constexpr int32_t choice_keeps_high_bit = 0x08;

// Professional Write.
inline constexpr int32_t professional_keeps_high_bit = 0x40;

// Records of the Write family.
inline constexpr int32_t record_mark = 0x07;

// Behind the end of a document, where a file transfer has filled the last block.
inline constexpr int32_t transfer_fill = 0x1A;

} // namespace pfsdoc::explaining::body_bytes

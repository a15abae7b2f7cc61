// How each kind stores a character of its text: the byte, and the attribute bytes behind it.
// What the attribute bytes switch on is left to the module's events; here it matters how many
// there are and which character they make of the byte.
// Test: tests/lib/explain/stored_characters_test.cpp, against the module.
#pragma once

#include "pfsdoc/identify.h"

#include <cstdint>

namespace pfsdoc::explaining {

struct StoredCharacter {
    uint8_t character = 0;
    uint32_t attribute_bytes = 0;
    bool complete = true; // the file does not end within it
};

// A character without attribute bytes that begins, and ends, with this byte; and whether it
// has any.
bool has_attribute_bytes(DocumentKind kind, int32_t byte);
uint8_t plain_character(DocumentKind kind, int32_t byte);
// What the first attribute byte makes of the byte before it.
uint8_t attributed_character(DocumentKind kind, int32_t byte, int32_t attribute);
// Whether a second attribute byte follows the first.
bool has_second_attribute_byte(DocumentKind kind, int32_t attribute);

// `byte_at` delivers the bytes behind the first, from 1 on; negative at the end of the file.
template <typename ByteAt>
StoredCharacter stored_character(DocumentKind kind, int32_t byte, ByteAt byte_at)
{
    if (!has_attribute_bytes(kind, byte)) {
        return {plain_character(kind, byte), 0, true};
    }
    const int32_t first = byte_at(1);
    if (first < 0) {
        return {0, 0, false};
    }
    const bool second = has_second_attribute_byte(kind, first);
    return {attributed_character(kind, byte, first), second ? 2U : 1U, !second || byte_at(2) >= 0};
}

} // namespace pfsdoc::explaining

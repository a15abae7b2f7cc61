// What the two First Choice readers share: the text of a line and the paragraph around it.
//
//   0x80-0xFF  a character with attributes: one attribute byte follows, or two where the
//              first has bit 0x40; bit 0x08 of the first keeps the character's high bit
//   others     a character
#pragma once

#include "line_text.h"

namespace vs_pfs {

inline constexpr uint8_t choice_keep_high_bit = 0x08;
inline constexpr uint8_t choice_more_attributes = 0x40;

// What one read call needs.
struct ChoiceReading {
    VwCharStream *stream;
    VwInstance *instance;
    int16_t firstLineSpaces; // leading spaces of the paragraph's first line
    bool paragraphStart;     // the current line begins a paragraph
};

// What one line needs.
struct ChoiceLine {
    int16_t column;
    int16_t leadingSpaces; // not reported
    bool atLineStart;      // nothing but spaces so far
    bool lastWasSpace;
};

ChoiceLine start_choice_line(const ChoiceReading &reading);

// Decodes and reports the character that begins with `byte`.
Progress read_choice_character(ChoiceReading &reading, ChoiceLine &line, uint8_t byte);

// Reports a paragraph's indents and its end, and begins the next one.
Progress end_choice_paragraph(ChoiceReading &reading, const ChoiceLine &line);

} // namespace vs_pfs

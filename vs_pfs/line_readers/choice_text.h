// What the two First Choice readers share: the text of a line and the paragraph around it.
//
//   0x80-0xFF  a character with attributes: one attribute byte follows, or two where the
//              first has bit 0x40; bit 0x08 of the first keeps the character's high bit
//   others     a character
#pragma once

#include "formats/first_choice.h"
#include "vs_pfs/line_readers/line_text.h"

namespace vs_pfs {

namespace choice = formats::choice;

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

// Decodes the character that begins with `byte`. False: the data ended inside it.
struct ChoiceDecoder {
    template <typename NextByte>
    bool operator()(uint8_t byte, Decoded &decoded, NextByte next_byte) const
    {
        decoded = {byte, 0};
        if ((byte & high_bit) == 0) {
            return true;
        }
        const int32_t first = next_byte();
        if (first == end_of_data) {
            return false;
        }
        const int32_t second = (first & choice::more_attributes) != 0 ? next_byte() : 0;
        if (second == end_of_data) {
            return false;
        }
        if ((first & choice::keep_high_bit) == 0) {
            decoded.character = byte & low_seven_bits;
        }
        SetAttr(static_cast<uint8_t>(first), static_cast<uint8_t>(second), attr_form_pair,
                &decoded.attributes, nullptr);
        return true;
    }
};

inline ChoiceLine start_choice_line(const ChoiceReading &reading)
{
    const auto left_margin = static_cast<int16_t>(reading.instance->state.saved.leftMargin);
    return {left_margin, 0, true, false};
}

inline void read_choice_space(ChoiceReading &reading, ChoiceLine &line)
{
    line.lastWasSpace = true;
    if (line.atLineStart) {
        advance_column(line.leadingSpaces);
        if (reading.paragraphStart) {
            advance_column(reading.firstLineSpaces);
        }
    } else {
        put_character(reading.instance, space);
    }
    advance_column(line.column);
}

// Reports the ordinary text that comes next.
inline void read_ordinary_text(ChoiceReading &reading, ChoiceLine &line)
{
    if (!text_follows(reading.stream, line.atLineStart)) {
        return;
    }
    const uint8_t last =
        put_ordinary_text(reading.stream, reading.instance, line.column, ChoiceDecoder());
    if (last != 0) {
        line.lastWasSpace = last == space;
        line.atLineStart = false;
    }
}

// Decodes and reports the character that begins with `byte`.
inline Progress read_choice_character(ChoiceReading &reading, ChoiceLine &line, uint8_t byte)
{
    Decoded decoded;
    if (!ChoiceDecoder()(byte, decoded, [&reading] { return VwCharGet(reading.stream); })) {
        return Progress::document_done;
    }
    check_attributes(decoded.attributes, reading.instance);
    if (decoded.character == space) {
        read_choice_space(reading, line);
    } else {
        line.lastWasSpace = false;
        line.atLineStart = false;
        put_text(reading.stream, decoded.character, line.column, reading.instance);
    }
    return Progress::go_on;
}

// Reports a paragraph's indents and its end, and begins the next one (choice_text.cpp).
Progress end_choice_paragraph(ChoiceReading &reading, const ChoiceLine &line);

} // namespace vs_pfs

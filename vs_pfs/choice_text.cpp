// The text and the paragraphs of First Choice lines.
// Tests: tests/module/choice_line_reader_test.cpp, choice3_line_reader_test.cpp.
#include "choice_text.h"

namespace vs_pfs {
namespace {

struct Decoded {
    uint8_t character;
    uint8_t attributes;
};

// False: the data ended inside the character.
bool decode(const ChoiceReading &reading, uint8_t byte, Decoded &decoded)
{
    decoded = {byte, 0};
    if ((byte & high_bit) == 0) {
        return true;
    }
    const int32_t first = VwCharGet(reading.stream);
    if (first == end_of_data) {
        return false;
    }
    const int32_t second = (first & choice_more_attributes) != 0 ? VwCharGet(reading.stream) : 0;
    if (second == end_of_data) {
        return false;
    }
    if ((first & choice_keep_high_bit) == 0) {
        decoded.character = byte & low_seven_bits;
    }
    SetAttr(static_cast<uint8_t>(first), static_cast<uint8_t>(second), attr_form_pair,
            &decoded.attributes, reading.instance);
    return true;
}

void read_space(ChoiceReading &reading, ChoiceLine &line)
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

} // namespace

ChoiceLine start_choice_line(const ChoiceReading &reading)
{
    const auto left_margin = static_cast<int16_t>(reading.instance->state.saved.leftMargin);
    return {left_margin, 0, true, false};
}

Progress read_choice_character(ChoiceReading &reading, ChoiceLine &line, uint8_t byte)
{
    Decoded decoded;
    if (!decode(reading, byte, decoded)) {
        return Progress::document_done;
    }
    check_attributes(decoded.attributes, reading.instance);
    if (decoded.character == space) {
        read_space(reading, line);
        return Progress::go_on;
    }
    line.lastWasSpace = false;
    line.atLineStart = false;
    put_text(reading.stream, decoded.character, line.column, reading.instance);
    return Progress::go_on;
}

Progress end_choice_paragraph(ChoiceReading &reading, const ChoiceLine &line)
{
    const bool indented = reading.firstLineSpaces > 0 || line.leadingSpaces > 0;
    if (indented) {
        put_indents(reading.instance, line.leadingSpaces, reading.firstLineSpaces);
    }
    if (put_paragraph_end(reading.instance)) {
        return Progress::host_stopped;
    }
    if (indented) {
        put_indents(reading.instance, 0, 0);
        reading.firstLineSpaces = 0;
    }
    reading.paragraphStart = true;
    return Progress::go_on;
}

} // namespace vs_pfs

// First Choice 3: a chain of header bytes before each line specifies its type and its line end.
#include "tests/model/parts.h"

namespace tests::model {

namespace {

constexpr uint8_t plain_text_bit = 0x10;
constexpr uint8_t layout_bit = 0x08;
constexpr uint8_t ruler_bit = 0x04;
constexpr uint8_t another_follows = 0x40;
constexpr uint8_t ends_paragraph = 0x01;

bool is_layout(uint8_t header)
{
    return (header & plain_text_bit) == 0 && (header & layout_bit) != 0;
}

bool is_ruler(uint8_t header)
{
    return is_layout(header) && (header & ruler_bit) != 0;
}

// The rest of the chain that begins with this header byte. Whether it marks a paragraph's end:
// two bytes by a 16-bit count, the last with the bit set.
bool read_chain(Model &model, uint8_t header)
{
    int16_t headerCount = 1;
    while ((header & another_follows) != 0) {
        header = model.text.next();
        count_up(headerCount);
    }
    return headerCount == 2 && (header & ends_paragraph) != 0;
}

void skip_page_break_line(Model &model)
{
    model.report(VW_SO_PAGE_BREAK, {4, 0});
    while (model.text.next() != carriage_return) {
    }
}

// Whether the host wants to stop.
bool end_hard(Model &model, const ChoiceLine &line, ChoiceParagraph &paragraph)
{
    const bool indented = paragraph.firstLineSpaces > 0 || line.leadingSpaces > 0;
    if (indented) {
        report_indents(model, line.leadingSpaces, paragraph.firstLineSpaces);
    }
    if (model.paragraph_end_stops()) {
        return true;
    }
    if (indented) {
        report_no_indents(model);
        paragraph.firstLineSpaces = 0;
    }
    paragraph.paragraphStart = true;
    return false;
}

// Whether the host wants to stop.
bool read_text(Model &model, bool hardEnd, ChoiceParagraph &paragraph)
{
    ChoiceLine line;
    line.column = model.saved.leftMargin;
    for (uint8_t byte = model.text.next(); byte != carriage_return; byte = model.text.next()) {
        if (byte == document_end) {
            throw EndOfDocument{};
        }
        report_choice_character(model, byte, line, paragraph);
    }
    paragraph.paragraphStart = false;
    if (hardEnd) {
        return end_hard(model, line, paragraph);
    }
    if (!line.lastWasSpace || line.atLineStart) {
        report_character(model, space);
    }
    return false;
}

// Whether the host wants to stop.
bool read_line(Model &model, ChoiceParagraph &paragraph)
{
    const uint8_t header = model.text.next();
    if (header == document_end) {
        throw EndOfDocument{};
    }
    if (is_ruler(header)) {
        Fc3GetRuler(model);
        return false;
    }
    const bool hardEnd = read_chain(model, header);
    if (is_layout(header)) {
        skip_page_break_line(model);
        return false;
    }
    return read_text(model, hardEnd, paragraph);
}

} // namespace

void read_choice3_line(Model &model)
{
    if (!announce_choice_read(model)) {
        return;
    }
    ChoiceParagraph paragraph;
    while (!read_line(model, paragraph)) {
    }
}

} // namespace tests::model

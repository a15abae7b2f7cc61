// First Choice documents before generation 3, and what they share with it.
#include "tests/model/parts.h"

namespace tests::model {

namespace {

constexpr uint8_t keeps_high_bit = 0x08;
constexpr uint8_t another_follows = 0x40;

ChoiceLine start_of_line(const Model &model)
{
    ChoiceLine line;
    line.column = model.saved.leftMargin;
    return line;
}

void read_space(Model &model, ChoiceLine &line, ChoiceParagraph &paragraph)
{
    line.lastWasSpace = true;
    if (!line.atLineStart) {
        report_character(model, space);
    } else {
        count_up(line.leadingSpaces);
        if (paragraph.paragraphStart) {
            count_up(paragraph.firstLineSpaces);
        }
    }
    count_up(line.column);
}

// How the lookahead reads a byte with the high bit. It follows a chain of attribute bytes to its
// end, where the reader takes at most two. -1 if the data stop within the chain.
int32_t prefixed_character_ahead(Model &model, int32_t byte)
{
    int32_t attribute = model.text.get();
    const int32_t character = (attribute & keeps_high_bit) == 0 ? byte & 0x7F : byte;
    while (attribute != -1 && (attribute & another_follows) != 0) {
        attribute = model.text.get();
    }
    return attribute == -1 ? -1 : character;
}

bool ends_lookahead(int32_t byte)
{
    return byte == -1 || byte == form_feed || byte == carriage_return || byte == document_end;
}

int16_t length_of_next_word(Model &model)
{
    int16_t wordLength = 0;
    bool leading = true;
    for (;;) {
        int32_t byte = model.text.get();
        if (ends_lookahead(byte)) {
            return wordLength;
        }
        if ((byte & prefixed) != 0) {
            byte = prefixed_character_ahead(model, byte);
        }
        if (byte == -1 || (byte == space && !leading)) {
            return wordLength;
        }
        if (byte != space) {
            leading = false;
            count_up(wordLength);
        }
    }
}

void FcDetermineEnder(Model &model, int16_t column, bool &endsHere)
{
    const uint32_t here = model.text.tell();
    const int16_t wordLength = length_of_next_word(model);
    model.text.seek(here);
    if (column + wordLength > model.saved.rightMargin && wordLength != 0) {
        endsHere = false;
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
    }
    paragraph = ChoiceParagraph{};
    return false;
}

// Whether the host wants to stop.
bool end_line(Model &model, uint8_t byte, ChoiceLine &line, ChoiceParagraph &paragraph)
{
    if (byte == carriage_return) {
        report_double_spacing(model);
    } else {
        report_single_spacing(model);
    }
    bool endsHere = true;
    if (line.column != line.leadingSpaces) {
        FcDetermineEnder(model, line.column, endsHere);
    }
    if (endsHere) {
        if (end_hard(model, line, paragraph)) {
            return true;
        }
    } else {
        if (!line.lastWasSpace) {
            report_character(model, space);
        }
        paragraph.paragraphStart = false;
    }
    line = start_of_line(model);
    return false;
}

} // namespace

ChoiceCharacter choice_character(Model &model, uint8_t stored)
{
    ChoiceCharacter result{stored, 0};
    if ((stored & prefixed) != 0) {
        const uint8_t first = model.text.next();
        const uint8_t second = (first & another_follows) != 0 ? model.text.next() : uint8_t{0};
        if ((first & keeps_high_bit) == 0) {
            result.character &= 0x7F;
        }
        SetAttr(first, second, PairForm::choice, result.attributes);
    }
    return result;
}

void report_choice_character(Model &model, uint8_t stored, ChoiceLine &line,
                             ChoiceParagraph &paragraph)
{
    const auto [character, attributes] = choice_character(model, stored);
    check_attributes(model, attributes);
    if (character == space) {
        read_space(model, line, paragraph);
        return;
    }
    line.lastWasSpace = false;
    line.atLineStart = false;
    if (character == star && PfsTextCommand(model, line.column)) {
        return;
    }
    report_character(model, character == blank_byte ? space : character);
    count_up(line.column);
}

bool announce_choice_read(Model &model)
{
    PutAttributes(model);
    report_margins(model);
    if (!report_pending_headers(model)) {
        return false;
    }
    report_line_defaults(model);
    return true;
}

void read_choice_line(Model &model)
{
    if (!announce_choice_read(model)) {
        return;
    }
    ChoiceParagraph paragraph;
    ChoiceLine line = start_of_line(model);
    for (;;) {
        const uint8_t byte = model.text.next();
        if (byte == document_end) {
            throw EndOfDocument{};
        }
        if (byte != form_feed && byte != carriage_return) {
            report_choice_character(model, byte, line, paragraph);
        } else if (end_line(model, byte, line, paragraph)) {
            return;
        }
    }
}

} // namespace tests::model

// The older Write documents. All line ends are the same; only the length of the next line's first
// word shows whether one is soft or hard.
#include "tests/model/parts.h"

namespace tests::model {

namespace {

constexpr uint8_t assistant_type = 3;

struct Line {
    int16_t column = 0;
    int16_t leadingSpaces = 0;
    bool atLineStart = true;
    bool lineBlank = true;
    bool lastWasSpace = false;
    bool hardEnd = true;
};

struct Paragraph {
    int16_t firstLineIndent = 0;
    bool afterHardEnd = true;
};

Line start_of_line(const Model &model)
{
    Line line;
    line.column = model.saved.leftMargin;
    return line;
}

struct Translation {
    uint8_t first;
    uint8_t last;
    uint8_t added;
};
constexpr std::array<Translation, 9> translations{{{0x0F, 0x11, 0xD5},
                                                   {0x12, 0x15, 0xD9},
                                                   {0x16, 0x19, 0xDA},
                                                   {0x1A, 0x1E, 0xDC},
                                                   {0x1F, 0x1F, 0xDF},
                                                   {0xB0, 0xB1, 0x03},
                                                   {0xB2, 0xB8, 0x0D},
                                                   {0xB9, 0xBB, 0x20},
                                                   {0xBC, 0xBF, 0x24}}};

uint8_t translated(uint8_t byte)
{
    for (const Translation &range : translations) {
        if (byte >= range.first && byte <= range.last) {
            return static_cast<uint8_t>(byte + range.added);
        }
    }
    return byte;
}

uint8_t assistant_character(Model &model, uint8_t byte, uint8_t &attributes)
{
    if ((byte & 0xC0) == 0xC0) {
        const uint8_t attribute = model.text.next();
        SetAttr(attribute & 0x0F, 0, PairForm::write, attributes);
        switch (attribute & 0x30) {
        case 0x10: byte &= 0x7F; break;
        case 0x20: byte &= 0xBF; break;
        default: byte = byte == 0xE0 ? byte : byte & 0x3F; break;
        }
    }
    return translated(byte);
}

uint8_t write_character(Model &model, uint8_t byte, uint8_t &attributes)
{
    if ((byte & prefixed) != 0) {
        byte &= 0x7F;
        SetAttr(model.text.next(), 0, PairForm::write, attributes);
    }
    return byte;
}

void read_space(Model &model, Line &line, Paragraph &paragraph)
{
    line.lastWasSpace = true;
    if (!line.atLineStart) {
        report_character(model, space);
    } else {
        count_up(line.leadingSpaces);
        if (paragraph.afterHardEnd) {
            count_up(paragraph.firstLineIndent);
        }
    }
    count_up(line.column);
}

void read_character(Model &model, uint8_t stored, Line &line, Paragraph &paragraph)
{
    uint8_t attributes = 0;
    const uint8_t byte = model.opened.formatType == assistant_type
                             ? assistant_character(model, stored, attributes)
                             : write_character(model, stored, attributes);
    check_attributes(model, attributes);
    if (byte == space) {
        read_space(model, line, paragraph);
        return;
    }
    line.lastWasSpace = false;
    line.atLineStart = false;
    line.lineBlank = false;
    if (byte == star && PfsTextCommand(model, line.column)) {
        return;
    }
    report_character(model, byte == blank_byte ? space : byte);
    count_up(line.column);
}

// Reads every byte from 0x80 as the first of a pair, in all documents, and counts a pair as one
// character even if the data stop within it.
void PfsDetermineEnder(Model &model, int16_t column, bool &hardEnd)
{
    const uint32_t here = model.text.tell();
    bool inLeadingBlanks = true;
    int16_t wordLength = 0;
    for (;;) {
        const int32_t byte = model.text.get();
        if (byte == carriage_return || byte == document_end || byte == -1) {
            break;
        }
        if ((byte & prefixed) != 0) {
            model.text.get();
        }
        if (byte == space) {
            if (!inLeadingBlanks) {
                break;
            }
            continue;
        }
        inLeadingBlanks = false;
        count_up(wordLength);
    }
    model.text.seek(here);
    if (wordLength != 0 && column + wordLength > model.saved.rightMargin) {
        hardEnd = false;
    }
}

// Whether the host wants to stop.
bool end_hard(Model &model, Line &line, Paragraph &paragraph)
{
    if (line.lineBlank) {
        paragraph.firstLineIndent = 0;
        line.leadingSpaces = 0;
    }
    const bool indented = paragraph.firstLineIndent > 0 || line.leadingSpaces > 0;
    if (indented) {
        report_indents(model, line.leadingSpaces, paragraph.firstLineIndent);
    }
    if (model.paragraph_end_stops()) {
        return true;
    }
    if (indented) {
        report_no_indents(model);
        paragraph.firstLineIndent = 0;
    }
    paragraph.afterHardEnd = true;
    return false;
}

void end_soft(Model &model, const Line &line, Paragraph &paragraph)
{
    if (!line.lastWasSpace) {
        report_character(model, space);
    }
    paragraph.afterHardEnd = false;
}

// Whether the host wants to stop.
bool end_line(Model &model, Line &line, Paragraph &paragraph)
{
    if (model.saved.skipFirstReturn != 0) {
        model.saved.skipFirstReturn = 0;
        return false;
    }
    if (line.atLineStart) {
        report_leading_spaces(model, line.leadingSpaces);
        line.column = line.leadingSpaces;
        line.leadingSpaces = 0;
        line.atLineStart = false;
    }
    if (line.column != line.leadingSpaces) {
        PfsDetermineEnder(model, line.column, line.hardEnd);
    }
    if (!line.hardEnd) {
        end_soft(model, line, paragraph);
    } else if (end_hard(model, line, paragraph)) {
        return true;
    }
    line = start_of_line(model);
    return false;
}

} // namespace

void read_pfs_line(Model &model)
{
    Paragraph paragraph;
    PutAttributes(model);
    report_margins(model);
    if (!report_pending_headers(model)) {
        return;
    }
    report_line_defaults(model);
    Line line = start_of_line(model);
    for (;;) {
        const uint8_t byte = model.text.next();
        if (byte == form_feed) {
            continue;
        }
        if (byte == document_end) {
            throw EndOfDocument{};
        }
        if (byte != carriage_return) {
            read_character(model, byte, line, paragraph);
        } else if (end_line(model, line, paragraph)) {
            return;
        }
    }
}

} // namespace tests::model

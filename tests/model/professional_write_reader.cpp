// The Professional Write documents. A line begins with a type byte, which also ends the line
// before.
#include "tests/model/parts.h"

namespace tests::model {

namespace {

constexpr uint8_t type_soft = 0x00;
constexpr uint8_t type_single = 0x01;
constexpr uint8_t type_toggle = 0x02;
constexpr uint8_t type_double = 0x03;
constexpr uint8_t keeps_high_bit = 0x40;

constexpr uint8_t suppression_open = 1;
constexpr uint8_t suppressed = 2;

enum class LineStart {
    text_seen,
    only_spaces,
    record_seen, // only spaces so far, but after a record, where they are text
};

struct Line {
    int16_t column = 0;
    int16_t leadingSpaces = 0;
    LineStart atLineStart = LineStart::only_spaces;
    bool lineBlank = true;
    bool hardEnd = false;
    bool lineDone = false;
};

struct Paragraph {
    int16_t firstLineIndent = 0;
    bool afterHardEnd = true;
};

void read_line_type(Model &model, Line &line)
{
    uint8_t &flag = model.saved.pwReaderFlag;
    switch (model.text.next()) {
    case type_soft: flag = 0; break;
    case type_single:
        report_single_spacing(model);
        flag = 0;
        line.hardEnd = true;
        break;
    case type_toggle: flag = flag == suppression_open ? suppressed : suppression_open; break;
    case type_double:
        report_double_spacing(model);
        flag = 0;
        line.hardEnd = true;
        break;
    default: model.text.put_back(); break;
    }
}

void read_space(Model &model, Line &line, Paragraph &paragraph)
{
    if (line.atLineStart != LineStart::only_spaces) {
        report_character(model, space);
    } else {
        count_up(line.leadingSpaces);
        if (paragraph.afterHardEnd) {
            count_up(paragraph.firstLineIndent);
        }
    }
    count_up(line.column);
}

void read_character(Model &model, uint8_t byte, Line &line, Paragraph &paragraph)
{
    uint8_t attributes = 0;
    if ((byte & prefixed) != 0) {
        const uint8_t attribute = model.text.next();
        if ((attribute & keeps_high_bit) == 0) {
            byte &= 0x7F;
        }
        SetAttr(attribute, 0, PairForm::write, attributes);
    }
    check_attributes(model, attributes);
    if (model.saved.pwReaderFlag >= suppressed) {
        return;
    }
    if (byte == space) {
        read_space(model, line, paragraph);
        return;
    }
    line.atLineStart = LineStart::text_seen;
    line.lineBlank = false;
    if (byte == star && PfsTextCommand(model, line.column)) {
        return;
    }
    report_character(model, byte == blank_byte ? space : byte);
    count_up(line.column);
}

void put_back_and_end(Model &model, Line &line)
{
    model.text.put_back();
    line.lineDone = true;
}

// A type byte within a line: ends it, or begins a hidden stretch.
void read_toggle(Model &model, Line &line)
{
    if (model.saved.pwReaderFlag == suppression_open) {
        model.saved.pwReaderFlag = suppressed;
    } else {
        put_back_and_end(model, line);
    }
}

void read_byte(Model &model, Line &line, Paragraph &paragraph)
{
    const uint8_t byte = model.text.next();
    switch (byte) {
    case type_soft: put_back_and_end(model, line); break;
    case type_single:
        report_single_spacing(model);
        put_back_and_end(model, line);
        break;
    case type_toggle: read_toggle(model, line); break;
    case type_double:
        report_double_spacing(model);
        read_toggle(model, line);
        break;
    case record_mark:
        MarginsFontRecord(model);
        if (line.atLineStart == LineStart::only_spaces) {
            line.atLineStart = LineStart::record_seen;
        }
        break;
    case form_feed: break;
    case document_end: throw EndOfDocument{};
    default: read_character(model, byte, line, paragraph); break;
    }
}

// Whether the host wants to stop.
bool end_paragraph(Model &model, Line &line, Paragraph &paragraph)
{
    if (line.lineBlank) {
        line.leadingSpaces = 0;
        paragraph.firstLineIndent = 0;
    }
    if (paragraph.firstLineIndent > 0 || line.leadingSpaces > 0 ||
        line.leadingSpaces != model.saved.pwReaderWord) {
        report_indents(model, line.leadingSpaces, paragraph.firstLineIndent);
        model.saved.pwReaderWord = line.leadingSpaces;
    }
    if (model.paragraph_end_stops()) {
        return true;
    }
    paragraph.afterHardEnd = true;
    paragraph.firstLineIndent = 0;
    return false;
}

// Whether the host wants to stop.
bool end_line(Model &model, Line &line, Paragraph &paragraph)
{
    if (line.atLineStart != LineStart::text_seen) {
        report_leading_spaces(model, line.leadingSpaces);
        line.leadingSpaces = 0;
        line.atLineStart = LineStart::text_seen;
        line.hardEnd = true;
    }
    if (!line.hardEnd && !line.lineBlank) {
        report_character(model, space);
    }
    if (paragraph.afterHardEnd && line.lineBlank) {
        paragraph.firstLineIndent = 0;
    }
    paragraph.afterHardEnd = false;
    return line.hardEnd && end_paragraph(model, line, paragraph);
}

} // namespace

void read_pfs_12_line(Model &model)
{
    Paragraph paragraph;
    report_margins(model);
    PutAttributes(model);
    if (!report_pending_headers(model)) {
        return;
    }
    report_line_defaults(model);
    for (bool stopped = false; !stopped;) {
        Line line;
        line.column = model.saved.leftMargin;
        read_line_type(model, line);
        while (!line.lineDone) {
            read_byte(model, line, paragraph);
        }
        stopped = end_line(model, line, paragraph);
    }
}

} // namespace tests::model

// The text of Professional Write documents (format types 4 and 5).
//
// Each line begins with a type byte, and the next line's type byte is what ends it:
//
//   0x00  goes on in the next line       0x01  ends its paragraph, single spacing
//   0x02  goes on, may be suppressed     0x03  ends its paragraph, double spacing
//   other: no type byte at all, but text
//
// So there is no lookahead. The byte that ends a line is put back and read again as the
// type of the next, and so reports its spacing twice: see "spacing reported twice" in
// docs/quirks.md. Within a line 0x02 and 0x03 may turn on suppression (pwReaderFlag), under
// which characters are read but not reported. 0x07 begins a margin record, 0x0C is passed
// over, 0x0D is a character like any other.
// Test: tests/module/professional_write_line_reader_test.cpp.
#include "formats/write_family.h"
#include "vs_pfs/document_headers.h"
#include "vs_pfs/line_readers.h"
#include "vs_pfs/line_readers/line_text.h"

namespace vs_pfs {
namespace {

using namespace formats::write;

// Values of pwReaderFlag. What is above 2, as in a saved state from elsewhere, suppresses.
constexpr uint8_t suppress_off = 0;
constexpr uint8_t suppress_next = 1;
constexpr uint8_t suppress_on = 2;

// What one read call needs.
struct Reading {
    VwCharStream *stream;
    VwInstance *instance;
    int16_t firstLineIndent;
    bool afterHardEnd;
};

enum class LineStart {
    over,        // text has been seen
    indent,      // nothing but spaces so far: they count as indent
    after_record // the same, but a record has been met: spaces are reported
};

// What one line needs.
struct Line {
    int16_t column;
    int16_t leadingSpaces;
    LineStart atLineStart;
    bool lineBlank;
    bool hardEnd;
};

enum class LineProgress { goes_on, done, document_done };

uint8_t &reader_flag(const Reading &reading)
{
    return reading.instance->state.saved.pwReaderFlag;
}

Line start_line(const Reading &reading)
{
    reading.instance->state.stream = reading.stream;
    const auto left_margin = static_cast<int16_t>(reading.instance->state.saved.leftMargin);
    return {left_margin, 0, LineStart::indent, true, false};
}

// A line that ends its paragraph and says its spacing.
void start_paragraph_line(const Reading &reading, Line &line, int32_t spacing)
{
    put_line_spacing(reading.instance, spacing);
    reader_flag(reading) = suppress_off;
    line.hardEnd = true;
}

LineProgress read_line_type(const Reading &reading, Line &line)
{
    uint8_t &flag = reader_flag(reading);
    switch (VwCharGet(reading.stream)) {
    case line_continued: flag = suppress_off; break;
    case line_single: start_paragraph_line(reading, line, VW_SINGLE_SPACING); break;
    case line_suppress: flag = flag == suppress_next ? suppress_on : suppress_next; break;
    case line_double: start_paragraph_line(reading, line, VW_DOUBLE_SPACING); break;
    case end_of_data: return LineProgress::document_done;
    default: VwCharUnget(reading.stream);
    }
    return LineProgress::goes_on;
}

LineProgress end_line_before(const Reading &reading)
{
    VwCharUnget(reading.stream);
    return LineProgress::done;
}

// 0x02 and 0x03 within a line: the second of a pair turns suppression on instead.
LineProgress suppress_or_end_line(const Reading &reading)
{
    if (reader_flag(reading) == suppress_next) {
        reader_flag(reading) = suppress_on;
        return LineProgress::goes_on;
    }
    return end_line_before(reading);
}

LineProgress read_record(const Reading &reading, Line &line)
{
    MarginsFontRecord(reading.instance);
    if (line.atLineStart == LineStart::indent) {
        line.atLineStart = LineStart::after_record;
    }
    return LineProgress::goes_on;
}

void read_space(Reading &reading, Line &line)
{
    if (line.atLineStart == LineStart::indent) {
        advance_column(line.leadingSpaces);
        if (reading.afterHardEnd) {
            advance_column(reading.firstLineIndent);
        }
    } else {
        put_character(reading.instance, space);
    }
    advance_column(line.column);
}

// False: the data ended inside the character.
struct ProfessionalWriteDecoder {
    template <typename NextByte>
    bool operator()(uint8_t byte, Decoded &decoded, NextByte next_byte) const
    {
        decoded = {byte, 0};
        if ((byte & high_bit) == 0) {
            return true;
        }
        const int32_t attribute = next_byte();
        if (attribute == end_of_data) {
            return false;
        }
        if ((attribute & professional_keeps_high_bit) == 0) {
            decoded.character = byte & low_seven_bits;
        }
        SetAttr(static_cast<uint8_t>(attribute), 0, attr_form_plain, &decoded.attributes, nullptr);
        return true;
    }
};

LineProgress read_character(Reading &reading, Line &line, uint8_t byte)
{
    constexpr ProfessionalWriteDecoder decode;
    Decoded decoded;
    if (!decode(byte, decoded, [&reading] { return VwCharGet(reading.stream); })) {
        return LineProgress::document_done;
    }
    check_attributes(decoded.attributes, reading.instance);
    if (reader_flag(reading) >= suppress_on) {
        return LineProgress::goes_on;
    }
    if (decoded.character == space) {
        read_space(reading, line);
    } else {
        line.atLineStart = LineStart::over;
        line.lineBlank = false;
        put_text(reading.stream, decoded.character, line.column, reading.instance);
    }
    return LineProgress::goes_on;
}

void read_ordinary_text(Reading &reading, Line &line)
{
    const bool spaces_are_indent = line.atLineStart != LineStart::over;
    if (reader_flag(reading) >= suppress_on || !text_follows(reading.stream, spaces_are_indent)) {
        return;
    }
    if (put_ordinary_text(reading.stream, reading.instance, line.column,
                          ProfessionalWriteDecoder()) != 0) {
        line.atLineStart = LineStart::over;
        line.lineBlank = false;
    }
}

LineProgress read_byte(Reading &reading, Line &line)
{
    read_ordinary_text(reading, line);
    const int32_t byte = VwCharGet(reading.stream);
    switch (byte) {
    case line_continued: return end_line_before(reading);
    case line_single:
        put_line_spacing(reading.instance, VW_SINGLE_SPACING);
        return end_line_before(reading);
    case line_suppress: return suppress_or_end_line(reading);
    case line_double:
        put_line_spacing(reading.instance, VW_DOUBLE_SPACING);
        return suppress_or_end_line(reading);
    case record_mark: return read_record(reading, line);
    case formats::form_feed: return LineProgress::goes_on;
    case document_end:
    case end_of_data: return LineProgress::document_done;
    default: return read_character(reading, line, static_cast<uint8_t>(byte));
    }
}

// A line without text always ends its paragraph; its spaces are reported after all.
void put_blank_line(const Reading &reading, Line &line)
{
    for (int i = 0; i < line.leadingSpaces; ++i) {
        put_special_character(reading.instance, space);
    }
    line.leadingSpaces = 0;
    line.atLineStart = LineStart::over;
    line.hardEnd = true;
}

// A left indent is reported when it differs from the last one, so that a paragraph without
// indents undoes those of the one before. There is no reset after the break.
void put_paragraph_indents(const Reading &reading, const Line &line)
{
    int16_t &reported = reading.instance->state.saved.pwReaderWord;
    if (reading.firstLineIndent > 0 || line.leadingSpaces > 0 || line.leadingSpaces != reported) {
        put_indents(reading.instance, line.leadingSpaces, reading.firstLineIndent);
        reported = line.leadingSpaces;
    }
}

Progress end_paragraph(Reading &reading, Line &line)
{
    if (line.lineBlank) {
        line.leadingSpaces = 0;
        reading.firstLineIndent = 0;
    }
    put_paragraph_indents(reading, line);
    if (put_paragraph_end(reading.instance)) {
        return Progress::host_stopped;
    }
    reading.afterHardEnd = true;
    reading.firstLineIndent = 0;
    return Progress::go_on;
}

Progress end_line(Reading &reading, Line &line)
{
    if (line.atLineStart != LineStart::over) {
        put_blank_line(reading, line);
    }
    // A line of spaces has a hard end by now, so the second half never decides alone.
    if (!line.hardEnd && !line.lineBlank) {
        put_character(reading.instance, space);
    }
    if (reading.afterHardEnd && line.lineBlank) {
        reading.firstLineIndent = 0;
    }
    reading.afterHardEnd = false;
    return line.hardEnd ? end_paragraph(reading, line) : Progress::go_on;
}

Progress read_line(Reading &reading)
{
    Line line = start_line(reading);
    LineProgress progress = read_line_type(reading, line);
    while (progress == LineProgress::goes_on) {
        progress = read_byte(reading, line);
    }
    return progress == LineProgress::done ? end_line(reading, line) : Progress::document_done;
}

} // namespace

int32_t read_pfs_12_line(VwCharStream *stream, VwInstance *instance)
{
    if (!start_call_margins_first(stream, instance)) {
        return 0;
    }
    Reading reading = {stream, instance, 0, true};
    Progress progress = Progress::go_on;
    while (progress == Progress::go_on) {
        progress = read_line(reading);
    }
    return end_call(progress, instance);
}

} // namespace vs_pfs

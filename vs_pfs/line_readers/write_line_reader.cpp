// The text of PFS: WRITE and IBM Writing Assistant documents (format types 1 to 3).
//
//   0x0C       passed over
//   0x0D       line end, of wrapped and of finished lines alike
//   0x0E       end of the document
//   others     a character without attributes, or with:
//
//   types 1 and 2   0x80-0xFF: the character is the low seven bits; an attribute byte follows
//   type 3          0xC0-0xFF: an attribute byte follows, two bits of which say what is to
//                   be taken off; the result, like every other byte, is then translated
//
// The file stores the page's lines. At each line end the reader asks whether the next
// line's first word would still have fitted. If so the author ended the line, and with it
// the paragraph; if not the word processor wrapped it, and one space joins the two. Leading
// spaces are not reported: they become the paragraph's indents.
// Test: tests/module/write_line_reader_test.cpp.
#include "formats/writing_assistant.h"
#include "vs_pfs/document_headers.h"
#include "vs_pfs/line_readers.h"
#include "vs_pfs/line_readers/word_lookahead.h"

namespace vs_pfs {
namespace {

namespace assistant = formats::assistant;

constexpr uint8_t line_end = formats::carriage_return;

// Decodes the character that begins with `byte`. False: the data ended inside it.
struct WriteDecoder {
    template <typename NextByte>
    bool operator()(uint8_t byte, Decoded &decoded, NextByte next_byte) const
    {
        decoded = {byte, 0};
        if ((byte & high_bit) == 0) {
            return true;
        }
        const int32_t attribute = next_byte();
        decoded.character = byte & low_seven_bits;
        SetAttr(static_cast<uint8_t>(attribute), 0, attr_form_plain, &decoded.attributes, nullptr);
        return attribute != end_of_data;
    }
};

// What the attribute byte makes of a prefixed byte of type 3.
constexpr uint8_t select_range(uint8_t byte, int32_t attribute)
{
    switch (attribute & assistant::select_bits) {
    case assistant::select_low_half: return byte & assistant::low_half_mask;
    case assistant::select_high_half: return byte & assistant::high_half_mask;
    default: return byte == assistant::kept ? byte : byte & assistant::low_quarter_mask;
    }
}

// The same as WriteDecoder for type 3.
struct WritingAssistantDecoder {
    template <typename NextByte>
    bool operator()(uint8_t byte, Decoded &decoded, NextByte next_byte) const
    {
        decoded = {assistant::translation[byte], 0};
        if ((byte & assistant::prefix_bits) != assistant::prefix_bits) {
            return true;
        }
        const int32_t attribute = next_byte();
        decoded.character = assistant::translation[select_range(byte, attribute)];
        SetAttr(attribute & assistant::attribute_bits, 0, attr_form_plain, &decoded.attributes,
                nullptr);
        return attribute != end_of_data;
    }
};

// What one read call needs.
struct Reading {
    VwCharStream *stream;
    VwInstance *instance;
    int16_t firstLineIndent; // leading spaces of the paragraph's first line
    bool afterHardEnd;       // the current line begins a paragraph
};

// What one line needs.
struct Line {
    int16_t column;        // of the next character
    int16_t leadingSpaces; // not reported
    bool atLineStart;      // nothing but spaces so far
    bool lineBlank;        // the same, and still so when those spaces have been reported
    bool lastWasSpace;
};

Line start_line(const Reading &reading)
{
    const auto left_margin = static_cast<int16_t>(reading.instance->state.saved.leftMargin);
    return {left_margin, 0, true, true, false};
}

void read_space(Reading &reading, Line &line)
{
    line.lastWasSpace = true;
    if (line.atLineStart) {
        advance_column(line.leadingSpaces);
        if (reading.afterHardEnd) {
            advance_column(reading.firstLineIndent);
        }
    } else {
        put_character(reading.instance, space);
    }
    advance_column(line.column);
}

template <typename Decode>
Progress read_character(Reading &reading, Line &line, uint8_t byte, Decode decode)
{
    Decoded decoded;
    if (!decode(byte, decoded, [&reading] { return VwCharGet(reading.stream); })) {
        return Progress::document_done;
    }
    check_attributes(decoded.attributes, reading.instance);
    if (decoded.character == space) {
        read_space(reading, line);
    } else {
        line.lastWasSpace = false;
        line.atLineStart = false;
        line.lineBlank = false;
        put_text(reading.stream, decoded.character, line.column, reading.instance);
    }
    return Progress::go_on;
}

// The spaces of a line that holds nothing else are reported after all, as special ones.
// The column becomes their number, without the margin.
void put_blank_line(const Reading &reading, Line &line)
{
    for (int i = 0; i < line.leadingSpaces; ++i) {
        put_special_character(reading.instance, space);
    }
    line.column = line.leadingSpaces;
    line.leadingSpaces = 0;
    line.atLineStart = false;
}

Progress end_paragraph(Reading &reading, Line &line)
{
    if (line.lineBlank) {
        reading.firstLineIndent = 0;
        line.leadingSpaces = 0;
    }
    const bool indented = reading.firstLineIndent > 0 || line.leadingSpaces > 0;
    if (indented) {
        put_indents(reading.instance, line.leadingSpaces, reading.firstLineIndent);
    }
    if (put_paragraph_end(reading.instance)) {
        return Progress::host_stopped;
    }
    if (indented) {
        put_indents(reading.instance, 0, 0);
        reading.firstLineIndent = 0;
    }
    reading.afterHardEnd = true;
    return Progress::go_on;
}

void join_lines(Reading &reading, const Line &line)
{
    if (!line.lastWasSpace) {
        put_character(reading.instance, space);
    }
    reading.afterHardEnd = false;
}

Progress end_line(Reading &reading, Line &line)
{
    uint8_t &skip_first_return = reading.instance->state.saved.skipFirstReturn;
    if (skip_first_return != 0) {
        skip_first_return = 0;
        return Progress::go_on;
    }
    if (line.atLineStart) {
        put_blank_line(reading, line);
    }
    uint16_t hardEnd = 1;
    if (line.column != line.leadingSpaces) {
        PfsDetermineEnder(reading.stream, line.column, &hardEnd, reading.instance);
    }
    Progress progress = Progress::go_on;
    if (hardEnd != 0) {
        progress = end_paragraph(reading, line);
    } else {
        join_lines(reading, line);
    }
    line = start_line(reading);
    return progress;
}

template <typename Decode> void read_ordinary_text(Reading &reading, Line &line, Decode decode)
{
    if (!text_follows(reading.stream, line.atLineStart)) {
        return;
    }
    const uint8_t last = put_ordinary_text(reading.stream, reading.instance, line.column, decode);
    if (last != 0) {
        line.lastWasSpace = last == space;
        line.atLineStart = false;
        line.lineBlank = false;
    }
}

template <typename Decode> Progress read_byte(Reading &reading, Line &line, Decode decode)
{
    read_ordinary_text(reading, line, decode);
    const int32_t byte = VwCharGet(reading.stream);
    switch (byte) {
    case formats::form_feed: return Progress::go_on;
    case line_end: return end_line(reading, line);
    case document_end:
    case end_of_data: return Progress::document_done;
    default: return read_character(reading, line, static_cast<uint8_t>(byte), decode);
    }
}

template <typename Decode> Progress read_lines(Reading &reading, Decode decode)
{
    Line line = start_line(reading);
    Progress progress = Progress::go_on;
    while (progress == Progress::go_on) {
        progress = read_byte(reading, line, decode);
    }
    return progress;
}

// Any byte from 0x80 up takes an attribute byte with it, also in type 3, whose reader does
// so from 0xC0 only: see "lookahead pairs" in docs/quirks.md.
struct ReadWriteToken {
    static constexpr bool stops(int32_t byte)
    {
        return byte == line_end || byte == document_end || byte == end_of_data;
    }

    template <typename NextByte> Token operator()(NextByte &next_byte) const
    {
        const int32_t byte = next_byte();
        if (stops(byte)) {
            return Token::stop;
        }
        constexpr int high_bit_position = 7;
        next_byte.skip(byte >> high_bit_position); // no branch, which hostile bytes would mislead
        return byte == space ? Token::gap : Token::word;
    }
};

} // namespace

int32_t PfsDetermineEnder(VwCharStream *stream, int16_t column, uint16_t *hardEnd,
                          VwInstance *instance)
{
    const int16_t wordLength = next_word_length<ReadWriteToken>(stream, instance);
    if (word_would_wrap(column, wordLength, instance)) {
        *hardEnd = 0;
    }
    return 0;
}

int32_t read_pfs_line(VwCharStream *stream, VwInstance *instance)
{
    if (!start_call(stream, instance)) {
        return 0;
    }
    Reading reading = {stream, instance, 0, true};
    const Progress progress = instance->state.formatType == format_writing_assistant
                                  ? read_lines(reading, WritingAssistantDecoder())
                                  : read_lines(reading, WriteDecoder());
    return end_call(progress, instance);
}

} // namespace vs_pfs

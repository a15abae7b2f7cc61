// The text of First Choice 3 documents.
//
// Each line is a chain of header bytes, then text, then 0x0D. Every header byte with bit
// 0x40 is followed by another. The first one says what the line is:
//
//   0x10 clear, 0x08 and 0x04 set   a ruler, read by Fc3GetRuler right after this byte
//   0x10 clear, 0x08 set            a page break; the line's bytes are passed over
//   else                            text, which ends its paragraph if the chain is two
//                                   bytes long and the second has bit 0x01
//
// So there is no lookahead, and no spacing at line ends. 0x0E, instead of a header byte or
// within a line, ends the document. Text: see choice_text.h; 0x0C has no meaning in it.
// Test: tests/module/choice3_line_reader_test.cpp.
#include "vs_pfs/document_headers.h"
#include "vs_pfs/line_readers.h"
#include "vs_pfs/line_readers/choice_text.h"

namespace vs_pfs {
namespace {

constexpr uint8_t line_end = formats::carriage_return;

enum class LineKind { ruler, page_break, wrapped_text, hard_text, document_end };

constexpr bool is_special_line(int32_t header)
{
    return (header & (choice::line_text | choice::line_special)) == choice::line_special;
}

// Reads the rest of a header chain. A chain that the data cut short is the document's end.
LineKind read_header_chain(VwCharStream *stream, int32_t first)
{
    int32_t last = first;
    uint16_t length = 1; // wraps in a chain of 65536 bytes and more
    while ((last & choice::line_more) != 0) {
        last = VwCharGet(stream);
        length = static_cast<uint16_t>(length + 1);
        if (last == end_of_data) {
            return LineKind::document_end;
        }
    }
    if (is_special_line(first)) {
        return LineKind::page_break;
    }
    return length == choice::hard_end_chain_length && (last & choice::line_hard_end) != 0
               ? LineKind::hard_text
               : LineKind::wrapped_text;
}

LineKind read_line_header(VwCharStream *stream)
{
    const int32_t header = VwCharGet(stream);
    if (header == document_end || header == end_of_data) {
        return LineKind::document_end;
    }
    if (is_special_line(header) && (header & choice::line_ruler) != 0) {
        return LineKind::ruler;
    }
    return read_header_chain(stream, header);
}

Progress read_page_break(const ChoiceReading &reading)
{
    put_page_break(reading.instance);
    int32_t byte = VwCharGet(reading.stream);
    while (byte != line_end && byte != end_of_data) {
        byte = VwCharGet(reading.stream);
    }
    return byte == end_of_data ? Progress::document_done : Progress::go_on;
}

// A line that ends in a space after text needs none to join the next; one that holds only
// spaces, or nothing, does.
void join_lines(const ChoiceReading &reading, const ChoiceLine &line)
{
    if (!line.lastWasSpace || line.atLineStart) {
        put_character(reading.instance, space);
    }
}

Progress end_line(ChoiceReading &reading, const ChoiceLine &line, LineKind kind)
{
    reading.paragraphStart = false;
    if (kind == LineKind::wrapped_text) {
        join_lines(reading, line);
        return Progress::go_on;
    }
    return end_choice_paragraph(reading, line);
}

Progress read_text_line(ChoiceReading &reading, LineKind kind)
{
    ChoiceLine line = start_choice_line(reading);
    Progress progress = Progress::go_on;
    while (progress == Progress::go_on) {
        read_ordinary_text(reading, line);
        const int32_t byte = VwCharGet(reading.stream);
        switch (byte) {
        case document_end:
        case end_of_data: return Progress::document_done;
        case line_end: return end_line(reading, line, kind);
        default: progress = read_choice_character(reading, line, static_cast<uint8_t>(byte));
        }
    }
    return progress;
}

Progress read_line(ChoiceReading &reading)
{
    const LineKind kind = read_line_header(reading.stream);
    switch (kind) {
    case LineKind::ruler: Fc3GetRuler(reading.stream, reading.instance); return Progress::go_on;
    case LineKind::page_break: return read_page_break(reading);
    case LineKind::wrapped_text:
    case LineKind::hard_text: return read_text_line(reading, kind);
    default: return Progress::document_done;
    }
}

} // namespace

int32_t read_choice3_line(VwCharStream *stream, VwInstance *instance)
{
    if (!start_call(stream, instance)) {
        return 0;
    }
    ChoiceReading reading = {stream, instance, 0, true};
    Progress progress = Progress::go_on;
    while (progress == Progress::go_on) {
        progress = read_line(reading);
    }
    return end_call(progress, instance);
}

} // namespace vs_pfs

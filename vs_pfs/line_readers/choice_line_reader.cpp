// The text of First Choice documents up to generation 2.
//
//   0x0C, 0x0D  line end, of wrapped and of finished lines alike; single, double spacing
//   0x0E        end of the document
//   others      text: see choice_text.h
//
// As in PFS: WRITE the reader recognises a wrapped line by the next line's first word. The
// spacing is reported at every line end, before that is decided.
// Test: tests/module/choice_line_reader_test.cpp.
#include "vs_pfs/line_readers.h"
#include "vs_pfs/line_readers/choice_text.h"
#include "vs_pfs/line_readers/word_lookahead.h"

namespace vs_pfs {
namespace {

void join_lines(ChoiceReading &reading, const ChoiceLine &line)
{
    if (!line.lastWasSpace) {
        put_character(reading.instance, space);
    }
    reading.paragraphStart = false;
}

Progress end_paragraph(ChoiceReading &reading, const ChoiceLine &line)
{
    const Progress progress = end_choice_paragraph(reading, line);
    reading.firstLineSpaces = 0;
    return progress;
}

Progress end_line(ChoiceReading &reading, ChoiceLine &line, int32_t spacing)
{
    put_line_spacing(reading.instance, spacing);
    uint16_t endsHere = 1;
    // The column counts from the margin and the spaces from 0, so that with a margin even an
    // empty line looks ahead.
    if (line.column != line.leadingSpaces) {
        FcDetermineEnder(reading.stream, line.column, &endsHere, reading.instance);
    }
    Progress progress = Progress::go_on;
    if (endsHere != 0) {
        progress = end_paragraph(reading, line);
    } else {
        join_lines(reading, line);
    }
    line = start_choice_line(reading);
    return progress;
}

Progress read_byte(ChoiceReading &reading, ChoiceLine &line)
{
    read_ordinary_text(reading, line);
    const int32_t byte = VwCharGet(reading.stream);
    switch (byte) {
    case choice::line_end_single: return end_line(reading, line, VW_SINGLE_SPACING);
    case choice::line_end_double: return end_line(reading, line, VW_DOUBLE_SPACING);
    case document_end:
    case end_of_data: return Progress::document_done;
    default: return read_choice_character(reading, line, static_cast<uint8_t>(byte));
    }
}

// The attribute bytes of a character as the lookahead takes them: any number, each but the
// last with bit 0x40, where the reader takes two at most. Returns the first, or -1 where
// the data end before the last. Inlined, so that the source stays in registers.
template <typename NextByte>
[[gnu::always_inline]] inline int32_t read_attribute_chain(NextByte &next_byte)
{
    const int32_t first = next_byte();
    int32_t last = first;
    while (last != end_of_data && (last & choice::more_attributes) != 0) {
        last = next_byte();
    }
    return last == end_of_data ? end_of_data : first;
}

// See "lookahead chains" in docs/quirks.md.
struct ReadChoiceToken {
    static constexpr bool stops(int32_t byte)
    {
        return byte == choice::line_end_single || byte == choice::line_end_double ||
               byte == document_end || byte == end_of_data;
    }

    template <typename NextByte> Token operator()(NextByte &next_byte) const
    {
        int32_t byte = next_byte();
        if (stops(byte)) {
            return Token::stop;
        }
        if ((byte & high_bit) != 0) {
            const int32_t attribute = read_attribute_chain(next_byte);
            if (attribute == end_of_data) {
                return Token::stop;
            }
            if ((attribute & choice::keep_high_bit) == 0) {
                byte &= low_seven_bits;
            }
        }
        return byte == space ? Token::gap : Token::word;
    }
};

} // namespace

int32_t FcDetermineEnder(VwCharStream *stream, int16_t column, uint16_t *endsHere,
                         VwInstance *instance)
{
    const int16_t wordLength = next_word_length<ReadChoiceToken>(stream, instance);
    if (word_would_wrap(column, wordLength, instance)) {
        *endsHere = 0;
    }
    return 0;
}

int32_t read_choice_line(VwCharStream *stream, VwInstance *instance)
{
    if (!start_call(stream, instance)) {
        return 0;
    }
    ChoiceReading reading = {stream, instance, 0, true};
    ChoiceLine line = start_choice_line(reading);
    Progress progress = Progress::go_on;
    while (progress == Progress::go_on) {
        progress = read_byte(reading, line);
    }
    return end_call(progress, instance);
}

} // namespace vs_pfs

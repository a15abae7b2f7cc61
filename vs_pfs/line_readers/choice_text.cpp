// The end of a paragraph of First Choice lines.
// Tests: tests/module/choice_line_reader_test.cpp, choice3_line_reader_test.cpp.
#include "vs_pfs/line_readers/choice_text.h"

namespace vs_pfs {

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

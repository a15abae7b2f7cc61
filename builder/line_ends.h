// Whether line ends will be read as intended.
//
// PFS: WRITE, IBM Writing Assistant and First Choice 2 store the same byte after a wrapped
// line and after a paragraph. Their readers distinguish them by the next line: it was a wrap if
// that line's first word would not have fitted. A hard line end is therefore lost if the next
// line happens to begin with a word that is too long.
#pragma once

#include "builder/document.h"

#include <string_view>

namespace pfs_builder {

// One stored line of a body: its first byte and its end byte.
struct LineEnd {
    std::size_t begin;
    std::size_t end;
    bool wrapped; // what it is intended to be
    Location location;
};

// What a reader sees of a line: its width in columns, and its leading spaces.
struct LineMeasure {
    int columns = 0;
    int leading_spaces = 0;
    bool only_spaces() const
    {
        return columns == leading_spaces;
    }
};

// The bytes of a body as its kind reads them. `text` begins at the start of the line.
struct LineReading {
    // The line, up to but without its end byte.
    LineMeasure (*measure)(std::string_view line);
    // Columns of the first word of the line that `text` begins with.
    int (*first_word)(std::string_view text);
    // The column of a line of spaces is counted from the left margin, as any other (First Choice),
    // or from 0 (the Write family).
    bool spaces_count_margin;
};

extern const LineReading write_line_reading;
extern const LineReading writing_assistant_line_reading;
extern const LineReading choice_line_reading;

// The first line end of a body within `margins` that would be misread.
std::optional<Fault> check_line_ends(const Document &document, const Margins &margins,
                                     std::string_view body, const std::vector<LineEnd> &ends,
                                     const LineReading &reading);

} // namespace pfs_builder

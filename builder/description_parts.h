// The parts of the description parser. Each takes lines of the source and adds to the
// document; each reports what is wrong, and its caller adds the location.
#pragma once

#include "builder/description.h"

#include <string_view>

namespace pfs_builder {

// What is wrong with one line.
struct Problem {
    std::string what;
    std::string remedy;
};
using Result = std::optional<Problem>; // none: all is well

// One line without its line end and without trailing spaces.
struct SourceLine {
    Location location;
    std::string text;
};

// The lines of a text. A last line without a line end counts.
std::vector<SourceLine> split_lines(std::string_view text, std::size_t source);

// The words of a text, separated by spaces.
std::vector<std::string> split_words(std::string_view text);

std::string_view without_leading_whitespace(std::string_view text);

std::optional<int> parse_number(std::string_view word); // digits only, up to 32767
std::optional<Margins> parse_margins(std::string_view text);
std::optional<std::string>
parse_hexadecimal(std::string_view text); // pairs of digits, at least one

// Header part (description_header.cpp): one line "key: value".
Result parse_header_line(const SourceLine &line, Document &document);

// Text (description_text.cpp): from the lines of one paragraph, joined by spaces, to its cells.
struct ParsedText {
    std::vector<Cell> cells;
    Result problem;
    Location location; // of the problem
};
ParsedText parse_text(const std::vector<SourceLine> &lines);

// Body (description_body.cpp): takes line after line, then the end.
class BodyParser {
public:
    BodyParser(Document &document, const IncludeReader &include)
        : document_(document), include_(include)
    {
    }

    std::optional<Fault> parse(const std::vector<SourceLine> &lines);

private:
    std::optional<Fault> take(const SourceLine &line);
    std::optional<Fault> take_directive(const SourceLine &line);
    std::optional<Fault> take_include(const SourceLine &line, const std::string &path);
    std::optional<Fault> end_paragraph();

    Document &document_;
    const IncludeReader &include_;
    bool within_include_ = false;
    std::vector<SourceLine> paragraph_; // its lines so far, indents included
};

} // namespace pfs_builder

// Both families read the bytes twice, as their readers do: once as the reader decodes a line, once
// as its lookahead scans the next one. The two differ. The lookahead of the Write family
// recognises only the plain space byte, so a styled space does not end a word; that of First
// Choice follows a chain of attribute bytes of any length.
// Test: tests/builder/line_ends_test.cpp.
#include "builder/line_ends.h"
#include "builder/bytes.h"
#include "builder/choice_characters.h"
#include "builder/write_characters.h"
#include "formats/writing_assistant.h"

namespace pfs_builder {
namespace {

constexpr std::size_t attribute_byte = 1;

// ------------------------------------------------------------ shared by the readings

void count_character(LineMeasure &measure, uint8_t character)
{
    if (character == space && measure.only_spaces()) {
        ++measure.leading_spaces;
    }
    ++measure.columns;
}

// Counts a word, character by character, up to its end.
struct WordCount {
    int length = 0;

    bool over_at(uint8_t character)
    {
        if (character == space) {
            return length != 0;
        }
        ++length;
        return false;
    }
};

// ------------------------------------------------------------------- the Write family

// `FirstPair` is the lowest byte that the reader takes for the first of a pair. In IBM Writing
// Assistant no pair decodes to a space.
template <uint8_t FirstPair> LineMeasure measure_write_line(std::string_view line)
{
    LineMeasure measure;
    for (std::size_t i = 0; i < line.size(); ++i) {
        auto character = static_cast<uint8_t>(line[i]);
        if (character == form_feed) {
            continue; // takes no column
        }
        if (character >= FirstPair) {
            character = FirstPair == high_bit ? character & low_seven_bits : FirstPair;
            i += attribute_byte;
        }
        count_character(measure, character);
    }
    return measure;
}

int first_write_word(std::string_view text)
{
    WordCount word;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<uint8_t>(text[i]);
        if (byte == carriage_return || byte == document_end || word.over_at(byte)) {
            break;
        }
        i += has_bit(text[i], high_bit) ? attribute_byte : 0;
    }
    return word.length;
}

// -------------------------------------------------------------------- First Choice 2

// The number of attribute bytes from `position` on, at most `most`.
std::size_t attribute_chain(std::string_view text, std::size_t position, std::size_t most)
{
    std::size_t count = 0;
    bool more = true;
    while (more && count < most && position + count < text.size()) {
        more = has_bit(text[position + count], choice::more_attributes);
        ++count;
    }
    return count;
}

// The character at `position`, without its high bit unless the attribute byte keeps it.
uint8_t choice_character(std::string_view text, std::size_t position)
{
    const auto byte = static_cast<uint8_t>(text[position]);
    const bool pair = (byte & high_bit) != 0 && position + 1 < text.size();
    const bool keep = pair && has_bit(text[position + 1], choice::keep_high_bit);
    return keep ? byte : byte & low_seven_bits;
}

LineMeasure measure_choice_line(std::string_view line)
{
    constexpr std::size_t most_attribute_bytes = 2;
    LineMeasure measure;
    for (std::size_t i = 0; i < line.size(); ++i) {
        count_character(measure, choice_character(line, i));
        if (has_bit(line[i], high_bit)) {
            i += attribute_chain(line, i + 1, most_attribute_bytes);
        }
    }
    return measure;
}

int first_choice_word(std::string_view text)
{
    WordCount word;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<uint8_t>(text[i]);
        const bool ends = byte == form_feed || byte == carriage_return || byte == document_end;
        if (ends || word.over_at(choice_character(text, i))) {
            break;
        }
        if ((byte & high_bit) != 0) {
            i += attribute_chain(text, i + 1, text.size());
        }
    }
    return word.length;
}

// ----------------------------------------------------------------------- the decision

// How a line end will be read, and why.
struct Decision {
    bool wrapped;
    int column;
    int word;
};

Decision decide(const Margins &margins, std::string_view body, const LineEnd &line,
                const LineReading &reading)
{
    const LineMeasure measure = reading.measure(body.substr(line.begin, line.end - line.begin));
    const bool counts_margin = reading.spaces_count_margin || !measure.only_spaces();
    const int column = measure.columns + (counts_margin ? margins.left - 1 : 0);
    const int word = reading.first_word(body.substr(line.end + 1));
    const bool counted_as_empty =
        reading.spaces_count_margin ? column == measure.leading_spaces : measure.columns == 0;
    const bool fits = column + word <= margins.right - 1;
    return {!counted_as_empty && word != 0 && !fits, column, word};
}

Fault misread_end(const Document &document, const LineEnd &line, const Decision &decision)
{
    const std::string grounds = "the next line's first word has " + std::to_string(decision.word) +
                                " columns and this line ends in column " +
                                std::to_string(decision.column);
    if (line.wrapped) {
        return fault_at(document, line.location,
                        "a wrapped line would be read as the end of its paragraph: " + grounds,
                        "take the raw bytes out of the paragraph, or break it by hand");
    }
    return fault_at(document, line.location,
                    "the end of this paragraph would be read as a wrap: " + grounds,
                    "put an empty line after it, change its length, store styled spaces plainly "
                    "with `spaces: plain`, or accept it with `joins: allowed`");
}

} // namespace

const LineReading write_line_reading = {measure_write_line<high_bit>, first_write_word, false};
const LineReading writing_assistant_line_reading = {
    measure_write_line<formats::assistant::prefix_bits>, first_write_word, false};
const LineReading choice_line_reading = {measure_choice_line, first_choice_word, true};

std::optional<Fault> check_line_ends(const Document &document, const Margins &margins,
                                     std::string_view body, const std::vector<LineEnd> &ends,
                                     const LineReading &reading)
{
    for (const LineEnd &line : ends) {
        const Decision decision = decide(margins, body, line, reading);
        const bool accepted = document.joins_allowed && !line.wrapped;
        if (decision.wrapped != line.wrapped && !accepted) {
            return misread_end(document, line, decision);
        }
    }
    return std::nullopt;
}

} // namespace pfs_builder

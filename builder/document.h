// The content of a document, before it is encoded as one of the seven kinds.
//
// A document is a kind, what its header holds, and a list of body elements. A paragraph is a
// list of cells, one for each character as a reader counts them; the encoders break it into
// stored lines. Everything keeps its location in the description, so that what a kind does not
// support is reported with its line.
#pragma once

#include "formats/text.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace pfs_builder {

enum class Kind : uint8_t {
    write_a,
    write_b,
    professional_write_1,
    professional_write_2,
    writing_assistant,
    first_choice_2,
    first_choice_3
};

// A set of character styles.
using Style = uint8_t;
inline constexpr Style style_none = 0x00;
inline constexpr Style style_underline = formats::underline;
inline constexpr Style style_bold = formats::bold;
inline constexpr Style style_italic = formats::italic;
inline constexpr Style style_superscript = formats::superscript;
inline constexpr Style style_subscript = formats::subscript;

// A location: an index into Document::sources and a line, counted from 1.
struct Location {
    std::size_t source = 0;
    int line = 0;
};

// What is wrong with a description, and a remedy.
struct Fault {
    std::string file;
    int line = 0;
    std::string what;
    std::string remedy;
};

// "FILE:LINE: what is wrong; what can be done"
std::string to_string(const Fault &fault);

enum class CellKind : uint8_t {
    text,    // one character of code page 437
    command, // one byte of an embedded command, including asterisks; stored unchanged
    raw      // bytes stored unchanged, counted as one character
};

struct Cell {
    CellKind kind = CellKind::text;
    Style style = style_none;
    bool hidden = false; // within a suppressed stretch
    Location location;
    std::string bytes;
};

inline constexpr char space = ' ';

// Whether a line may be broken here: a space that is text and not suppressed.
inline bool is_space(const Cell &cell)
{
    return cell.kind == CellKind::text && !cell.hidden && cell.bytes.front() == space;
}

// One paragraph, ended by a hard line end. Indents are in columns from the left margin.
struct Paragraph {
    std::vector<Cell> cells;
    int first_indent = 0; // of the first stored line
    int left_indent = 0;  // of the lines wrapped from it
    Location location;
};

// Columns as a user sees them, the first being 1.
struct Margins {
    int left = 10;
    int right = 70;
};

struct MarginRecord {
    Margins margins;
    Location location;
};

// A record of the Write family other than margins: its type byte, then its data.
struct OtherRecord {
    std::string bytes;
    Location location;
};

struct Spacing {
    bool is_double = false; // for the paragraphs that follow
    Location location;
};

// A ruler drawn in characters, the first column first: '[' and ']' margins, 'T' tab stops.
struct RulerLine {
    std::string columns;
    Location location;
};

struct PageBreakLine {
    std::string text; // the rest of the stored line; readers skip it
    Location location;
};

// Bytes stored unchanged between two lines.
struct RawBytes {
    std::string bytes;
    Location location;
};

using Record = std::variant<MarginRecord, OtherRecord>;
using Element =
    std::variant<Paragraph, Spacing, MarginRecord, OtherRecord, RulerLine, PageBreakLine, RawBytes>;

struct TabStop {
    int column = 1; // as a user sees it
    bool decimal = false;
};

enum class Alignment : uint8_t { left, centre, right };

// The header or the footer: two lines, absent if empty, with the same layout and style.
struct HeaderFooter {
    std::array<std::string, 2> lines; // in code page 437
    std::array<Location, 2> line_locations;
    std::optional<Alignment> alignment; // none: the kind's default
    Location alignment_location;
    Style style = style_none;
    Location style_location;
};

enum class Signature : uint8_t { type_2, wrd_pc }; // PFS: WRITE carries either

struct Document {
    std::vector<std::string> sources;   // the description and the files that it includes
    std::vector<std::string> keys_seen; // keys of its header part

    Kind kind = Kind::write_b;
    Location kind_location;
    std::optional<Signature> signature; // none: the later one
    Location signature_location;
    std::optional<char> generation; // First Choice's generation byte; none: the kind's own
    Location generation_location;

    Margins margins;
    Location margins_location;
    std::vector<TabStop> tab_stops;
    Location tab_stops_location;
    HeaderFooter header;
    HeaderFooter footer;
    std::vector<Record> records; // before the body

    bool plain_spaces = false;  // store the spaces of styled text without their style
    bool joins_allowed = false; // a hard line end that will be read as a wrap is not a fault

    std::vector<Element> body;
};

// The fault `what` at `location` in the document.
Fault fault_at(const Document &document, const Location &location, std::string what,
               std::string remedy);

} // namespace pfs_builder

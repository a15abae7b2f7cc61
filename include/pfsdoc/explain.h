// A document explained: every byte of the file, in order, with what it was read as.
//
// The module does the reading and is the authority: what became a character, a command, a
// paragraph's end is taken from its events and their positions. The bytes between two events
// are then told apart by the rules of the document's kind. So the spans cover the file from
// its first byte to its last, and none of them overlap.
//
// Whether a line end is soft or hard is the module's decision too; the reason that a span
// gives is worked out again here, and a span whose reason leads to another decision than the
// module's says that it is disputed. Tests: tests/lib/explain/.
#pragma once

#include "pfsdoc/byte_source.h"
#include "pfsdoc/error.h"
#include "pfsdoc/export.h"
#include "pfsdoc/identify.h"
#include "pfsdoc/paragraph.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace pfsdoc {

class Module;

enum class SpanKind : uint8_t {
    field,           // of the header: its name and value
    header_text,     // of a header or footer line
    record,          // margin and font records, rulers within the text
    line_type,       // what a line begins with to say what it is, or how it or the next ends
    text,            // characters of one byte each
    attributed_text, // characters each with the attribute bytes that follow it
    hidden_text,     // characters that are read and not reported
    indent,          // leading spaces
    command,         // an embedded command, from asterisk to asterisk
    line_end,        // of a line, soft or hard
    page_break,      // a line that is a page break
    end_mark,        // of the document
    padding,         // behind the end of the document
    unused,          // not read, or read and passed over
    cut              // a character of which the end of the file cut something off
};

// "field", "header_text", ...: stable, for programs.
PFSDOC_API std::string_view span_kind_name(SpanKind kind);

enum class LineEnd : uint8_t {
    none,
    soft, // the line goes on in the next one
    hard  // it ends its paragraph
};

struct Span {
    uint32_t offset = 0;
    SpanKind kind = SpanKind::unused;
    std::string bytes; // as they stand in the file; never empty
    std::string words; // what they were read as, for people
    // What the module reported of them as text: bytes of the document's character set. A soft
    // line end may be reported as a space.
    std::string characters;
    AttributeSet attributes = 0;  // of text
    uint32_t attribute_bytes = 0; // after each character of attributed text
    // Of line ends. A type byte of Professional Write ends the line before it.
    LineEnd line_end = LineEnd::none;
    bool disputed = false; // the reason in words does not lead to what the module did
};

// Stretches of one sort that are longer are cut up into spans of this length at most.
inline constexpr std::size_t longest_span = 4096;

class PFSDOC_API SpanSink {
public:
    virtual ~SpanSink() = default;
    virtual void span(const Span &span) = 0;
};

// Delivers the spans of a whole file. Memory does not grow with the file, time only in
// proportion to it. After ErrorKind::damaged, as after success, all spans have been delivered:
// the document is cut short.
PFSDOC_API Status explain(const Module &module, ByteSource &source, DocumentKind kind,
                          SpanSink &sink);

} // namespace pfsdoc

// A document explained: every byte of the file, in order, with its meaning.
//
// The module reads the document and is the authority: what became a character, a command or a
// paragraph end is taken from its events and their positions. The bytes between two events are
// then classified by the rules of the document's kind. The spans cover the file from its first
// byte to its last without overlap.
//
// The module also decides whether a line end is soft or hard. The reason that a span gives is
// derived again here; if it leads to a different decision, the span is marked as disputed. Tests:
// tests/lib/explain/.
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
    line_type,       // the bytes at the start of a line that specify its type or its line end
    text,            // characters of one byte each
    attributed_text, // characters each with the attribute bytes that follow it
    hidden_text,     // characters that are read and not reported
    indent,          // leading spaces
    command,         // an embedded command, from asterisk to asterisk
    line_end,        // of a line, soft or hard
    page_break,      // a line that is a page break
    end_mark,        // of the document
    padding,         // after the end of the document
    unused,          // not read, or read and skipped
    cut              // a character truncated by the end of the file
};

// "field", "header_text", ...: stable names for programs.
PFSDOC_API std::string_view span_kind_name(SpanKind kind);

enum class LineEnd : uint8_t {
    none,
    soft, // word wrap: the paragraph continues in the next line
    hard  // the line ends its paragraph
};

struct Span {
    uint32_t offset = 0; // of its first byte in the file
    SpanKind kind = SpanKind::unused;
    std::string bytes; // as stored in the file; never empty
    std::string words; // their meaning, for people
    // The text that the module reported for them, in the document's character set. A soft line
    // end may be reported as a space.
    std::string characters;
    AttributeSet attributes = 0;  // of text
    uint32_t attribute_bytes = 0; // after each character of attributed text
    // Of line ends. A type byte of Professional Write ends the line before it.
    LineEnd line_end = LineEnd::none;
    bool disputed = false; // the reason in `words` contradicts the module's decision
};

// The greatest length of a span, in bytes; longer runs are split.
inline constexpr std::size_t longest_span = 4096;

class PFSDOC_API SpanSink {
public:
    virtual ~SpanSink() = default;
    virtual void span(const Span &span) = 0;
};

// Delivers the spans of a whole file. Memory use is constant, time proportional to the file's size.
// ErrorKind::damaged means that the document is truncated; all spans have been delivered, as
// after success.
PFSDOC_API Status explain(const Module &module, ByteSource &source, DocumentKind kind,
                          SpanSink &sink);

} // namespace pfsdoc

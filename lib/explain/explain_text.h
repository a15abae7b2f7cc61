// Spans as an annotated dump for people.
//
// It has up to 16 bytes on a line: their position, their values, how they look in the
// document's character set, and on a span's first line what they were read as. Lines of one
// span that are all alike are given once, with how often. What a document holds never reaches
// the terminal as it is: its character set has a glyph for every byte.
// Tests: tests/lib/explain/golden_test.cpp, explain_text_test.cpp.
#pragma once

#include "pfsdoc/code_page.h"
#include "pfsdoc/explain.h"
#include "pfsdoc/output.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace pfsdoc::explaining {

enum class Colours { off, on };

class ExplainTextWriter final : public SpanSink {
public:
    // Both must outlive it.
    ExplainTextWriter(Output &output, const CodePage &code_page, Colours colours)
        : output_(output), code_page_(code_page), colours_(colours)
    {
    }

    void span(const Span &span) override;

private:
    void write_line(const Span &span, std::size_t from, std::size_t count);
    void append_bytes(std::string_view bytes);
    void append_glyphs(const Span &span, std::size_t from, std::size_t count);
    void append_coloured(SpanKind kind, std::string_view text);

    Output &output_;
    const CodePage &code_page_;
    Colours colours_;
    std::string line_;
};

} // namespace pfsdoc::explaining

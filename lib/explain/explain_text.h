// Spans as an annotated dump for people.
//
// It has 8 bytes on a line, or 16 in a wide window: their position, their values, how they look in
// the document's character set, and beside them what they were read as, in as many lines as that
// takes in the window. Lines of one span that are all alike are given once, with how often. What a
// document holds never reaches
// the terminal as it is: its character set has a glyph for every byte.
// Tests: tests/lib/explain/golden_test.cpp, explain_text_test.cpp.
#pragma once

#include "pfsdoc/code_page.h"
#include "pfsdoc/explain.h"
#include "pfsdoc/output.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace pfsdoc::explaining {

enum class Colours { off, on };

inline constexpr std::size_t usual_columns = 80;

class ExplainTextWriter final : public SpanSink {
public:
    // The output and the code page must outlive it. No line is wider than the window, unless that
    // leaves no room for words.
    ExplainTextWriter(Output &output, const CodePage &code_page, Colours colours,
                      std::size_t columns = usual_columns);

    void span(const Span &span) override;

private:
    std::size_t bytes_per_line(const Span &span) const;
    void write_bytes(const Span &span, std::size_t from, std::size_t count);
    void write_words(SpanKind kind);
    void write_rest_of_words(SpanKind kind);
    void append_bytes(std::string_view bytes);
    void append_glyphs(const Span &span, std::size_t from, std::size_t count);
    void append_coloured(SpanKind kind, std::string_view text);

    Output &output_;
    const CodePage &code_page_;
    Colours colours_;
    std::size_t bytes_in_line_;
    std::size_t words_width_; // columns
    // Of the span that is being written.
    std::vector<std::string> words_; // line by line
    std::size_t next_words_ = 0;     // of those lines
    std::string line_;
};

} // namespace pfsdoc::explaining

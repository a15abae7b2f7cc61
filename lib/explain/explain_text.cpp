#include "lib/explain/explain_text.h"

#include "lib/base/printable.h"

#include <algorithm>
#include <array>

namespace pfsdoc::explaining {

namespace {

constexpr std::size_t bytes_in_line = 16;
constexpr std::size_t position_width = 8;

// Terminal colours by kind of span; empty for the terminal's own.
constexpr std::array<std::string_view, 15> colour_codes = {
    "\x1B[36m", // field
    "\x1B[36m", // header_text
    "\x1B[35m", // record
    "\x1B[35m", // line_type
    "",         // text
    "\x1B[1m",  // attributed_text
    "\x1B[2m",  // hidden_text
    "\x1B[34m", // indent
    "\x1B[33m", // command
    "\x1B[32m", // line_end
    "\x1B[33m", // page_break
    "\x1B[31m", // end_mark
    "\x1B[2m",  // padding
    "\x1B[2m",  // unused
    "\x1B[31m", // cut
};
constexpr std::string_view colour_end = "\x1B[0m";

// As many as go on a line without parting a character from its attribute bytes.
std::size_t bytes_per_line(const Span &span)
{
    return bytes_in_line - bytes_in_line % (1 + span.attribute_bytes);
}

// The number of lines from `from` on whose bytes are the same as those of the first.
std::size_t count_alike(const Span &span, std::size_t from, std::size_t width)
{
    const std::string_view bytes = span.bytes;
    const std::string_view first = bytes.substr(from, width);
    std::size_t count = 1;
    while (first.size() == width && bytes.substr(from + count * width, width) == first) {
        ++count;
    }
    return count;
}

} // namespace

void ExplainTextWriter::span(const Span &span)
{
    const std::size_t width = bytes_per_line(span);
    for (std::size_t from = 0; from < span.bytes.size();) {
        const std::size_t alike = count_alike(span, from, width);
        write_line(span, from, std::min(width, span.bytes.size() - from));
        if (alike > 2) {
            output_.write(std::string(position_width, ' ') + "  the same " +
                          std::to_string(alike - 1) + " times more\n");
        }
        from += (alike > 2 ? alike : 1) * width;
    }
}

void ExplainTextWriter::write_line(const Span &span, std::size_t from, std::size_t count)
{
    const std::string position = std::to_string(span.offset + from);
    line_.assign(position_width - std::min(position_width, position.size()), ' ');
    line_.append(position).append("  ");
    append_bytes(std::string_view(span.bytes).substr(from, count));
    append_glyphs(span, from, count);
    if (from == 0) {
        append_coloured(span.kind, span.words);
        line_.append(span.disputed ? " (disputed)" : "");
    } else {
        line_.erase(line_.find_last_not_of(' ') + 1);
    }
    line_.push_back('\n');
    output_.write(line_);
}

void ExplainTextWriter::append_bytes(std::string_view bytes)
{
    for (const char byte : bytes) {
        line_.append(base::hex_byte(static_cast<unsigned char>(byte))).push_back(' ');
    }
    line_.append(3 * (bytes_in_line - bytes.size()) + 1, ' ');
}

// Of text the characters, of everything else the bytes.
void ExplainTextWriter::append_glyphs(const Span &span, std::size_t from, std::size_t count)
{
    const bool is_text = span.kind == SpanKind::text || span.kind == SpanKind::attributed_text;
    const std::size_t unit = is_text ? 1 + span.attribute_bytes : 1;
    const std::string_view shown = is_text ? span.characters : span.bytes;
    const std::size_t glyphs = count / unit;
    line_.push_back('|');
    code_page_.append_utf8(line_, shown.substr(from / unit, glyphs));
    line_.append("|").append(bytes_in_line - glyphs + 2, ' ');
}

void ExplainTextWriter::append_coloured(SpanKind kind, std::string_view text)
{
    const std::string_view colour = colour_codes[static_cast<std::size_t>(kind)];
    if (colours_ == Colours::off || colour.empty()) {
        line_.append(text);
        return;
    }
    line_.append(colour).append(text).append(colour_end);
}

} // namespace pfsdoc::explaining

#include "lib/explain/explain_text.h"

#include "lib/base/printable.h"

#include <algorithm>
#include <array>

namespace pfsdoc::explaining {

namespace {

constexpr std::size_t usual_bytes_in_line = 8;
constexpr std::size_t wide_bytes_in_line = 16;
constexpr std::size_t position_width = 8;
constexpr std::size_t least_words_width = 20;
// With less than that beside 16 bytes, half as many leave more room.
constexpr std::size_t comfortable_words_width = 32;

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

// Where the words begin: after the position, the bytes and their glyphs, each behind two spaces.
constexpr std::size_t words_column(std::size_t bytes_in_line)
{
    return position_width + 2 + 3 * bytes_in_line + 1 + 1 + bytes_in_line + 1 + 2;
}

// The byte position behind so many characters of UTF-8, or the text's end.
std::size_t behind_characters(std::string_view text, std::size_t characters)
{
    std::size_t position = 0;
    while (position < text.size()) {
        const bool begins_character = (static_cast<unsigned char>(text[position]) & 0xC0U) != 0x80U;
        if (begins_character && characters-- == 0) {
            break;
        }
        ++position;
    }
    return position;
}

// The text in lines of up to so many characters, parted at spaces where there are any.
std::vector<std::string> filled(std::string_view text, std::size_t width)
{
    std::vector<std::string> lines;
    for (;;) {
        const std::size_t fits = behind_characters(text, width);
        if (fits == text.size()) {
            lines.emplace_back(text);
            return lines;
        }
        const std::size_t space = text.rfind(' ', fits);
        const bool is_parted = space != std::string_view::npos && space > 0;
        lines.emplace_back(text.substr(0, is_parted ? space : fits));
        text.remove_prefix(is_parted ? space + 1 : fits);
    }
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

ExplainTextWriter::ExplainTextWriter(Output &output, const CodePage &code_page, Colours colours,
                                     std::size_t columns)
    : output_(output), code_page_(code_page), colours_(colours),
      bytes_in_line_(columns < words_column(wide_bytes_in_line) + comfortable_words_width
                         ? usual_bytes_in_line
                         : wide_bytes_in_line),
      words_width_(std::max(columns, words_column(bytes_in_line_) + least_words_width) -
                   words_column(bytes_in_line_))
{
}

// As many as go on a line without parting a character from its attribute bytes.
std::size_t ExplainTextWriter::bytes_per_line(const Span &span) const
{
    return bytes_in_line_ - bytes_in_line_ % (1 + span.attribute_bytes);
}

void ExplainTextWriter::span(const Span &span)
{
    words_ = filled(span.words + (span.disputed ? " (disputed)" : ""), words_width_);
    next_words_ = 0;
    const std::size_t width = bytes_per_line(span);
    for (std::size_t from = 0; from < span.bytes.size();) {
        const std::size_t alike = count_alike(span, from, width);
        write_bytes(span, from, std::min(width, span.bytes.size() - from));
        if (alike > 2) {
            output_.write(std::string(position_width, ' ') + "  the same " +
                          std::to_string(alike - 1) + " times more\n");
        }
        from += (alike > 2 ? alike : 1) * width;
    }
    write_rest_of_words(span.kind);
}

void ExplainTextWriter::write_bytes(const Span &span, std::size_t from, std::size_t count)
{
    const std::string position = std::to_string(span.offset + from);
    line_.assign(position_width - std::min(position_width, position.size()), ' ');
    line_.append(position).append("  ");
    append_bytes(std::string_view(span.bytes).substr(from, count));
    append_glyphs(span, from, count);
    write_words(span.kind);
}

// Ends the line, with the next of the words where there are more.
void ExplainTextWriter::write_words(SpanKind kind)
{
    if (next_words_ < words_.size()) {
        append_coloured(kind, words_[next_words_++]);
    } else {
        line_.erase(line_.find_last_not_of(' ') + 1);
    }
    line_.push_back('\n');
    output_.write(line_);
}

void ExplainTextWriter::write_rest_of_words(SpanKind kind)
{
    while (next_words_ < words_.size()) {
        line_.assign(words_column(bytes_in_line_), ' ');
        write_words(kind);
    }
}

void ExplainTextWriter::append_bytes(std::string_view bytes)
{
    for (const char byte : bytes) {
        line_.append(base::hex_byte(static_cast<unsigned char>(byte))).push_back(' ');
    }
    line_.append(3 * (bytes_in_line_ - bytes.size()) + 1, ' ');
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
    line_.append("|").append(bytes_in_line_ - glyphs + 2, ' ');
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

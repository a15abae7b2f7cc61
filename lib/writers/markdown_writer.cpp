#include "lib/writers/markdown_writer.h"

#include "lib/writers/formats.h"

#include <algorithm>
#include <array>
#include <optional>

namespace pfsdoc::writers {

namespace {

// Bold outside of italic where both begin together.
constexpr std::array nesting_order = {AttributeCode::bold, AttributeCode::italic};
constexpr AttributeSet bold_bit = attribute_bit(AttributeCode::bold);
constexpr AttributeSet italic_bit = attribute_bit(AttributeCode::italic);

constexpr std::string_view bold_mark = "**";
constexpr std::string_view lone_italic_mark = "*";
constexpr std::string_view italic_mark_beside_bold = "_";
constexpr std::string_view rule = "***";

// Of a word that is written: its last character is all that may still change.
constexpr std::size_t most_held = 4096;

constexpr unsigned no_break_space = 0xA0;

// ---------------------------------------------------------------- characters ----------

constexpr bool is_digit(char byte)
{
    return byte >= '0' && byte <= '9';
}

constexpr bool is_ascii_letter(char byte)
{
    return (byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z');
}

constexpr bool is_ascii_word_character(unsigned character)
{
    const auto byte = static_cast<char>(character);
    return character < 0x80 && (is_ascii_letter(byte) || is_digit(byte));
}

constexpr bool is_ascii_punctuation(char byte)
{
    return byte > ' ' && byte <= '~' && !is_ascii_letter(byte) && !is_digit(byte);
}

// Letters of every edition of Unicode: Latin, Greek, Cyrillic. What is neither one of these
// nor of ASCII may be punctuation to one reader and none to another.
constexpr bool is_surely_a_letter(unsigned character)
{
    constexpr unsigned multiplication_sign = 0xD7;
    constexpr unsigned division_sign = 0xF7;
    const bool latin = character >= 0xC0 && character <= 0x24F &&
                       character != multiplication_sign && character != division_sign;
    const bool greek = character >= 0x388 && character <= 0x3CE;
    const bool cyrillic = character >= 0x400 && character <= 0x481;
    return latin || greek || cyrillic;
}

// The blanks of Unicode, which count as blanks beside emphasis.
constexpr bool is_unicode_blank(unsigned character)
{
    return character == no_break_space || character == 0x1680 ||
           (character >= 0x2000 && character <= 0x200A) || character == 0x202F ||
           character == 0x205F || character == 0x3000;
}

constexpr bool is_plain(unsigned character)
{
    return is_ascii_word_character(character) || is_surely_a_letter(character);
}

// Of a character of a code page: three bytes at most.
constexpr std::size_t utf8_length(char first_byte)
{
    const auto byte = static_cast<unsigned char>(first_byte);
    return byte < 0x80 ? 1 : byte < 0xE0 ? 2 : 3;
}

unsigned decode(std::string_view utf8)
{
    const auto bits = [&utf8](std::size_t index) {
        return static_cast<unsigned>(static_cast<unsigned char>(utf8[index])) & 0x3FU;
    };
    switch (utf8.size()) {
    case 1: return static_cast<unsigned char>(utf8[0]);
    case 2: return ((bits(0) & 0x1FU) << 6) | bits(1);
    default: return ((bits(0) & 0x0FU) << 12) | (bits(1) << 6) | bits(2);
    }
}

// ------------------------------------------------------------------ escaping ----------

constexpr bool can_begin_a_tag(char byte)
{
    return is_ascii_letter(byte) || byte == '/' || byte == '!' || byte == '?';
}

// Whether a reader that makes links of bare addresses, as GitHub does, finds one by this character:
// by "www." or "://". Mail's bare addresses cannot be kept from it: it looks for them in the text
// that it has read, where nothing is escaped any more.
bool is_in_bare_link(std::string_view word, std::size_t at)
{
    if (word[at] == ':') {
        return word.substr(at + 1).starts_with("//");
    }
    const auto is_w = [](char byte) { return byte == 'w' || byte == 'W'; };
    return at >= 3 && is_w(word[at - 1]) && is_w(word[at - 2]) && is_w(word[at - 3]);
}

constexpr bool can_begin_an_entity(char byte)
{
    return is_ascii_letter(byte) || byte == '#';
}

// Whether a character of a word means something wherever it stands. In a word with an at sign
// anything behind "<" may be a mail's address.
bool is_special(std::string_view word, std::size_t at, bool has_at_sign)
{
    const char next = at + 1 < word.size() ? word[at + 1] : ' ';
    switch (word[at]) {
    case '\\':
    case '`':
    case '*':
    case '_':
    case '[':
    case '~':
    case '|': return true;
    case '<': return can_begin_a_tag(next) || has_at_sign;
    case '&': return can_begin_an_entity(next);
    case '.':
    case ':': return is_in_bare_link(word, at);
    default: return false;
    }
}

// Where a word at the beginning of a line has to be escaped, so that it does not begin a
// heading, a quotation or a list. What makes a heading of the line above it finds none: each
// paragraph is one line.
std::size_t line_start_escape(std::string_view word)
{
    constexpr std::string_view beginnings = "#>-+";
    if (beginnings.find(word.front()) != std::string_view::npos) {
        return 0;
    }
    const auto digits_end = std::find_if_not(word.begin(), word.end(), is_digit);
    const auto digits = static_cast<std::size_t>(digits_end - word.begin());
    const bool numbers_an_item =
        digits > 0 && digits + 1 == word.size() && (word.back() == '.' || word.back() == ')');
    return numbers_an_item ? digits : std::string_view::npos;
}

bool has_both_emphases(const Paragraph &paragraph)
{
    AttributeSet all = 0;
    for (const Piece &piece : paragraph.pieces) {
        all |= piece.attributes;
    }
    return (all & bold_bit) != 0 && (all & italic_bit) != 0;
}

} // namespace

MarkdownWriter::MarkdownWriter(Output &output, const WriterOptions &options)
    : FlowWriter(output, options, {page::AttributeNesting(nesting_order).known(), false, "\n"}),
      nesting_(nesting_order), italic_mark_(lone_italic_mark)
{
}

void MarkdownWriter::write_paragraph(const Paragraph &paragraph)
{
    italic_mark_ = has_both_emphases(paragraph) ? italic_mark_beside_bold : lone_italic_mark;
    page::split_into_words(paragraph, options(), supported(), *this);
    end_line();
}

void MarkdownWriter::write_page_break()
{
    out().utf8(rule);
    out().line_end();
}

void MarkdownWriter::write_end() {}

void MarkdownWriter::page_break_in_text()
{
    end_line();
    if (!block()) {
        begin_block();
        write_page_break();
    }
}

void MarkdownWriter::end_line()
{
    if (line_open_) {
        blanks(0, 0);
        out().line_end();
        line_open_ = false;
    }
}

// Marks that close in front of a blank, or at the end of the line, need nothing else.
void MarkdownWriter::blanks(std::size_t count, AttributeSet attributes)
{
    nesting_.close_unwanted(attributes, [this](AttributeCode code) { out().utf8(mark(code)); });
    out().spaces(count);
}

std::string_view MarkdownWriter::mark(AttributeCode code) const
{
    return code == AttributeCode::bold ? bold_mark : italic_mark_;
}

// --------------------------------------------------------------------- words ----------

void MarkdownWriter::word(const page::Word &word)
{
    begin_word(word);
    for (std::size_t part = 0; part < word.parts.size(); ++part) {
        change_attributes(word, part);
        append_part(word, part);
    }
    out().utf8(raw_);
}

void MarkdownWriter::begin_word(const page::Word &word)
{
    raw_.clear();
    word_has_at_sign_ = word.utf8.find('@') != std::string_view::npos;
    escaped_at_ = std::string_view::npos;
    if (!line_open_) {
        begin_block();
        line_open_ = true;
        escaped_at_ = line_start_escape(word.utf8);
    }
}

// Marks that both close and open here are neighbours of each other, which is punctuation
// enough for all of them.
void MarkdownWriter::change_attributes(const page::Word &word, std::size_t part)
{
    const AttributeSet wanted = word.parts[part].attributes;
    closing_marks_.clear();
    opening_marks_.clear();
    nesting_.close_unwanted(wanted,
                            [this](AttributeCode code) { closing_marks_.append(mark(code)); });
    nesting_.open_wanted(wanted, [this](AttributeCode code) { opening_marks_.append(mark(code)); });
    if (closing_marks_.empty() && !opening_marks_.empty()) {
        const bool beside_a_letter = part > 0 && !is_ascii_punctuation(raw_.back());
        if (beside_a_letter && opening_needs_punctuation(opening_marks_, word, part)) {
            raw_.resize(last_character_begin_);
            append_reference(last_character_);
        }
    } else if (opening_marks_.empty() && !closing_marks_.empty()) {
        const bool beside_a_letter = !is_ascii_punctuation(word.part_text(part).front());
        next_as_reference_ = beside_a_letter && closing_needs_punctuation(closing_marks_);
    }
    raw_.append(closing_marks_).append(opening_marks_);
}

// Whether the marks can open behind punctuation only. A character that stands alone between
// changes may itself become a reference, and so punctuation, later.
bool MarkdownWriter::opening_needs_punctuation(std::string_view marks, const page::Word &word,
                                               std::size_t part) const
{
    const std::string_view text = word.part_text(part);
    const std::size_t length = utf8_length(text.front());
    const bool stays_plain = text.size() > length || part + 1 == word.parts.size();
    const bool is_one_mark = marks == bold_mark || marks == lone_italic_mark;
    return !is_one_mark || !stays_plain || !is_plain(decode(text.substr(0, length)));
}

// Whether the marks can close in front of punctuation only.
bool MarkdownWriter::closing_needs_punctuation(std::string_view marks) const
{
    const bool is_one_mark = marks == bold_mark || marks == lone_italic_mark;
    const bool is_reference = raw_.back() == ';';
    return !is_one_mark || is_reference || !is_plain(last_character_);
}

void MarkdownWriter::append_part(const page::Word &word, std::size_t part)
{
    const std::size_t end = word.part_end(part);
    for (std::size_t at = word.parts[part].begin; at < end;) {
        const std::size_t length = utf8_length(word.utf8[at]);
        append_character(word, at, length);
        at += length;
    }
}

void MarkdownWriter::append_character(const page::Word &word, std::size_t at, std::size_t length)
{
    if (raw_.size() >= most_held) {
        out().utf8(raw_);
        raw_.clear();
    }
    const std::string_view utf8 = std::string_view(word.utf8).substr(at, length);
    last_character_begin_ = raw_.size();
    last_character_ = decode(utf8);
    if (next_as_reference_ || is_unicode_blank(last_character_)) {
        next_as_reference_ = false;
        append_reference(last_character_);
        return;
    }
    if (at == escaped_at_ || is_special(word.utf8, at, word_has_at_sign_)) {
        raw_.push_back('\\');
    }
    raw_.append(utf8);
}

void MarkdownWriter::append_reference(unsigned character)
{
    if (character == no_break_space) {
        raw_.append("&nbsp;");
    } else {
        raw_.append("&#").append(std::to_string(character)).append(";");
    }
}

// ------------------------------------------------------------------------ format ------

namespace {

Result<std::unique_ptr<Writer>> make_writer(Output &output, const DocumentInfo &,
                                            const WriterOptions &options)
{
    return std::unique_ptr<Writer>(std::make_unique<MarkdownWriter>(output, options));
}

} // namespace

const Format markdown_format = {
    .name = "markdown",
    .extension = "md",
    .description = "Markdown (CommonMark), with bold, italic and page breaks",
    .options = WriterOption::page_breaks | WriterOption::headers | WriterOption::commands,
    .make_writer = make_writer,
    .make_event_writer = nullptr,
    .wants_offsets = false,
};

} // namespace pfsdoc::writers

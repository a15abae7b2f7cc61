#include "bench/documents.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace bench {

namespace {

using pfs_builder::Cell;
using pfs_builder::CellKind;
using pfs_builder::Document;
using pfs_builder::Kind;
using pfs_builder::Margins;
using pfs_builder::Paragraph;
using pfs_builder::Style;

constexpr std::size_t largest_plain_piece = std::size_t{1} << 20;
constexpr Margins page_margins = {10, 70};
constexpr Margins narrow_margins = {10, 39};
// Emphasis covers phrases. One that begins at every 22nd plain word, and is 5.5 words long, makes
// 20 % of the characters.
constexpr unsigned plain_words_between = 22;
constexpr unsigned longest_phrase = 10;
constexpr unsigned words_between_commands = 6;
constexpr unsigned fewest_words = 20;
constexpr unsigned word_spread = 100;
constexpr unsigned words_of_a_sentence = 11;

constexpr std::array<std::string_view, 48> words = {
    "the",     "of",       "and",     "to",       "in",         "that",      "is",      "was",
    "it",      "for",      "with",    "as",       "his",        "on",        "be",      "at",
    "by",      "had",      "not",     "are",      "but",        "from",      "or",      "have",
    "which",   "letter",   "office",  "diskette", "morning",    "invoice",   "quarter", "printer",
    "regards", "shipping", "meeting", "a",        "department", "enclosed",  "copies",  "warehouse",
    "between", "Thursday", "we",      "I",        "customer",   "agreement", "number",  "please"};
constexpr std::array<std::string_view, 3> commands = {"*JUSTIFY YES*", "*PRINTER 27,15*",
                                                      "*NEW PAGE*"};

// The same numbers with every compiler and library, so that figures can be compared.
class Numbers {
public:
    unsigned below(unsigned limit)
    {
        state_ ^= state_ << 13;
        state_ ^= state_ >> 7;
        state_ ^= state_ << 17;
        return static_cast<unsigned>((state_ >> 11) % limit);
    }

private:
    uint64_t state_ = 0x9E3779B97F4A7C15U;
};

// Makes one paragraph after the other.
class Writer {
public:
    explicit Writer(Text text) : text_(text) {}

    Paragraph paragraph()
    {
        Paragraph paragraph;
        const unsigned count = fewest_words + numbers_.below(word_spread);
        for (unsigned i = 0; i < count; ++i) {
            const Style before = phrase_left_ != 0 ? phrase_style_ : pfs_builder::style_none;
            if (i != 0) {
                append(paragraph, " ", CellKind::text, before);
            }
            append(paragraph, words[numbers_.below(words.size())], CellKind::text, next_style());
            if (i % words_of_a_sentence == words_of_a_sentence - 1 || i + 1 == count) {
                append(paragraph, ".", CellKind::text, pfs_builder::style_none);
            }
            if (text_ == Text::commands && i % words_between_commands == 0) {
                append(paragraph, commands[numbers_.below(commands.size())], CellKind::command,
                       pfs_builder::style_none);
            }
        }
        return paragraph;
    }

private:
    Style next_style()
    {
        if (phrase_left_ == 0) {
            if (text_ != Text::attributed || numbers_.below(plain_words_between) != 0) {
                return pfs_builder::style_none;
            }
            const unsigned both = pfs_builder::style_bold | pfs_builder::style_underline;
            phrase_style_ = static_cast<Style>(1 + numbers_.below(both));
            phrase_left_ = 1 + numbers_.below(longest_phrase);
        }
        --phrase_left_;
        return phrase_style_;
    }

    static void append(Paragraph &paragraph, std::string_view text, CellKind kind, Style style)
    {
        for (const char character : text) {
            paragraph.cells.push_back({kind, style, false, {}, std::string(1, character)});
        }
    }

    Text text_;
    Numbers numbers_;
    Style phrase_style_ = pfs_builder::style_none;
    unsigned phrase_left_ = 0; // words
};

std::string file_of(const Document &document)
{
    const pfs_builder::Built built = pfs_builder::build(document);
    if (built.fault) {
        static_cast<void>(
            std::fprintf(stderr, "%s\n", pfs_builder::to_string(*built.fault).c_str()));
        std::exit(EXIT_FAILURE);
    }
    return {built.bytes.begin(), built.bytes.end()};
}

Document empty_document(Kind kind, Margins margins)
{
    Document document;
    document.sources = {"benchmark"};
    document.kind = kind;
    document.joins_allowed = true;
    if (kind == Kind::professional_write_2) {
        // Its header has no margins: a record before the text sets them.
        document.records.emplace_back(pfs_builder::MarginRecord{margins, {}});
    } else {
        document.margins = margins;
    }
    return document;
}

bool is_professional_write(Kind kind)
{
    return kind == Kind::professional_write_1 || kind == Kind::professional_write_2;
}

std::string tail_of(Kind kind)
{
    return is_professional_write(kind) ? std::string("\x00\x0E", 2) : std::string("\x0E");
}

Margins margins_of(Text text)
{
    return text == Text::short_lines ? narrow_margins : page_margins;
}

} // namespace

const char *text_name(Text text)
{
    switch (text) {
    case Text::prose: return "prose";
    case Text::attributed: return "attributed";
    case Text::short_lines: return "short lines";
    default: return "commands";
    }
}

Frame frame_of(Kind kind, Margins margins)
{
    const std::string file = file_of(empty_document(kind, margins));
    const std::string tail = tail_of(kind);
    return {file.substr(0, file.size() - tail.size()), tail};
}

DocumentMaker::DocumentMaker(Kind kind, Text text, std::size_t piece_size)
    : frame_(frame_of(kind, margins_of(text)))
{
    Document document = empty_document(kind, margins_of(text));
    Writer writer(text);
    const std::size_t wanted = std::min(piece_size, largest_piece);
    for (std::size_t characters = 0; characters < wanted;) {
        document.body.emplace_back(writer.paragraph());
        characters += std::get<Paragraph>(document.body.back()).cells.size();
    }
    piece_ = file_of(document);
    piece_.erase(0, frame_.head.size());
    piece_.resize(piece_.size() - frame_.tail.size());
}

std::string DocumentMaker::make(std::size_t size) const
{
    std::string document;
    document.reserve(size + piece_.size() + frame_.head.size() + frame_.tail.size());
    document = frame_.head;
    while (document.size() + frame_.tail.size() < size) {
        document += piece_;
    }
    return document + frame_.tail;
}

std::string make_document(Kind kind, Text text, std::size_t size)
{
    return DocumentMaker(kind, text, size).make(size);
}

std::string make_letter(Kind kind)
{
    constexpr std::size_t letter_size = 1700;
    Document document = empty_document(kind, page_margins);
    document.header.lines[0] = "Quarterly report";
    Writer writer(Text::prose);
    for (std::size_t characters = 0; characters < letter_size;) {
        document.body.emplace_back(writer.paragraph());
        characters += std::get<Paragraph>(document.body.back()).cells.size();
    }
    return file_of(document);
}

std::vector<std::string> make_plain_prose(std::size_t size)
{
    Writer writer(Text::prose);
    std::vector<std::string> piece;
    std::size_t characters = 0;
    while (characters < std::min(size, largest_plain_piece)) {
        std::string &paragraph = piece.emplace_back();
        for (const Cell &cell : writer.paragraph().cells) {
            paragraph += cell.bytes;
        }
        characters += paragraph.size();
    }
    std::vector<std::string> prose;
    for (std::size_t made = 0; made < size; made += characters) {
        prose.insert(prose.end(), piece.begin(), piece.end());
    }
    return prose;
}

} // namespace bench

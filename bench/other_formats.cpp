// The prose is ASCII without backslashes, braces and marks, so that nothing needs escaping.
#include "other_formats.h"

#include <string_view>

namespace bench {

namespace {

using namespace std::string_view_literals;

constexpr auto rich_text_head = "{\\rtf1\\ansi\\deff0{\\fonttbl{\\f0 Times;}}\n\\pard\\plain "sv;
constexpr auto rich_text_paragraph_end = "\\par\n"sv;
constexpr auto rich_text_tail = "}\n"sv;

// Magic, offset of the text, product and file type, version 5.1, no encryption, no index.
constexpr auto word_perfect_head = "\xFFWPC\x10\0\0\0\x01\x0A\0\x01\0\0\0\0"sv;
constexpr char soft_return = '\x0D';
constexpr char hard_return = '\x0A';
constexpr std::size_t word_perfect_columns = 65;

std::string join(std::string_view head, const Paragraphs &paragraphs, std::string_view end,
                 std::string_view tail)
{
    std::string text(head);
    for (const std::string &paragraph : paragraphs) {
        text.append(paragraph).append(end);
    }
    return text.append(tail);
}

// Lines end where a word would pass the last column; the soft return takes the space's place.
std::string wrapped(std::string paragraph)
{
    std::size_t line_begin = 0;
    std::size_t last_space = std::string::npos;
    for (std::size_t i = 0; i < paragraph.size(); ++i) {
        if (i - line_begin > word_perfect_columns && last_space != std::string::npos) {
            paragraph[last_space] = soft_return;
            line_begin = last_space + 1;
            last_space = std::string::npos;
        }
        if (paragraph[i] == ' ') {
            last_space = i;
        }
    }
    return paragraph;
}

} // namespace

std::string rich_text(const Paragraphs &paragraphs)
{
    return join(rich_text_head, paragraphs, rich_text_paragraph_end, rich_text_tail);
}

std::string word_perfect(const Paragraphs &paragraphs)
{
    std::string text(word_perfect_head);
    for (const std::string &paragraph : paragraphs) {
        text += wrapped(paragraph);
        text += hard_return;
    }
    return text;
}

std::string markdown(const Paragraphs &paragraphs)
{
    return join("", paragraphs, "\n\n", "");
}

} // namespace bench

// The prose is ASCII without backslashes, braces and marks, so that nothing needs escaping.
#include "bench/other_formats.h"

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

// Word for DOS: a header page, the text, then a page that says how far each look of the
// characters holds, and one for the paragraphs. Here one format applies to all.
constexpr std::size_t word_page = 128;
constexpr auto word_magic = "\x31\xBE\0\0\0\xAB"sv;
constexpr std::size_t word_text_end_offset = 0x0E;
constexpr std::size_t word_paragraph_page_offset = 0x12;
// The page after the last, six times: what these would point to does not exist.
constexpr std::size_t word_end_page_offsets[] = {0x14, 0x16, 0x18, 0x1A, 0x1C, 0x60};
constexpr std::size_t word_look_end_offset = 4;
constexpr std::size_t word_look_offset = 8;
constexpr std::size_t word_default_look = 0xFFFF;

void put_number(std::string &bytes, std::size_t offset, std::size_t value, std::size_t size)
{
    for (std::size_t i = 0; i < size; ++i) {
        bytes[offset + i] = static_cast<char>(value >> (8 * i) & 0xFF);
    }
}

std::string word_looks_page(std::size_t text_end)
{
    std::string page(word_page, '\0');
    put_number(page, 0, word_page, 4);
    put_number(page, word_look_end_offset, text_end, 4);
    put_number(page, word_look_offset, word_default_look, 2);
    page.back() = 1; // look
    return page;
}

std::string join(std::string_view head, const Paragraphs &paragraphs, std::string_view end,
                 std::string_view tail)
{
    std::string text(head);
    for (const std::string &paragraph : paragraphs) {
        text.append(paragraph).append(end);
    }
    return text.append(tail);
}

// Lines end where a word would pass the last column; the soft return replaces the space.
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

std::string word_for_dos(const Paragraphs &paragraphs)
{
    std::string file = join(std::string(word_page, '\0'), paragraphs, "\r\n", "");
    const std::size_t text_end = file.size();
    const std::size_t text_pages = (text_end + word_page - 1) / word_page;
    file.replace(0, word_magic.size(), word_magic);
    put_number(file, word_text_end_offset, text_end, 4);
    put_number(file, word_paragraph_page_offset, text_pages + 1, 2);
    for (const std::size_t offset : word_end_page_offsets) {
        put_number(file, offset, text_pages + 2, 2);
    }
    file.resize(text_pages * word_page);
    return file + word_looks_page(text_end) + word_looks_page(text_end);
}

std::string markdown(const Paragraphs &paragraphs)
{
    return join("", paragraphs, "\n\n", "");
}

} // namespace bench

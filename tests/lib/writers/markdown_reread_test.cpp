// Markdown parsed again by libcmark: whatever a paragraph's text is, the same text must come out
// with the same characters emphasised. markdown_writer_test.cpp tests what is written; this proves
// that it has the right meaning.
//
// Both sides are converted to one notation: the characters, each with its emphasis, each gap as one
// space without any, paragraphs and rules on separate lines.
#include "tests/lib/writers/written.h"

#include <cmark.h>
#include <gtest/gtest.h>

#include <array>
#include <memory>
#include <random>
#include <string>
#include <string_view>

namespace {

using namespace tests;
using pfsdoc::CodePage;

// Characters, each emphasised one preceded by 'b', 'i', or 'x' for both.
class Notation {
public:
    void character(std::string_view utf8, bool is_bold, bool is_italic)
    {
        if (utf8 == " ") {
            gap_ = true;
            return;
        }
        if (gap_ && !text_.empty() && text_.back() != '\n') {
            text_.push_back(' ');
        }
        gap_ = false;
        constexpr std::array<std::string_view, 4> marks = {"", "<b>", "<i>", "<bi>"};
        text_.append(marks[(is_bold ? 1U : 0U) + (is_italic ? 2U : 0U)]).append(utf8);
    }
    void end_line()
    {
        gap_ = false;
        if (!text_.empty() && text_.back() != '\n') {
            text_.push_back('\n');
        }
    }
    void rule()
    {
        end_line();
        text_.append("----\n");
    }
    void unexpected(std::string_view what)
    {
        end_line();
        text_.append("unexpected: ").append(what).append("\n");
    }
    const std::string &text() const
    {
        return text_;
    }

private:
    std::string text_;
    bool gap_ = false;
};

std::size_t utf8_length(char first)
{
    const auto byte = static_cast<unsigned char>(first);
    return byte < 0x80 ? 1 : byte < 0xE0 ? 2 : byte < 0xF0 ? 3 : 4;
}

// ------------------------------------------------------------- what cmark reads -------

class Rereading {
public:
    std::string read(const std::string &markdown)
    {
        const std::unique_ptr<cmark_node, void (*)(cmark_node *)> document(
            cmark_parse_document(markdown.data(), markdown.size(), CMARK_OPT_DEFAULT),
            cmark_node_free);
        const std::unique_ptr<cmark_iter, void (*)(cmark_iter *)> walk(
            cmark_iter_new(document.get()), cmark_iter_free);
        for (cmark_event_type event = cmark_iter_next(walk.get()); event != CMARK_EVENT_DONE;
             event = cmark_iter_next(walk.get())) {
            on(cmark_iter_get_node(walk.get()), event == CMARK_EVENT_ENTER);
        }
        return notation_.text();
    }

private:
    void on(cmark_node *node, bool entering)
    {
        const int step = entering ? 1 : -1;
        switch (cmark_node_get_type(node)) {
        case CMARK_NODE_DOCUMENT: break;
        case CMARK_NODE_PARAGRAPH: notation_.end_line(); break;
        case CMARK_NODE_THEMATIC_BREAK: notation_.rule(); break;
        case CMARK_NODE_TEXT: text(cmark_node_get_literal(node)); break;
        case CMARK_NODE_STRONG: bold_ += step; break;
        case CMARK_NODE_EMPH: italic_ += step; break;
        default: notation_.unexpected(cmark_node_get_type_string(node)); break;
        }
    }

    void text(std::string_view literal)
    {
        EXPECT_LE(bold_, 1);
        EXPECT_LE(italic_, 1);
        while (!literal.empty()) {
            const std::size_t length = utf8_length(literal.front());
            notation_.character(literal.substr(0, length), bold_ > 0, italic_ > 0);
            literal.remove_prefix(length);
        }
    }

    Notation notation_;
    int bold_ = 0;
    int italic_ = 0;
};

// ----------------------------------------------------------- what a document says -----

// Passes a paragraph on and records what should be read.
class Telling {
public:
    void character(char byte, bool is_bold, bool is_italic)
    {
        change(bold, bold_, is_bold);
        change(italic, italic_, is_italic);
        events_.text({&byte, 1});
        std::string utf8;
        CodePage::ibm437().append_utf8(utf8, {&byte, 1});
        expected_.character(byte == '\t' ? " " : utf8, is_bold, is_italic);
    }
    void paragraph()
    {
        events_.paragraph();
        expected_.end_line();
    }
    void page_break()
    {
        events_.page_break();
        expected_.rule();
    }

    void check() const
    {
        const std::string markdown = written("markdown", events_).text;
        EXPECT_EQ(Rereading().read(markdown), expected_.text()) << markdown;
    }

private:
    void change(int32_t code, bool &is_on, bool wanted)
    {
        if (is_on != wanted) {
            events_.attribute(code, wanted);
            is_on = wanted;
        }
    }

    TypedEvents events_;
    Notation expected_;
    bool bold_ = false;
    bool italic_ = false;
};

void check_plain(std::string_view text)
{
    Telling telling;
    for (const char byte : text) {
        telling.character(byte, false, false);
    }
    telling.paragraph();
    telling.check();
}

// Every plain text of the given length over an alphabet.
void check_all_plain(std::string_view alphabet, std::size_t length)
{
    std::string text(length, alphabet.front());
    std::size_t turned = 0;
    do {
        check_plain(text);
        for (turned = 0; turned < length; ++turned) {
            const std::size_t next = alphabet.find(text[turned]) + 1;
            text[turned] = alphabet[next % alphabet.size()];
            if (next < alphabet.size()) {
                break;
            }
        }
    } while (turned < length && !testing::Test::HasFailure());
}

// Every emphasis of every character of a text.
void check_all_emphases(std::string_view text)
{
    const std::size_t combinations = std::size_t{1} << (2 * text.size());
    for (std::size_t bits = 0; bits < combinations && !testing::Test::HasFailure(); ++bits) {
        Telling telling;
        for (std::size_t i = 0; i < text.size(); ++i) {
            telling.character(text[i], ((bits >> (2 * i)) & 1U) != 0,
                              ((bits >> (2 * i)) & 2U) != 0);
        }
        telling.paragraph();
        telling.check();
    }
}

TEST(MarkdownReread, FindsEverySingleByte)
{
    for (int byte = 0; byte < 256; ++byte) {
        const auto character = static_cast<char>(byte);
        check_plain({&character, 1});
        check_plain(std::string{'a', character, 'b'});
        check_plain(std::string{character, ' ', character, character, character});
    }
}

TEST(MarkdownReread, FindsThingsThatAreNotMarkdown)
{
    for (const std::string_view text : {
             "&amp; &#65; &#x41; &nbsp; &copy &ouml;",
             "http://example.org <http://example.org> <a@example.org>",
             "[link](url) [link]: url ![image](url) [x][y] [^1]",
             "<b>bold</b> <!-- --> <?x?> <![CDATA[ ]]> </p> <br/>",
             "``code`` ```code```",
             "| a | b |",
             "1986. A great year",
             "123456789) list",
             "1234567890) no list",
             "* * *",
             "- - -",
             "_ _ _",
             "======",
             "------",
             "# heading #",
             "C:\\DOS\\*.* \\",
             "    indented",
             "trailing   ",
             "~~~ fence",
             "[ ] task",
         }) {
        check_plain(text);
    }
}

TEST(MarkdownReread, FindsEveryShortTextOfSpecialCharacters)
{
    check_all_plain("#>-+=*_`~[]()<&!\\|.:;1a \t", 3);
}

TEST(MarkdownReread, FindsEveryShortLineThatCouldBeginABlock)
{
    check_all_plain("#-+=1.) >", 5);
}

TEST(MarkdownReread, FindsEveryEmphasisOfShortTexts)
{
    for (const std::string_view text : {"abc", "a b", "(a)", "a\"b", "\"a\"", "%%%", "a.b", "...",
                                        "a\xFF"
                                        "b",
                                        "\xFF\xFF\xFF", "\x82\xF8\x9C", "*_*", "a b.", "ab cd",
                                        "a\"\"b", "1.a", "&a;", "a\tb", "\xE0-\xE0"}) {
        check_all_emphases(text);
    }
}

// Words of special characters, letters and spaces, with emphasis that changes anywhere.
void check_random(std::mt19937 &random, std::string_view alphabet, unsigned change_every)
{
    Telling telling;
    bool is_bold = false;
    bool is_italic = false;
    const std::size_t length = 1 + random() % 60;
    for (std::size_t i = 0; i < length; ++i) {
        is_bold = is_bold != (random() % change_every == 0);
        is_italic = is_italic != (random() % change_every == 0);
        telling.character(alphabet[random() % alphabet.size()], is_bold, is_italic);
        if (random() % 40 == 0) {
            telling.page_break();
        }
        if (random() % 40 == 0) {
            telling.paragraph();
        }
    }
    telling.paragraph();
    telling.check();
}

class MarkdownRandomReread : public testing::TestWithParam<std::string_view> {};

TEST_P(MarkdownRandomReread, FindsTheSameTextAndEmphasis)
{
    std::mt19937 random(1986);
    for (unsigned i = 0; i < 4000 && !HasFailure(); ++i) {
        check_random(random, GetParam(), 2 + i % 8);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Alphabets, MarkdownRandomReread,
    testing::Values("*_ab ", "a.\"( ", "*_`~[]()<>&!\\|#+-=.:;\"' \t1a",
                    "ab \x82\xF8\xFF\xE0\xC4\x9C\".", "&#x1a;l gtamp<>/!?-",
                    "abcdefghijklmnopqrstuvwxyz ABCDEFGHIJKLMNOPQRSTUVWXYZ.,;:!?'\"()-0123456789 "
                    "%&*_#/\\"));

} // namespace

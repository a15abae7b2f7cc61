// Documents as Markdown. markdown_reread_test.cpp tests that CommonMark reads them as intended.
#include "tests/lib/writers/losses_of.h"
#include "tests/lib/writers/written.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using namespace std::string_literals;
using namespace tests;
using pfsdoc::WriterOptions;

std::string markdown(const TypedEvents &events, const WriterOptions &options = {})
{
    return written("markdown", events, options).text;
}

// One line's text, without the line end.
std::string one_line(std::string_view bytes)
{
    std::string text = markdown(TypedEvents().line(bytes));
    if (!text.empty()) {
        EXPECT_EQ(text.back(), '\n');
        text.pop_back();
    }
    return text;
}

// -------------------------------------------------------------------- blocks ----------

TEST(MarkdownWriter, SeparatesParagraphsByEmptyLines)
{
    EXPECT_EQ(markdown(TypedEvents().line("Dear Sir,").line("no.").end()), "Dear Sir,\n\nno.\n");
}

TEST(MarkdownWriter, HasNoTraceOfEmptyParagraphs)
{
    EXPECT_EQ(markdown(TypedEvents().line("One").line("").line("  ").line("two")), "One\n\ntwo\n");
    EXPECT_EQ(markdown(TypedEvents().line("").end()), "");
    EXPECT_EQ(markdown(TypedEvents().end()), "");
}

TEST(MarkdownWriter, WritesPageBreaksAsRules)
{
    EXPECT_EQ(markdown(TypedEvents().line("One").new_page().paragraph().line("Two").page_break()),
              "One\n\n***\n\nTwo\n\n***\n");
}

TEST(MarkdownWriter, EndsAParagraphAtAPageBreakInIt)
{
    TypedEvents events;
    events.attribute(bold, true).text("One ").new_page().line(" two");
    EXPECT_EQ(markdown(events), "**One**\n\n***\n\n**two**\n");
}

TEST(MarkdownWriter, LeavesPageBreaksOutWhereAsked)
{
    WriterOptions options;
    options.page_breaks = false;
    EXPECT_EQ(markdown(TypedEvents().text("One").new_page().line(" two").page_break(), options),
              "One two\n");
}

TypedEvents letter_with_headers()
{
    TypedEvents events;
    events.footer().line("The foot").close_block();
    events.header().line("The head").close_block();
    events.header().paragraph().close_block();
    events.footer().line("Its sole").close_block();
    return events.line("Between").end();
}

TEST(MarkdownWriter, PutsHeadersAtTheTopAndFootersAtTheBottom)
{
    EXPECT_EQ(markdown(letter_with_headers()), "The head\n\nBetween\n\nThe foot\n\nIts sole\n");
}

TEST(MarkdownWriter, LeavesHeadersAndFootersOutWhereAsked)
{
    WriterOptions options;
    options.headers = false;
    EXPECT_EQ(markdown(letter_with_headers(), options), "Between\n");
}

TEST(MarkdownWriter, ShowsCommandsWhereAsked)
{
    const TypedEvents events = TypedEvents().special("*DATE*").line(" today");
    EXPECT_EQ(markdown(events), "today\n");
    WriterOptions options;
    options.commands = true;
    EXPECT_EQ(markdown(events, options), "\\*DATE\\* today\n");
}

// ------------------------------------------------------------------ escaping ----------

struct Escape {
    std::string_view text;
    std::string_view markdown;
};

class MarkdownEscape : public testing::TestWithParam<Escape> {};

TEST_P(MarkdownEscape, IsWrittenWhereItIsNeeded)
{
    EXPECT_EQ(one_line(GetParam().text), GetParam().markdown);
}

INSTANTIATE_TEST_SUITE_P(
    Anywhere, MarkdownEscape,
    testing::Values(Escape{"2 * 3", R"(2 \* 3)"}, Escape{"____", R"(\_\_\_\_)"},
                    Escape{R"(C:\DOS)", R"(C:\\DOS)"}, Escape{"`code`", R"(\`code\`)"},
                    Escape{"[a](b)", R"(\[a](b))"}, Escape{"![a](b)", R"(!\[a](b))"},
                    Escape{"a | b", R"(a \| b)"}, Escape{"~~~", R"(\~\~\~)"}));

INSTANTIATE_TEST_SUITE_P(
    DependsOnWhatFollows, MarkdownEscape,
    testing::Values(Escape{"Smith & Sons", "Smith & Sons"}, Escape{"AT&T", R"(AT\&T)"},
                    Escape{"&amp; &#42;", R"(\&amp; \&#42;)"}, Escape{"1 < 2", "1 < 2"},
                    Escape{"1<2", "1<2"}, Escape{"<b> </b>", R"(\<b> \</b>)"},
                    Escape{"<!-- <?", R"(\<!-- \<?)"}, Escape{"<a@b.org>", R"(\<a@b.org>)"},
                    Escape{"<1@b.org>", R"(\<1@b.org>)"}, Escape{"www.a.org", R"(www\.a.org)"},
                    Escape{"WWW.a.org", R"(WWW\.a.org)"}, Escape{"ww.a ...", "ww.a ..."},
                    Escape{"http://a.org", R"(http\://a.org)"}, Escape{"a: //b", "a: //b"}));

INSTANTIATE_TEST_SUITE_P(AtTheBeginningOfALine, MarkdownEscape,
                         testing::Values(Escape{"# one # 2", R"(\# one # 2)"},
                                         Escape{"> quoted > so", R"(\> quoted > so)"},
                                         Escape{"- item", R"(\- item)"}, Escape{"---", R"(\---)"},
                                         Escape{"+ 5", R"(\+ 5)"}, Escape{"===", "==="},
                                         Escape{"1. One", R"(1\. One)"},
                                         Escape{"  23) x", R"(23\) x)"}, Escape{"7.", R"(7\.)"},
                                         Escape{"1.5 miles", "1.5 miles"},
                                         Escape{"in 1. or 2.", "in 1. or 2."}));

INSTANTIATE_TEST_SUITE_P(Blanks, MarkdownEscape,
                         testing::Values(Escape{"    code", "code"}, Escape{"end  ", "end"},
                                         Escape{"so.  Then", "so.  Then"},
                                         Escape{"\tone\ttwo", "one two"},
                                         Escape{"a\xFF"
                                                "b",
                                                "a&nbsp;b"},
                                         Escape{{"a\0b", 3}, "a b"}));

TEST(MarkdownEscape, StartsAgainOnEachLine)
{
    EXPECT_EQ(markdown(TypedEvents().line("a # 1.").page_break().line("# 1.")),
              "a # 1.\n\n***\n\n\\# 1.\n");
}

// ------------------------------------------------------------------ emphasis ----------

// Text with the attributes as small letters in angles: "a<b>b</b>": b, i.
TypedEvents styled(std::string_view text)
{
    TypedEvents events;
    while (!text.empty()) {
        const bool is_mark = text.front() == '<';
        const std::size_t end = is_mark ? text.find('>') + 1 : text.find('<');
        const std::string_view part = text.substr(0, end);
        if (is_mark) {
            const bool on = part[1] != '/';
            events.attribute(part[on ? 1 : 2] == 'b' ? bold : italic, on);
        } else {
            events.text(part);
        }
        text.remove_prefix(part.size());
    }
    return events.paragraph();
}

class MarkdownEmphasis : public testing::TestWithParam<Escape> {};

TEST_P(MarkdownEmphasis, IsWrittenSoThatItCounts)
{
    EXPECT_EQ(markdown(styled(GetParam().text)), std::string(GetParam().markdown) + "\n");
}

INSTANTIATE_TEST_SUITE_P(
    OfOneKind, MarkdownEmphasis,
    testing::Values(Escape{"<b>bold</b>", "**bold**"}, Escape{"<i>italic</i>", "*italic*"},
                    Escape{"so <b>bold </b>now", "so **bold** now"},
                    Escape{"so<i> it is</i> now", "so *it is* now"},
                    Escape{"<b>a</b> <b>b</b>", "**a** **b**"}, Escape{"a<b> </b>b", "a b"},
                    Escape{"<b># 1</b>", "**\\# 1**"}, Escape{"<b>1</b>. One", "**1**\\. One"},
                    Escape{"un<i>be</i>lievable", "un*be*lievable"},
                    Escape{"(<b>a</b>)", "(**a**)"}, Escape{"<b>(a)</b>.", "**(a)**."}));

INSTANTIATE_TEST_SUITE_P(
    BetweenALetterAndPunctuation, MarkdownEmphasis,
    testing::Values(Escape{"40<b>%</b>", "4&#48;**%**"}, Escape{"<b>5%</b>s", "**5%**&#115;"},
                    Escape{"a<b>\"b\"</b>c", "&#97;**\"b\"**&#99;"},
                    Escape{"\x81<b>\"x</b>", "&#252;**\"x**"}, Escape{"a<b>\x82t</b>", "a**ét**"},
                    Escape{"a<b>\xF8</b>", "&#97;**°**"}, Escape{"a<b>xy</b>\"", "a**xy**\""},
                    Escape{"a<b>x</b>\"", "&#97;**x**\""}));

INSTANTIATE_TEST_SUITE_P(OfBothKinds, MarkdownEmphasis,
                         testing::Values(Escape{"<b><i>x</i></b>", "**_x_**"},
                                         Escape{"<i><b>x</i></b>", "**_x_**"},
                                         Escape{"<b>a</b><i>b</i>", "**a**_b_"},
                                         Escape{"<i>a</i><b>b</b>", "_a_**b**"},
                                         Escape{"<b>a <i>b</b> c</i>", "**a _b_** _c_"},
                                         Escape{"<b>a<i>b</i>c</b>", "**&#97;_b_&#99;**"},
                                         Escape{"<b>a<i>bc</b>d</i>e", "**&#97;_bc_**_d_&#101;"},
                                         Escape{"<b>a</b> and <i>b</i>", "**a** and _b_"}));

TEST(MarkdownEmphasis, EndsWithItsParagraphAndGoesOnInTheNext)
{
    TypedEvents events;
    events.attribute(bold, true).line("One").line("two").attribute(bold, false).line("three");
    EXPECT_EQ(markdown(events), "**One**\n\n**two**\n\nthree\n");
}

// -------------------------------------------------------------------- losses ----------

TEST(MarkdownWriter, CountsWhatItCannotExpress)
{
    TypedEvents events;
    events.margins(10, 70).tabs({20}).line("Plain").indents(4, 0).line("Indented");
    events.attribute(underline, true).text("u").attribute(underline, false);
    events.attribute(subscript, true).text("2").attribute(subscript, false).paragraph();
    events.margins(12, 70).line("\tTab").spacing(480).line("Wide").line("");
    events.spacing(240).special("*CENTER*").line("Centred").special("*OTHER*").line("text");
    EXPECT_EQ(listed(written("markdown", events.end()).losses),
              "underline 1, subscript 1, alignment 1, indents 1, tab_stops 1, line_spacing 1, "
              "margins 1, command 1");
}

TEST(MarkdownWriter, LosesNothingOfPlainAndEmphasisedText)
{
    TypedEvents events = styled("so <b>b<i>i</i></b>");
    EXPECT_TRUE(written("markdown", events.page_break().end()).losses.empty());
}

TEST(MarkdownWriter, KeepsNoMoreFootersThanADocumentCanHave)
{
    TypedEvents events;
    for (int i = 0; i < 100; ++i) {
        events.footer().line(std::string(99, 'f')).close_block();
    }
    const Written result = written("markdown", events.line("Body").end());
    EXPECT_EQ(result.text.size(), std::string("Body\n").size() + 40 * 101);
    EXPECT_EQ(listed(result.losses), "header_footer 60");
}

// ------------------------------------------------------------------- hostile ----------

TEST(MarkdownWriter, WritesOneWordOfAMegabyte)
{
    EXPECT_EQ(markdown(TypedEvents().line(std::string(1000000, 'x'))),
              std::string(1000000, 'x') + "\n");
}

// Each character with marks of its own: output in proportion to the text, whatever its length.
TEST(MarkdownWriter, GrowsInProportionWhereEveryCharacterChangesTheAttributes)
{
    const auto size_of = [](int characters) {
        TypedEvents events;
        for (int i = 0; i < characters; ++i) {
            events.attribute(bold, i % 2 == 0).attribute(italic, i % 3 == 0).text("%");
        }
        return markdown(events.paragraph()).size();
    };
    const std::size_t small = size_of(6000);
    EXPECT_LT(small, 6000U * 8);
    EXPECT_LT(size_of(500000), small * 84);
}

} // namespace

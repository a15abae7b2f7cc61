// How lines are filled, seen in the text that comes out.
#include "tests/lib/reading/text_of.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace {

using namespace pfsdoc;
using namespace tests;
using namespace std::string_view_literals;

// ------------------------------------------------------------ paragraphs and wrapping ---

TEST(Text, OfADocumentWithoutTextIsEmpty)
{
    EXPECT_EQ(text(TypedEvents()), "");
    EXPECT_EQ(text(TypedEvents().margins(10, 69).tabs({20}).end()), "");
}

TEST(Text, WrapsParagraphsToTheMargins)
{
    TypedEvents events = narrow_page();
    events.line("The quick brown fox jumps over the lazy dog.");
    EXPECT_EQ(text(events), R"(The quick brown fox
jumps over the lazy
dog.
)");
}

TEST(Text, FillsALineUpToTheRightMarginsColumn)
{
    EXPECT_EQ(text(narrow_page().line("twelve chars 1234567")), "twelve chars 1234567\n");
    EXPECT_EQ(text(narrow_page().line("twelve chars 12345678")), "twelve chars\n12345678\n");
}

TEST(Text, ShowsTheLeftMarginAsSpaces)
{
    EXPECT_EQ(text(TypedEvents().margins(10, 29).line("The quick brown fox jumps")), page_text(R"(
          The quick brown fox
          jumps
)"));
}

TEST(Text, ShowsEmptyParagraphsAsEmptyLines)
{
    EXPECT_EQ(text(TypedEvents().margins(5, 29).line("One").line("").line("Two")), page_text(R"(
     One

     Two
)"));
    EXPECT_EQ(text(TypedEvents().margins(5, 29).special("   ").paragraph()), "\n");
}

TEST(Text, KeepsRunsOfSpacesButNotAtAWrap)
{
    EXPECT_EQ(text(narrow_page().line("a    b")), "a    b\n");
    EXPECT_EQ(text(narrow_page().line("a whole line, almost      next")),
              "a whole line, almost\nnext\n");
}

TEST(Text, KeepsTheSpacesThatAParagraphBeginsWith)
{
    EXPECT_EQ(text(narrow_page().line("  two blanks")), "  two blanks\n");
}

TEST(Text, NeverEndsALineInSpaces)
{
    EXPECT_EQ(text(narrow_page().line("word   ").line("     ").line("\t").line("x\t ")),
              "word\n\n\nx\n");
}

TEST(Text, EndsInALineEndWhereTheDocumentDoesNot)
{
    EXPECT_EQ(text(narrow_page().text("no paragraph end").end()), "no paragraph end\n");
}

TEST(Text, PutsAWordLongerThanTheLineOnItsOwnLine)
{
    EXPECT_EQ(text(narrow_page().line("a honorificabilitudinitatibus b")), R"(a
honorificabilitudinitatibus
b
)");
    EXPECT_EQ(text(TypedEvents().margins(5, 14).line("honorificabilitudinitatibus b")),
              page_text(R"(
     honorificabilitudinitatibus
     b
)"));
    EXPECT_EQ(text(narrow_page().text("honorificabilitudinitatibus b").indents(2, 4).paragraph()),
              "    honorificabilitudinitatibus\n  b\n");
}

TEST(Text, JoinsWordsAcrossAttributes)
{
    TypedEvents events = narrow_page();
    events.text("a word in two").attribute(2, true).line("halves goes over");
    EXPECT_EQ(text(events), "a word in twohalves\ngoes over\n");
}

// --------------------------------------------------------------------------- indents ---

TEST(Indents, OfASingleLineCountFromTheLeftMargin)
{
    TypedEvents events;
    events.margins(5, 29).text("Hello").indents(2, 2).paragraph();
    EXPECT_EQ(text(events), "       Hello\n");
}

TEST(Indents, OfTheFirstLineAlone)
{
    TypedEvents events = narrow_page();
    events.text("A paragraph whose first line has five").indents(0, 5).paragraph();
    EXPECT_EQ(text(events), R"(     A paragraph
whose first line has
five
)");
}

TEST(Indents, OfAllButTheFirstLine)
{
    TypedEvents events = narrow_page();
    events.text("1. The other lines stand below the text").indents(3, 0).paragraph();
    EXPECT_EQ(text(events), R"(1. The other lines
   stand below the
   text
)");
}

TEST(Indents, LeaveAtLeastOneColumn)
{
    TypedEvents events = narrow_page();
    events.text("a b").indents(500, 30000).paragraph().text("c d").indents(-3, -7).paragraph();
    EXPECT_EQ(text(events), "                   a\n                   b\nc d\n");
}

// -------------------------------------------------------------------------- tab stops ---

TEST(TabStops, AreColumnsOfThePage)
{
    TypedEvents events;
    events.margins(5, 39).tabs({10, 20}).line("a\tb\tc").line("\td");
    EXPECT_EQ(text(events), page_text(R"(
     a    b         c
          d
)"));
}

TEST(TabStops, LieBeyondTheColumnReached)
{
    EXPECT_EQ(text(TypedEvents().margins(0, 39).tabs({5, 10}).line("abcde\tf").line("abcd  \tf")),
              "abcde     f\nabcd      f\n");
}

TEST(TabStops, AreEveryEightColumnsWhereThereAreNone)
{
    EXPECT_EQ(text(TypedEvents().margins(3, 39).tabs({}).line("a\tb\tc")),
              "   a       b       c\n");
    EXPECT_EQ(text(TypedEvents().margins(0, 39).tabs({5}).line("a\tb\tc\td")),
              "a    b  c       d\n");
}

TEST(TabStops, BeyondTheRightMarginAreNotUsed)
{
    EXPECT_EQ(text(narrow_page().tabs({4, 20, 100}).line("a\tb\tc")), "a   b   c\n");
}

TEST(TabStops, AfterThemALineGoesOnAsBefore)
{
    EXPECT_EQ(text(narrow_page().tabs({10}).line("a\tb  c defghij klm")),
              "a         b  c\ndefghij klm\n");
}

TEST(TabStops, EndTheLineThatHasNone)
{
    TypedEvents events = narrow_page();
    events.tabs({10}).text("a\tb\tc\td").indents(2, 0).paragraph();
    EXPECT_EQ(text(events), "a         b     c\n  d\n");
    EXPECT_EQ(text(narrow_page().line("\t\t\tx")), "\nx\n");
}

TEST(TabStops, AreDroppedRatherThanLeaveAnEmptyLine)
{
    EXPECT_EQ(text(narrow_page().tabs({15}).line("\tlonger")), "longer\n");
    EXPECT_EQ(text(narrow_page().tabs({15}).line("a\tlonger")), "a\nlonger\n");
}

TEST(TabStops, OfANewTableReplaceTheOld)
{
    TypedEvents events;
    events.margins(0, 39).tabs({5}).line("a\tb").tabs({10}).line("a\tb");
    EXPECT_EQ(text(events), "a    b\na         b\n");
}

TEST(TabStops, OfATableThatIsNeverCompleteAreNotUsed)
{
    TypedEvents events;
    events.margins(0, 39).tabs({5}).add(TabStopsBegin{}).add(TabStop{VW_TAB_LEFT, 0, 0, 1440});
    EXPECT_EQ(text(events.line("a\tb")), "a    b\n");
}

TEST(TabStops, OutsideAllPagesAreNotUsed)
{
    TypedEvents events;
    events.margins(0, 39).add(TabStopsBegin{});
    events.add(TabStop{VW_TAB_LEFT, 0, 0, 0xFFFFFF70}).add(TabStop{7, 0, 0, 720});
    EXPECT_EQ(text(events.add(TabStopsEnd{}).line("a\tb")), "a    b\n");
}

TEST(DecimalStops, AlignPoints)
{
    TypedEvents events;
    events.margins(0, 39).tabs({}, {10, 20});
    events.line("a\t1.5\t12.25").line("bb\t100.25\t3.5").line("c\t7\t1000");
    EXPECT_EQ(text(events), R"(a        1.5      12.25
bb     100.25      3.5
c        7      1000
)");
}

TEST(DecimalStops, AlignTheFirstPointOfTheNextWordAlone)
{
    TypedEvents events;
    events.margins(0, 39).tabs({}, {10});
    events.line("\t1.234.567").line("\t12 1.5").line("\t  12.5");
    EXPECT_EQ(text(events), R"(         1.234.567
        12 1.5
        12.5
)");
}

TEST(DecimalStops, WithoutRoomLetTheWordFollowTheText)
{
    TypedEvents events;
    events.margins(0, 39).tabs({}, {10});
    events.line("Oranges\t12345.5").line("\t123456789012.5");
    EXPECT_EQ(text(events), "Oranges 12345.5\n123456789012.5\n");
}

TEST(DecimalStops, WrapAWordThatReachesBeyondTheLine)
{
    TypedEvents events = narrow_page();
    events.tabs({}, {18}).line("Pears\t1.2345").line("\t1.2345");
    EXPECT_EQ(text(events), "Pears\n1.2345\n1.2345\n");
}

TEST(DecimalStops, AreWhereTheNextTabStarts)
{
    TypedEvents events;
    events.margins(0, 39).tabs({15}, {10}).line("a\t\tb");
    EXPECT_EQ(text(events), "a              b\n");
}

// ------------------------------------------------------------------ in any stretches ---

class LaidOutLines final : public page::LineSink {
public:
    void text(std::size_t spaces, std::string_view bytes) override
    {
        page.append(spaces, ' ');
        page.append(bytes);
        ++pieces;
    }
    void line_end() override
    {
        page.push_back('\n');
    }
    void tab_gap(const page::TabGap &gap) override
    {
        gaps.push_back(gap);
    }

    std::string page;
    std::size_t pieces = 0;
    std::vector<page::TabGap> gaps;
};

LaidOutLines laid_out(std::string_view bytes, std::size_t stretch,
                      const page::LineGeometry &geometry)
{
    LaidOutLines lines;
    page::LineLayout layout(lines);
    layout.begin(geometry);
    for (; !bytes.empty(); bytes.remove_prefix(std::min(stretch, bytes.size()))) {
        layout.text(bytes.substr(0, stretch));
    }
    layout.end(true);
    // As the code page has it.
    std::replace(lines.page.begin(), lines.page.end(), '\0', ' ');
    return lines;
}

// Whole words are put down together where they can be; byte by byte they never are.
TEST(LineLayout, IsTheSameHoweverTheTextIsCutUp)
{
    std::mt19937 random(1986);
    std::size_t lines = 0;
    for (int i = 0; i < 3000; ++i) {
        constexpr std::string_view alphabet = "aaaaaaa.      \t";
        std::string bytes;
        for (std::size_t length = random() % 200; bytes.size() < length;) {
            const char byte = alphabet[random() % (alphabet.size() - random() % 2)];
            bytes.push_back(random() % 60 == 0 ? '\0' : byte);
        }
        page::LineGeometry geometry;
        geometry.width = 1 + random() % 30;
        geometry.first_line_indent = random() % geometry.width;
        geometry.indent = random() % geometry.width;
        geometry.alignment = static_cast<page::LineAlignment>(random() % 3);
        geometry.tab_stops = {{random() % 30, false}, {random() % 30, true}};
        const LaidOutLines expected = laid_out(bytes, 1, geometry);
        for (const std::size_t stretch : {2U, 7U, 50U, 200U}) {
            const LaidOutLines found = laid_out(bytes, stretch, geometry);
            ASSERT_EQ(found.page, expected.page) << i << " by " << stretch;
            ASSERT_EQ(found.gaps, expected.gaps) << i << " by " << stretch;
        }
        lines +=
            static_cast<std::size_t>(std::count(expected.page.begin(), expected.page.end(), '\n'));
    }
    EXPECT_GT(lines, 30000U);
}

// ------------------------------------------------------------------------ tab gaps ---

std::vector<page::TabGap> tab_gaps(std::string_view bytes, const page::LineGeometry &geometry)
{
    return laid_out(bytes, bytes.size(), geometry).gaps;
}

const page::LineGeometry gap_geometry = {
    .width = 20, .indent = 2, .tab_stops = {{5, false}, {15, true}}};

TEST(TabGaps, ReachFromTheTextToTheStop)
{
    EXPECT_EQ(tab_gaps("no tabs", gap_geometry), std::vector<page::TabGap>{});
    EXPECT_EQ(tab_gaps("\ta", gap_geometry), (std::vector<page::TabGap>{{5, false}}));
    EXPECT_EQ(tab_gaps("abc \ta", gap_geometry), (std::vector<page::TabGap>{{1, false}}));
}

TEST(TabGaps, OfDecimalStopsEndWhereTheWordBegins)
{
    EXPECT_EQ(tab_gaps("\t\t1.5", gap_geometry),
              (std::vector<page::TabGap>{{5, false}, {9, true}}));
    EXPECT_EQ(tab_gaps("\t\t", gap_geometry), (std::vector<page::TabGap>{{5, false}, {10, true}}));
    EXPECT_EQ(tab_gaps("0123456789012\t1234.5", gap_geometry),
              (std::vector<page::TabGap>{{1, true}}));
}

TEST(TabGaps, OfTabsThatEndTheirLineAreWhatIsLeftOfIt)
{
    EXPECT_EQ(tab_gaps("01234567 01234567 \t\ta", gap_geometry),
              (std::vector<page::TabGap>{{2, true}, {3, false}}));
    EXPECT_EQ(tab_gaps("0123456789012345678901234\ta", gap_geometry),
              (std::vector<page::TabGap>{{0, true}}));
}

TEST(TabGaps, OfTabsThatAreDroppedAreNothing)
{
    EXPECT_EQ(tab_gaps("\t0123456789abcdef", gap_geometry), (std::vector<page::TabGap>{{0, true}}));
}

TEST(TabGaps, AreOneParagraphsAlone)
{
    LaidOutLines lines;
    page::LineLayout layout(lines);
    for (int i = 0; i < 2; ++i) {
        lines.gaps.clear();
        layout.begin(gap_geometry);
        layout.text("\ta");
        layout.end(false);
        EXPECT_EQ(lines.gaps.size(), 1U);
    }
}

TEST(TabGaps, GoToTheNearestStopInWhateverOrderTheyAre)
{
    const page::LineGeometry geometry = {
        .width = 40, .tab_stops = {{30, false}, {10, false}, {20, true}, {20, false}, {50, false}}};
    // The first of two stops in one column counts: the word ends there.
    EXPECT_EQ(laid_out("\ta\tb\tc", 9, geometry).page, "          a        b          c\n");
    EXPECT_EQ(tab_gaps("\ta\tb\tc", geometry),
              (std::vector<page::TabGap>{{10, false}, {8, true}, {10, false}}));
}

// ---------------------------------------------------------------------- what is handed on ---

constexpr std::string_view prose_line =
    "The quick brown fox jumps over the lazy dog, and  then \0 some of it is said again."sv;

// Lines, not words, cost a call of the sink.
TEST(Lines, OfProseAreHandedOnWhole)
{
    const LaidOutLines lines =
        laid_out(prose_line, prose_line.size(), {.left_margin = 5, .width = 30});
    EXPECT_EQ(lines.page, "     The quick brown fox jumps over\n"
                          "     the lazy dog, and  then   some\n"
                          "     of it is said again.\n");
    EXPECT_EQ(lines.pieces, 3U);
}

// However the text was cut up: attributes in the middle of a line cost nothing here.
TEST(Lines, OfTextInManyPiecesAreHandedOnWhole)
{
    EXPECT_EQ(laid_out(prose_line, 1, {.left_margin = 5, .width = 30}).pieces, 3U);
    EXPECT_EQ(laid_out(prose_line, 3, {.width = 1000}).pieces, 1U);
}

// What is hidden between two stretches is no part of the line.
TEST(Lines, LeaveOutWhatLiesBetweenStretches)
{
    constexpr std::string_view bytes = "some *N*text *N* and more";
    LaidOutLines lines;
    page::LineLayout layout(lines);
    layout.begin({.width = 30});
    layout.text(bytes.substr(0, 5));
    layout.text(bytes.substr(8, 5));
    layout.text(bytes.substr(16));
    layout.end(true);
    EXPECT_EQ(lines.page, "some text  and more\n");
    EXPECT_EQ(lines.pieces, 3U);
}

} // namespace

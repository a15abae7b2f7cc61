// Paragraphs as words, spaces and page breaks.
#include "tests/lib/page/words_of.h"

#include <gtest/gtest.h>

namespace {

using namespace std::string_literals;
using namespace tests;
using pfsdoc::attribute_bit;
using pfsdoc::WriterOptions;

TypedEvents in_attribute(int32_t code, std::string_view before, std::string_view inside,
                         std::string_view after)
{
    TypedEvents events;
    events.text(before).attribute(code, true).text(inside).attribute(code, false);
    return events.line(after);
}

TEST(ParagraphWords, AreWhatIsBetweenSpaces)
{
    EXPECT_EQ(words_of(TypedEvents().line("Dear Sir or  Madam")),
              "[Dear] 1 [Sir] 1 [or] 2 [Madam]");
}

TEST(ParagraphWords, HaveNoSpacesAtTheEdgesOfALine)
{
    EXPECT_EQ(words_of(TypedEvents().line("   Dear Sir  ")), "[Dear] 1 [Sir]");
    EXPECT_EQ(words_of(TypedEvents().line("   ")), "");
    EXPECT_EQ(words_of(TypedEvents().line("")), "");
}

TEST(ParagraphWords, TreatTabsAndZeroBytesAsSpaces)
{
    EXPECT_EQ(words_of(TypedEvents().line("\tDay\0\t Night"s)), "[Day] 3 [Night]");
}

TEST(ParagraphWords, AreInUtf8)
{
    EXPECT_EQ(words_of(TypedEvents().line("Caf\x82 \xE0\x0D")), "[Café] 1 [α♪]");
}

TEST(ParagraphWords, HaveAPartForEachSetOfAttributes)
{
    EXPECT_EQ(words_of(in_attribute(bold, "H", "2", "O is water")), "[H][2:2][O] 1 [is] 1 [water]");
}

TEST(ParagraphWords, HaveOnePartWhereOnlyUnsupportedAttributesChange)
{
    EXPECT_EQ(words_of(in_attribute(underline, "H", "2", "O"), {}, attribute_bit(bold)), "[H2O]");
}

TEST(ParagraphWords, LeaveSpacesAtTheEdgeOfAPhraseOutsideIt)
{
    EXPECT_EQ(words_of(in_attribute(bold, "It is", " very late ", "now")),
              "[It] 1 [is] 1 [2:very] 2:1 [2:late] 1 [now]");
}

TEST(ParagraphWords, LeaveSpacesThatLackTheAttributeOutsideBothPhrases)
{
    TypedEvents events;
    events.attribute(bold, true).text("one").attribute(bold, false).text(" ");
    events.attribute(bold, true).line("two");
    EXPECT_EQ(words_of(events), "[2:one] 1 [2:two]");
}

TEST(ParagraphWords, GiveAGapWhatAllOfItShares)
{
    TypedEvents events;
    events.attribute(bold, true).attribute(italic, true).text("one ");
    events.attribute(italic, false).text(" ").attribute(italic, true).line("two");
    EXPECT_EQ(words_of(events), "[2,3:one] 2:2 [2,3:two]");
}

TEST(ParagraphWords, MeetWhereAHiddenCommandStood)
{
    TypedEvents events;
    events.text("foot").special("*PRINTER 1*").line("note");
    EXPECT_EQ(words_of(events), "[footnote]");
}

TEST(ParagraphWords, ShowCommandsWhereAsked)
{
    TypedEvents events;
    events.text("foot").special("*PRINTER 1*").line("note");
    WriterOptions options;
    options.commands = true;
    EXPECT_EQ(words_of(events, options), "[foot*PRINTER] 1 [1*note]");
}

TEST(ParagraphWords, MarkACommandThatIsCut)
{
    const std::string start = "*JOIN ";
    TypedEvents events;
    events.special(start + std::string(5000, 'x')).paragraph();
    WriterOptions options;
    options.commands = true;
    EXPECT_EQ(words_of(events, options),
              "[*JOIN] 1 [" + std::string(4096 - start.size(), 'x') + "...]");
}

TEST(ParagraphWords, EndAtAPageBreak)
{
    const TypedEvents events = TypedEvents().text("over ").page_break().line(" leaf");
    EXPECT_EQ(words_of(events), "[over] / [leaf]");
    WriterOptions options;
    options.page_breaks = false;
    EXPECT_EQ(words_of(events, options), "[over] 2 [leaf]");
}

} // namespace

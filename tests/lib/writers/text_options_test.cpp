// The text format's options, and what it counts as lost.
#include "tests/lib/writers/written.h"

#include "tests/lib/reading/text_of.h"

#include <gtest/gtest.h>

namespace {

using pfsdoc::Loss;
using pfsdoc::WriterOptions;
using tests::bold;
using tests::TypedEvents;
using tests::underline;
using tests::written;

WriterOptions wrapped(uint32_t columns)
{
    WriterOptions options;
    options.wrap = columns;
    return options;
}

TypedEvents letter()
{
    TypedEvents events;
    events.margins(10, 29);
    events.text("one two three four five six").indents(2, 4).paragraph();
    events.alignment(VW_ALIGN_RIGHT).text("seven").paragraph().end();
    return events;
}

std::string lines(std::string_view text)
{
    return std::string(text.substr(1));
}

TEST(TextOptions, FillLinesToTheDocumentsMarginsByThemselves)
{
    EXPECT_EQ(written("text", letter()).text, lines(R"(
              one two three
            four five six
                         seven
)"));
}

TEST(TextOptions, FillLinesToAWidthWithoutTheLeftMargin)
{
    EXPECT_EQ(written("text", letter(), wrapped(12)).text, lines(R"(
    one two
  three four
  five six
       seven
)"));
}

TEST(TextOptions, KeepAColumnWhereIndentsAreWiderThanLines)
{
    EXPECT_EQ(written("text", letter(), wrapped(1)).text.substr(0, 8), "one\ntwo\n");
}

TEST(TextOptions, GiveEachParagraphALine)
{
    EXPECT_EQ(written("text", letter(), wrapped(0)).text, "one two three four five six\nseven\n");
}

TEST(TextOptions, LeaveHeadersOutAndCountTheirLines)
{
    TypedEvents events;
    events.header().line("Top").paragraph().close_block();
    events.text("Body").paragraph().end();
    WriterOptions options;
    options.headers = false;
    const auto without = written("text", events, options);
    EXPECT_EQ(without.text, lines(R"(
         Body
)"));
    ASSERT_EQ(without.losses.size(), 1U);
    EXPECT_EQ(without.losses[0].loss, Loss::header_footer);
    EXPECT_EQ(without.losses[0].count, 1U);
}

TEST(TextLosses, AreNoneOfPlainText)
{
    EXPECT_TRUE(written("text", letter()).losses.empty());
}

TEST(TextLosses, AreAttributesSpacingAndHiddenCommands)
{
    TypedEvents events;
    events.spacing(VW_DOUBLE_SPACING);
    events.attribute(bold, true).text("a").attribute(underline, true).text("b");
    events.attribute(bold, false).text("c").attribute(underline, false);
    events.special("*GRAPH PIE*").special("*CENTER*").paragraph();
    events.text("d").page_break().text("e").paragraph().end();
    const auto losses = written("text", events).losses;
    ASSERT_EQ(losses.size(), 4U);
    EXPECT_EQ(losses[0].loss, Loss::bold);
    EXPECT_EQ(losses[0].count, 2U);
    EXPECT_EQ(losses[1].loss, Loss::underline);
    EXPECT_EQ(losses[1].count, 2U);
    EXPECT_EQ(losses[2].loss, Loss::line_spacing);
    EXPECT_EQ(losses[2].count, 2U);
    EXPECT_EQ(losses[3].loss, Loss::command);
    EXPECT_EQ(losses[3].count, 1U);
}

TEST(TextLosses, ArePageBreaksThatAreLeftOut)
{
    TypedEvents events;
    events.text("a").page_break().text("b").paragraph().page_break().end();
    const auto losses = written("text", events, tests::without_page_breaks()).losses;
    ASSERT_EQ(losses.size(), 1U);
    EXPECT_EQ(losses[0].loss, Loss::page_break);
    EXPECT_EQ(losses[0].count, 2U);
}

TEST(TextLosses, AreNotCommandsThatAreShown)
{
    TypedEvents events;
    events.special("*GRAPH PIE*").paragraph().end();
    EXPECT_TRUE(written("text", events, tests::with_commands()).losses.empty());
}

TEST(TextLosses, AreAlignmentsAndIndentsWhereAParagraphIsALine)
{
    const auto losses = written("text", letter(), wrapped(0)).losses;
    ASSERT_EQ(losses.size(), 2U);
    EXPECT_EQ(losses[0].loss, Loss::alignment);
    EXPECT_EQ(losses[1].loss, Loss::indents);
}

TEST(TextLosses, AreCharactersThatTheCharacterSetDoesNotDefine)
{
    const auto page = pfsdoc::CodePage::named("857");
    ASSERT_TRUE(page.ok());
    WriterOptions options;
    options.code_page = &page.value();
    TypedEvents events;
    events.margins(0, 20).text("a\xD5\xD5").paragraph().end();
    const auto result = written("text", events, options);
    EXPECT_EQ(result.text, "a\uFFFD\uFFFD\n");
    ASSERT_EQ(result.losses.size(), 1U);
    EXPECT_EQ(result.losses[0].loss, Loss::character);
    EXPECT_EQ(result.losses[0].count, 2U);
}

} // namespace

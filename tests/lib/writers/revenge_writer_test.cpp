// What a generator of librevenge is told of a document, call by call.
#include "tests/lib/writers/revenge_written.h"

#include "pfsdoc/attribute_names.h"
#include "vs_pfs.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

namespace {

using namespace tests;
using pfsdoc::AttributeCode;
using pfsdoc::WriterOptions;

constexpr int32_t bold = static_cast<int32_t>(AttributeCode::bold);
constexpr int32_t italic = static_cast<int32_t>(AttributeCode::italic);
constexpr int32_t underline = static_cast<int32_t>(AttributeCode::underline);
constexpr int32_t subscript = static_cast<int32_t>(AttributeCode::subscript);
constexpr int32_t superscript = static_cast<int32_t>(AttributeCode::superscript);

// Of all kinds of calls, how often the trace has this one.
std::size_t count_of(const std::string &trace, std::string_view call)
{
    std::size_t count = 0;
    for (std::size_t at = trace.find(call); at != std::string::npos;
         at = trace.find(call, at + call.size())) {
        ++count;
    }
    return count;
}

// librevenge's own judgement: 0 where all that is opened is closed, in order.
std::string imbalance_of(const TypedEvents &events, const WriterOptions &options = {})
{
    testing::internal::CaptureStdout();
    {
        librevenge::RVNGRawTextGenerator generator(true);
        tell(generator, events, options);
    }
    return testing::internal::GetCapturedStdout();
}

TEST(RevengeWriter, TellsAWholeDocument)
{
    const TypedEvents events = TypedEvents().margins(11, 65).line("Dear Sir").line("").end();
    EXPECT_EQ(trace_of(events),
              R"(setDocumentMetaData(dc:title: LETTER, meta:generator: pfsdoc )" PFSDOC_VERSION R"()
startDocument()
  openPageSpan(fo:margin-bottom: 1.0000in, fo:margin-left: 1.1000in, fo:margin-right: 1.8900in, fo:margin-top: 1.0000in, fo:page-height: 11.0000in, fo:page-width: 8.5000in, style:print-orientation: portrait)
    openParagraph(fo:line-height: 12.0000pt, fo:text-align: left)
      openSpan(fo:font-size: 12.0000pt, style:font-name: Courier New)
        insertText(text: Dear Sir)
      closeSpan()
    closeParagraph()
    openParagraph(fo:line-height: 12.0000pt, fo:text-align: left)
    closeParagraph()
  closePageSpan()
endDocument()
)");
}

TEST(RevengeWriter, TellsADocumentOfNothing)
{
    EXPECT_EQ(page_of(TypedEvents().end()), "");
    EXPECT_EQ(imbalance_of(TypedEvents().end()), "0\n");
}

TEST(RevengeWriter, HasADefaultPageWhereMarginsCannotBe)
{
    const std::string trace = trace_of(TypedEvents().margins(40, 40).line("x").end());
    EXPECT_NE(trace.find("fo:margin-left: 0.9000in, fo:margin-right: 1.4900in"), std::string::npos);
}

// Ten columns an inch: 100 columns need 10 inches, and 256 more than a page is high.
TEST(RevengeWriter, WidensThePageForTextThatIsWiderThanPaper)
{
    const std::string wide = trace_of(TypedEvents().margins(4, 99).line("x").end());
    EXPECT_NE(wide.find("fo:margin-left: 0.4000in, fo:margin-right: 0.0000in"), std::string::npos);
    EXPECT_NE(wide.find("fo:page-width: 10.0000in, style:print-orientation: portrait"),
              std::string::npos);
    const std::string widest = trace_of(TypedEvents().margins(0, 255).line("x").end());
    EXPECT_NE(widest.find("fo:page-width: 25.6000in, style:print-orientation: landscape"),
              std::string::npos);
}

TEST(RevengeWriter, GivesRunsOfTextTheirAttributes)
{
    const TypedEvents events = TypedEvents()
                                   .text("a")
                                   .attribute(bold, true)
                                   .text("b")
                                   .attribute(italic, true)
                                   .text("c")
                                   .attribute(bold, false)
                                   .attribute(italic, false)
                                   .attribute(underline, true)
                                   .text("d")
                                   .attribute(underline, false)
                                   .attribute(subscript, true)
                                   .text("2")
                                   .attribute(subscript, false)
                                   .attribute(superscript, true)
                                   .text("3")
                                   .attribute(superscript, false)
                                   .paragraph()
                                   .end();
    EXPECT_EQ(page_of(events),
              R"(openParagraph(fo:line-height: 12.0000pt, fo:text-align: left)
  openSpan(fo:font-size: 12.0000pt, style:font-name: Courier New)
    insertText(text: a)
  closeSpan()
  openSpan(fo:font-size: 12.0000pt, fo:font-weight: bold, style:font-name: Courier New)
    insertText(text: b)
  closeSpan()
  openSpan(fo:font-size: 12.0000pt, fo:font-style: italic, fo:font-weight: bold, style:font-name: Courier New)
    insertText(text: c)
  closeSpan()
  openSpan(fo:font-size: 12.0000pt, style:font-name: Courier New, style:text-underline-style: solid, style:text-underline-type: single)
    insertText(text: d)
  closeSpan()
  openSpan(fo:font-size: 12.0000pt, style:font-name: Courier New, style:text-position: sub 58%)
    insertText(text: 2)
  closeSpan()
  openSpan(fo:font-size: 12.0000pt, style:font-name: Courier New, style:text-position: super 58%)
    insertText(text: 3)
  closeSpan()
closeParagraph()
)");
}

// Codes without a meaning make no runs of their own.
TEST(RevengeWriter, JoinsRunsThatLookAlike)
{
    const TypedEvents events = TypedEvents().text("a").attribute(7, true).line("b").end();
    EXPECT_EQ(page_of(events), R"(openParagraph(fo:line-height: 12.0000pt, fo:text-align: left)
  openSpan(fo:font-size: 12.0000pt, style:font-name: Courier New)
    insertText(text: ab)
  closeSpan()
closeParagraph()
)");
}

// The first blank of a run is text. Those at a paragraph's start would be lost as text, those
// at its end are left out.
TEST(RevengeWriter, TellsRunsOfBlanksOneByOne)
{
    EXPECT_EQ(page_of(TypedEvents().line("  a b   c  ").end()),
              R"(openParagraph(fo:line-height: 12.0000pt, fo:text-align: left)
  openSpan(fo:font-size: 12.0000pt, style:font-name: Courier New)
    insertSpace()
    insertSpace()
    insertText(text: a b )
    insertSpace()
    insertSpace()
    insertText(text: c)
  closeSpan()
closeParagraph()
)");
}

TEST(RevengeWriter, TakesTheBlankCellForABlank)
{
    EXPECT_EQ(
        count_of(page_of(TypedEvents().line(std::string_view("a\0\0b\0", 5)).end()), "insertSpace"),
        1U);
}

TEST(RevengeWriter, KeepsBlanksThatAreUnderlined)
{
    const TypedEvents events = TypedEvents().text(" ").attribute(underline, true).line("  ").end();
    EXPECT_EQ(page_of(events), R"(openParagraph(fo:line-height: 12.0000pt, fo:text-align: left)
  openSpan(fo:font-size: 12.0000pt, style:font-name: Courier New)
    insertSpace()
  closeSpan()
  openSpan(fo:font-size: 12.0000pt, style:font-name: Courier New, style:text-underline-style: solid, style:text-underline-type: single)
    insertSpace()
    insertSpace()
  closeSpan()
closeParagraph()
)");
}

TEST(RevengeWriter, LeavesTheOuterBlanksOfAlignedParagraphsOut)
{
    const TypedEvents events = TypedEvents()
                                   .alignment(VW_ALIGN_CENTRE)
                                   .line("  Minutes ")
                                   .alignment(VW_ALIGN_RIGHT)
                                   .line(" of May");
    EXPECT_EQ(page_of(events), R"(openParagraph(fo:line-height: 12.0000pt, fo:text-align: center)
  openSpan(fo:font-size: 12.0000pt, style:font-name: Courier New)
    insertText(text: Minutes)
  closeSpan()
closeParagraph()
openParagraph(fo:line-height: 12.0000pt, fo:text-align: end)
  openSpan(fo:font-size: 12.0000pt, style:font-name: Courier New)
    insertText(text: of May)
  closeSpan()
closeParagraph()
)");
}

TEST(RevengeWriter, CountsTheFirstLinesIndentFromTheOthers)
{
    const TypedEvents events = TypedEvents()
                                   .text("1.")
                                   .indents(6, 2)
                                   .paragraph()
                                   .text("first")
                                   .indents(0, 3)
                                   .paragraph()
                                   .end();
    EXPECT_EQ(
        page_of(events),
        R"(openParagraph(fo:line-height: 12.0000pt, fo:margin-left: 0.6000in, fo:text-align: left, fo:text-indent: -0.4000in)
  openSpan(fo:font-size: 12.0000pt, style:font-name: Courier New)
    insertText(text: 1.)
  closeSpan()
closeParagraph()
openParagraph(fo:line-height: 12.0000pt, fo:text-align: left, fo:text-indent: 0.3000in)
  openSpan(fo:font-size: 12.0000pt, style:font-name: Courier New)
    insertText(text: first)
  closeSpan()
closeParagraph()
)");
}

// Column 14 is three from the margin, and one from the indent.
TEST(RevengeWriter, CountsTabStopsFromTheIndent)
{
    const TypedEvents events = TypedEvents()
                                   .margins(11, 65)
                                   .tabs({14, 24}, {49})
                                   .text("week")
                                   .indents(2, 2)
                                   .paragraph()
                                   .end();
    EXPECT_EQ(
        page_of(events),
        R"(openParagraph(fo:line-height: 12.0000pt, fo:margin-left: 0.2000in, fo:text-align: left, style:tab-stops: ((style:position: 0.1000in, style:type: left), (style:position: 1.1000in, style:type: left), (style:char: ., style:position: 3.6000in, style:type: char)))
  openSpan(fo:font-size: 12.0000pt, style:font-name: Courier New)
    insertText(text: week)
  closeSpan()
closeParagraph()
)");
}

// Every eighth column beyond the last stop, up to the right margin, where there are tabs.
TEST(RevengeWriter, AddsTheStopsThatTabsGoToWithoutAny)
{
    const TypedEvents events =
        TypedEvents().margins(10, 40).tabs({19}).text("a\t b\t").text("c").paragraph().end();
    EXPECT_EQ(
        page_of(events),
        R"(openParagraph(fo:line-height: 12.0000pt, fo:text-align: left, style:tab-stops: ((style:position: 0.9000in, style:type: left), (style:position: 1.6000in, style:type: left), (style:position: 2.4000in, style:type: left)))
  openSpan(fo:font-size: 12.0000pt, style:font-name: Courier New)
    insertText(text: a)
    insertTab()
    insertSpace()
    insertText(text: b)
    insertTab()
    insertText(text: c)
  closeSpan()
closeParagraph()
)");
}

TEST(RevengeWriter, DoublesTheLineHeight)
{
    const std::string page = page_of(TypedEvents()
                                         .spacing(VW_DOUBLE_SPACING)
                                         .line("")
                                         .spacing(VW_SINGLE_SPACING)
                                         .line("")
                                         .end());
    EXPECT_EQ(page, R"(openParagraph(fo:line-height: 24.0000pt, fo:text-align: left)
closeParagraph()
openParagraph(fo:line-height: 12.0000pt, fo:text-align: left)
closeParagraph()
)");
}

TEST(RevengeWriter, TakesLaterMarginsForParagraphMargins)
{
    const TypedEvents events = TypedEvents()
                                   .margins(10, 70)
                                   .line("")
                                   .margins(4, 64)
                                   .line("")
                                   .margins(20, 50)
                                   .line("")
                                   .end();
    EXPECT_EQ(page_of(events), R"(openParagraph(fo:line-height: 12.0000pt, fo:text-align: left)
closeParagraph()
openParagraph(fo:line-height: 12.0000pt, fo:margin-left: -0.6000in, fo:margin-right: 0.6000in, fo:text-align: left)
closeParagraph()
openParagraph(fo:line-height: 12.0000pt, fo:margin-left: 1.0000in, fo:margin-right: 2.0000in, fo:text-align: left)
closeParagraph()
)");
}

// Paper has 85 columns; this text begins where none are left.
TEST(RevengeWriter, KeepsLaterMarginsOnThePaper)
{
    const TypedEvents events = TypedEvents().margins(10, 70).line("").margins(200, 250).line("");
    EXPECT_EQ(page_of(events), R"(openParagraph(fo:line-height: 12.0000pt, fo:text-align: left)
closeParagraph()
openParagraph(fo:line-height: 12.0000pt, fo:margin-left: 7.4000in, fo:margin-right: -1.4000in, fo:text-align: left)
closeParagraph()
)");
}

// The header takes three lines of the margin above, empty ones included.
TEST(RevengeWriter, TellsHeadersAndFootersBeforeTheBody)
{
    const TypedEvents events = TypedEvents()
                                   .header()
                                   .line("")
                                   .line("Harbour")
                                   .close_block()
                                   .footer()
                                   .line("one")
                                   .line("two")
                                   .close_block()
                                   .line("body")
                                   .end();
    EXPECT_NE(trace_of(events).find("fo:margin-bottom: 0.5000in"), std::string::npos);
    EXPECT_NE(trace_of(events).find("fo:margin-top: 0.5000in"), std::string::npos);
    EXPECT_EQ(page_of(events), R"(openHeader(librevenge:occurrence: all)
  openParagraph(fo:line-height: 12.0000pt, fo:text-align: left)
    openSpan(fo:font-size: 12.0000pt, style:font-name: Courier New)
      insertText(text: Harbour)
    closeSpan()
  closeParagraph()
  openParagraph(fo:line-height: 12.0000pt, fo:text-align: left)
  closeParagraph()
  openParagraph(fo:line-height: 12.0000pt, fo:text-align: left)
  closeParagraph()
closeHeader()
openFooter(librevenge:occurrence: all)
  openParagraph(fo:line-height: 12.0000pt, fo:text-align: left)
  closeParagraph()
  openParagraph(fo:line-height: 12.0000pt, fo:text-align: left)
    openSpan(fo:font-size: 12.0000pt, style:font-name: Courier New)
      insertText(text: one)
    closeSpan()
  closeParagraph()
  openParagraph(fo:line-height: 12.0000pt, fo:text-align: left)
    openSpan(fo:font-size: 12.0000pt, style:font-name: Courier New)
      insertText(text: two)
    closeSpan()
  closeParagraph()
closeFooter()
openParagraph(fo:line-height: 12.0000pt, fo:text-align: left)
  openSpan(fo:font-size: 12.0000pt, style:font-name: Courier New)
    insertText(text: body)
  closeSpan()
closeParagraph()
)");
}

TEST(RevengeWriter, LeavesEmptyHeadersOut)
{
    const TypedEvents events =
        TypedEvents().header().line(" ").close_block().footer().line("").close_block().line("");
    EXPECT_EQ(count_of(trace_of(events), "openHeader"), 0U);
    EXPECT_EQ(count_of(trace_of(events), "openFooter"), 0U);
    EXPECT_NE(trace_of(events).find("fo:margin-top: 1.0000in"), std::string::npos);
}

TEST(RevengeWriter, LeavesHeadersOutIfAskedTo)
{
    WriterOptions options;
    options.headers = false;
    const TypedEvents events = TypedEvents().header().line("Harbour").close_block().line("");
    EXPECT_EQ(count_of(trace_of(events, options), "Harbour"), 0U);
}

TEST(RevengeWriter, CountsHeaderLinesThatComeTooLateOrAreTooMany)
{
    librevenge::RVNGString text;
    librevenge::RVNGTextTextGenerator generator(text);
    pfsdoc::writers::RevengeWriter writer(generator, letter(), {});
    pfsdoc::reading::ParagraphCollector collector(writer, spacing_rule);
    TypedEvents events;
    events.header();
    for (std::size_t line = 0; line < pfsdoc::writers::RevengeWriter::max_block_lines + 2; ++line) {
        events.line("x");
    }
    events.close_block().line("body").footer().line("late").close_block().end();
    events.tell(collector);
    ASSERT_EQ(writer.losses().entries().size(), 1U);
    EXPECT_EQ(writer.losses().entries()[0].loss, pfsdoc::Loss::header_footer);
    EXPECT_EQ(writer.losses().entries()[0].count, 3U);
}

TEST(RevengeWriter, BreaksThePageBeforeAParagraph)
{
    EXPECT_EQ(page_of(TypedEvents().line("one").page_break().line("two").end()),
              R"(openParagraph(fo:line-height: 12.0000pt, fo:text-align: left)
  openSpan(fo:font-size: 12.0000pt, style:font-name: Courier New)
    insertText(text: one)
  closeSpan()
closeParagraph()
openParagraph(fo:break-before: page, fo:line-height: 12.0000pt, fo:text-align: left)
  openSpan(fo:font-size: 12.0000pt, style:font-name: Courier New)
    insertText(text: two)
  closeSpan()
closeParagraph()
)");
}

// What follows is a line of the same paragraph, without the blanks it begins with.
TEST(RevengeWriter, CutsAParagraphAtAPageBreak)
{
    const TypedEvents events =
        TypedEvents().text("one").page_break().text("  two").indents(2, 5).paragraph().end();
    EXPECT_EQ(
        page_of(events),
        R"(openParagraph(fo:line-height: 12.0000pt, fo:margin-left: 0.2000in, fo:text-align: left, fo:text-indent: 0.3000in)
  openSpan(fo:font-size: 12.0000pt, style:font-name: Courier New)
    insertText(text: one)
  closeSpan()
closeParagraph()
openParagraph(fo:break-before: page, fo:line-height: 12.0000pt, fo:margin-left: 0.2000in, fo:text-align: left)
  openSpan(fo:font-size: 12.0000pt, style:font-name: Courier New)
    insertText(text: two)
  closeSpan()
closeParagraph()
)");
}

// An empty page has an empty paragraph.
TEST(RevengeWriter, KeepsEmptyPages)
{
    const TypedEvents events =
        TypedEvents().page_break().page_break().line("").page_break().page_break().end();
    EXPECT_EQ(page_of(events), R"(openParagraph(fo:line-height: 12.0000pt, fo:text-align: left)
closeParagraph()
openParagraph(fo:break-before: page, fo:line-height: 12.0000pt, fo:text-align: left)
closeParagraph()
openParagraph(fo:break-before: page, fo:line-height: 12.0000pt, fo:text-align: left)
closeParagraph()
openParagraph(fo:break-before: page, fo:line-height: 12.0000pt, fo:text-align: left)
closeParagraph()
openParagraph(fo:break-before: page, fo:line-height: 12.0000pt, fo:text-align: left)
closeParagraph()
)");
}

TEST(RevengeWriter, GoesOnOverPageBreaksIfAskedTo)
{
    WriterOptions options;
    options.page_breaks = false;
    const TypedEvents events =
        TypedEvents().text("on").page_break().line("e").page_break().line("two").end();
    const std::string page = page_of(events, options);
    EXPECT_EQ(count_of(page, "fo:break-before"), 0U);
    EXPECT_EQ(count_of(page, "insertText(text: one)"), 1U);
    EXPECT_EQ(count_of(page, "openParagraph"), 2U);
}

// A centre command takes effect whether it is shown or not; one alone on its line leaves none.
TEST(RevengeWriter, HidesCommands)
{
    const TypedEvents events =
        TypedEvents().special("*CENTER*").line("Minutes").special("*JOIN NOTES*").paragraph().end();
    EXPECT_EQ(page_of(events), R"(openParagraph(fo:line-height: 12.0000pt, fo:text-align: center)
  openSpan(fo:font-size: 12.0000pt, style:font-name: Courier New)
    insertText(text: Minutes)
  closeSpan()
closeParagraph()
)");
}

TEST(RevengeWriter, ShowsCommandsIfAskedTo)
{
    WriterOptions options;
    options.commands = true;
    const std::string long_command = "*" + std::string(5000, 'x');
    const TypedEvents events =
        TypedEvents().special("*JOIN NOTES*").line(" a").special(long_command).paragraph().end();
    const std::string page = page_of(events, options);
    EXPECT_EQ(count_of(page, "insertText(text: *JOIN NOTES* a)"), 1U);
    EXPECT_EQ(count_of(page, "xxx...)"), 1U);
}

TEST(RevengeWriter, WritesCharactersOfTheCodePage)
{
    EXPECT_EQ(count_of(page_of(TypedEvents().line("Caf\x82 <\x01&>").end()),
                       "insertText(text: Café <☺&>)"),
              1U);
}

TEST(RevengeWriter, CountsWhatItHides)
{
    librevenge::RVNGString text;
    librevenge::RVNGTextTextGenerator generator(text);
    pfsdoc::writers::RevengeWriter writer(generator, letter(), {});
    pfsdoc::reading::ParagraphCollector collector(writer, spacing_rule);
    TypedEvents().text("a").special("*JOIN NOTES*").line("b").end().tell(collector);
    ASSERT_EQ(writer.losses().entries().size(), 1U);
    EXPECT_EQ(writer.losses().entries()[0].loss, pfsdoc::Loss::command);
    EXPECT_STREQ(text.cstr(), "ab\n");
}

// ------------------------------------------------------------------ other generators -----

TEST(RevengeWriter, ServesTheTextGenerator)
{
    librevenge::RVNGString text;
    librevenge::RVNGTextTextGenerator generator(text);
    tell(generator, TypedEvents().line("Dear  Sir\tor Madam").line("").line("Yours").end());
    EXPECT_STREQ(text.cstr(), "Dear  Sir\tor Madam\n\nYours\n");
}

TEST(RevengeWriter, ServesTheHtmlGenerator)
{
    librevenge::RVNGString html;
    librevenge::RVNGHTMLTextGenerator generator(html);
    tell(generator, TypedEvents().text("a <b> ").attribute(bold, true).line("bold & loud").end());
    EXPECT_NE(std::string_view(html.cstr()).find("a &lt;b&gt; "), std::string_view::npos);
    EXPECT_NE(std::string_view(html.cstr()).find("bold &amp; loud"), std::string_view::npos);
}

// A style is defined where it is first used, in the header and in the body anew.
TEST(RevengeWriter, DefinesStylesOfAGeneratorThatKeepsThem)
{
    const TypedEvents events = TypedEvents()
                                   .header()
                                   .line("h")
                                   .close_block()
                                   .line("a")
                                   .line("b")
                                   .page_break()
                                   .attribute(bold, true)
                                   .line("c")
                                   .end();
    EXPECT_EQ(page_of(events, {}, {.keeps_styles = true}),
              R"(openHeader(librevenge:occurrence: all)
  defineParagraphStyle(fo:line-height: 12.0000pt, fo:text-align: left, librevenge:paragraph-id: 1)
  openParagraph(librevenge:paragraph-id: 1)
    defineCharacterStyle(fo:font-size: 12.0000pt, librevenge:span-id: 2, style:font-name: Courier New)
    openSpan(librevenge:span-id: 2)
      insertText(text: h)
    closeSpan()
  closeParagraph()
  openParagraph(librevenge:paragraph-id: 1)
  closeParagraph()
  openParagraph(librevenge:paragraph-id: 1)
  closeParagraph()
closeHeader()
defineParagraphStyle(fo:line-height: 12.0000pt, fo:text-align: left, librevenge:paragraph-id: 3)
openParagraph(librevenge:paragraph-id: 3)
  defineCharacterStyle(fo:font-size: 12.0000pt, librevenge:span-id: 4, style:font-name: Courier New)
  openSpan(librevenge:span-id: 4)
    insertText(text: a)
  closeSpan()
closeParagraph()
openParagraph(librevenge:paragraph-id: 3)
  openSpan(librevenge:span-id: 4)
    insertText(text: b)
  closeSpan()
closeParagraph()
defineParagraphStyle(fo:break-before: page, fo:line-height: 12.0000pt, fo:text-align: left, librevenge:paragraph-id: 5)
openParagraph(librevenge:paragraph-id: 5)
  defineCharacterStyle(fo:font-size: 12.0000pt, fo:font-weight: bold, librevenge:span-id: 6, style:font-name: Courier New)
  openSpan(librevenge:span-id: 6)
    insertText(text: c)
  closeSpan()
closeParagraph()
)");
}

// ------------------------------------------------------------------ hostile documents -----

TEST(RevengeWriter, BalancesAnAttributeChangeOnEveryCharacter)
{
    TypedEvents events;
    constexpr std::size_t characters = 20'000;
    for (std::size_t i = 0; i < characters; ++i) {
        events.attribute(i % 2 == 0 ? bold : underline, i % 4 < 2).text("x");
    }
    events.end();
    EXPECT_EQ(imbalance_of(events), "0\n");
    EXPECT_EQ(count_of(trace_of(events), "openSpan"), characters);
}

TEST(RevengeWriter, BalancesAVeryLongParagraph)
{
    TypedEvents events;
    const std::string text(1'000'000, '#');
    events.text(text).text("\t").text(text).end();
    EXPECT_EQ(imbalance_of(events), "0\n");
    EXPECT_EQ(count_of(trace_of(events), "#"), 2 * text.size());
}

TEST(RevengeWriter, BalancesThousandsOfPageBreaks)
{
    TypedEvents events;
    constexpr std::size_t pages = 5'000;
    for (std::size_t i = 0; i < pages; ++i) {
        events.page_break();
        if (i % 3 == 0) {
            events.text("x");
        }
    }
    events.end();
    EXPECT_EQ(imbalance_of(events), "0\n");
    EXPECT_EQ(count_of(trace_of(events), "fo:break-before"), pages);
}

TEST(RevengeWriter, BalancesParagraphsThatAllLookDifferent)
{
    TypedEvents events;
    constexpr int32_t looks = 200;
    for (int32_t i = 0; i < looks; ++i) {
        events.margins(i, 255).tabs({static_cast<uint32_t>(i) + 3}).text("x").indents(i, 0);
        events.paragraph();
    }
    events.end();
    EXPECT_EQ(imbalance_of(events), "0\n");
    EXPECT_EQ(count_of(trace_of(events), "openParagraph"), static_cast<std::size_t>(looks));
}

TEST(RevengeWriter, BalancesBlocksThatDoNotEnd)
{
    EXPECT_EQ(imbalance_of(TypedEvents().header().text("a").footer().text("b")), "0\n");
    EXPECT_EQ(imbalance_of(TypedEvents().close_block().text("a").header().end()), "0\n");
}

TEST(RevengeWriter, StopsAtTheMostElements)
{
    librevenge::RVNGString text;
    librevenge::RVNGTextTextGenerator generator(text);
    pfsdoc::writers::RevengeWriter writer(generator, letter(), {}, {.most_elements = 10});
    pfsdoc::reading::ParagraphCollector collector(writer, spacing_rule);
    TypedEvents().line("\t\t\t\t\t\t\t\t").tell(collector); // with the paragraph and its run, 10
    EXPECT_THROW(TypedEvents().line("").tell(collector), pfsdoc::writers::TooManyElements);
}

// A generator that keeps styles holds more for one than for a paragraph.
TEST(RevengeWriter, CountsStylesAsSeveralElements)
{
    librevenge::RVNGString text;
    librevenge::RVNGTextTextGenerator generator(text);
    pfsdoc::writers::RevengeWriter writer(generator, letter(), {},
                                          {.most_elements = 30, .keeps_styles = true});
    pfsdoc::reading::ParagraphCollector collector(writer, spacing_rule);
    TypedEvents events;
    for (int32_t indent = 0; indent < 10; ++indent) {
        events.indents(indent, 0).paragraph();
    }
    EXPECT_THROW(events.tell(collector), pfsdoc::writers::TooManyElements);
}

} // namespace

// Text in OpenDocument: attributes, and the spaces that readers would join or drop.
#include "tests/lib/writers/odf_written.h"

#include "vs_pfs.h"

#include <string>
#include <string_view>

namespace {

using namespace pfsdoc;
using namespace tests;

// ------------------------------------------------------------------------------- text ---

TEST(OdfText, HasSpansWhereItHasAttributes)
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
                                   .attribute(superscript, true)
                                   .text("3")
                                   .paragraph()
                                   .end();
    EXPECT_EQ(body(events), "<text:p text:style-name=\"Standard\">a"
                            "<text:span text:style-name=\"Bold\">b</text:span>"
                            "<text:span text:style-name=\"Bold-Italic\">c</text:span>"
                            "<text:span text:style-name=\"Underline\">d</text:span>"
                            "<text:span text:style-name=\"Sub\">2</text:span>"
                            "<text:span text:style-name=\"Super\">3</text:span></text:p>\n");
    const std::string xml = flat(events);
    for (const char *properties :
         {R"(fo:font-weight="bold")", R"(fo:font-style="italic")",
          R"(style:text-underline-style="solid")", R"(style:text-position="super 58%")",
          R"(style:text-position="sub 58%")"}) {
        EXPECT_TRUE(contains(xml, properties)) << properties;
    }
}

// Codes without a meaning make no runs of their own.
TEST(OdfText, HasNoSpansForUnknownAttributes)
{
    EXPECT_EQ(body(TypedEvents().text("a").attribute(7, true).line("b")),
              "<text:p text:style-name=\"Standard\">ab</text:p>\n");
}

// The first space of a run is text. Those at a paragraph's start would be lost as text, those
// at its end are left out.
TEST(OdfText, CountsSpacesThatReadersWouldDrop)
{
    EXPECT_EQ(text_of("  a b   c  "), R"(<text:s text:c="2"/>a b <text:s text:c="2"/>c)");
    EXPECT_EQ(text_of(" a"), "<text:s/>a");
    EXPECT_EQ(text_of("a  b"), "a <text:s/>b");
    EXPECT_EQ(text_of("   "), "");
}

TEST(OdfText, TakesTheZeroByteForASpace)
{
    EXPECT_EQ(text_of(std::string_view("a\0b\0\0c\0", 7)), "a b <text:s/>c");
    EXPECT_EQ(text_of(std::string_view("\0a", 2)), "<text:s/>a");
}

TEST(OdfText, HasTabs)
{
    const std::string all = body(TypedEvents().margins(10, 40).line("\ta\t b \tc"));
    EXPECT_TRUE(contains(all, "><text:tab/>a<text:tab/><text:s/>b <text:tab/>c<"));
}

TEST(OdfText, EscapesMarkup)
{
    EXPECT_EQ(text_of("</text:p> <x/>&\"'"), "&lt;/text:p&gt; &lt;x/&gt;&amp;\"'");
}

TEST(OdfText, WritesCharactersOfTheCodePage)
{
    EXPECT_EQ(text_of("Caf\x82 <\x01&>"), "Café &lt;☺&amp;&gt;");
}

// A space that is not the last of its run of text may be followed by one of the next run.
TEST(OdfText, CountsSpacesAcrossAttributes)
{
    const TypedEvents events = TypedEvents()
                                   .text("a ")
                                   .attribute(bold, true)
                                   .text("  b ")
                                   .attribute(bold, false)
                                   .line("c");
    EXPECT_EQ(body(events), "<text:p text:style-name=\"Standard\">a "
                            "<text:span text:style-name=\"Bold\"><text:s text:c=\"2\"/>b "
                            "</text:span>c</text:p>\n");
}

TEST(OdfText, KeepsSpacesThatAreUnderlined)
{
    const TypedEvents events = TypedEvents().text(" ").attribute(underline, true).line("  ").end();
    EXPECT_EQ(body(events), "<text:p text:style-name=\"Standard\"><text:s/>"
                            "<text:span text:style-name=\"Underline\">"
                            "<text:s text:c=\"2\"/></text:span></text:p>\n");
}

TEST(OdfText, HasNoEmptySpans)
{
    const TypedEvents events = TypedEvents().text("a").attribute(bold, true).line("  ").end();
    EXPECT_EQ(body(events), "<text:p text:style-name=\"Standard\">a</text:p>\n");
    EXPECT_FALSE(contains(flat(events), "style:name=\"Bold\""));
}

TEST(OdfText, LeavesTheOuterSpacesOfAlignedParagraphsOut)
{
    const TypedEvents events = TypedEvents()
                                   .alignment(VW_ALIGN_CENTRE)
                                   .line("  Minutes ")
                                   .alignment(VW_ALIGN_RIGHT)
                                   .line(" of May");
    EXPECT_EQ(body(events), "<text:p text:style-name=\"Center\">Minutes</text:p>\n"
                            "<text:p text:style-name=\"Right\">of May</text:p>\n");
}

} // namespace

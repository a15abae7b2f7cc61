// Plain text: the result for each part of a document.
#include "tests/lib/reading/text_of.h"

#include "lib/reading/text_commands.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <string>

namespace {

using namespace pfsdoc;
using namespace tests;

// --------------------------------------------------------------------------- margins ---

TEST(Margins, ThatCannotBeCountAsTheDefault)
{
    std::string line = "word";
    for (int i = 0; i < 20; ++i) {
        line += " word";
    }
    const std::string expected =
        "         word word word word word word word word word word word word\n"
        "         word word word word word word word word word\n";
    EXPECT_EQ(text(TypedEvents().line(line)), expected) << "none reported";
    EXPECT_EQ(text(TypedEvents().margins(70, 10).line(line)), expected) << "crossed";
    EXPECT_EQ(text(TypedEvents().margins(40, 40).line(line)), expected) << "equal";
    EXPECT_EQ(text(TypedEvents().margins(-1, 40).line(line)), expected) << "negative";
    EXPECT_EQ(text(TypedEvents().margins(-2, -1).line(line)), expected) << "both negative";
    EXPECT_EQ(text(TypedEvents().margins(10, 32767).line(line)), expected) << "huge";
    EXPECT_EQ(text(TypedEvents().margins(32766, 32767).line(line)), expected) << "far right";
    EXPECT_EQ(text(TypedEvents().add(Margins{INT32_MIN, INT32_MAX}).line(line)), expected);
}

TEST(Margins, MayBeAsFarOutAsARulerCounts)
{
    EXPECT_EQ(text(TypedEvents().margins(250, 255).line("a b c d")),
              std::string(250, ' ') + "a b c\n" + std::string(250, ' ') + "d\n");
}

// ------------------------------------------------------------------------- alignment ---

TEST(AlignedLines, LieBetweenTheMargins)
{
    TypedEvents events;
    events.margins(5, 24).alignment(VW_ALIGN_CENTRE).line("Title");
    events.alignment(VW_ALIGN_RIGHT).line("Date").alignment(VW_ALIGN_LEFT).line("Text");
    EXPECT_EQ(text(events), page_text(R"(
            Title
                     Date
     Text
)"));
}

TEST(AlignedLines, IgnoreTheirOuterSpacesAndIndents)
{
    TypedEvents events = narrow_page();
    events.alignment(VW_ALIGN_RIGHT).text("  Date  ").indents(3, 3).paragraph();
    EXPECT_EQ(text(events), "                Date\n");
}

TEST(AlignedLines, AreWrappedAndAlignedOneByOne)
{
    TypedEvents events = narrow_page();
    events.alignment(VW_ALIGN_CENTRE).line("The quick brown fox jumps over it");
    EXPECT_EQ(text(events), "The quick brown fox\n   jumps over it\n");
}

TEST(AlignedLines, StartAtTheMarginWhenTooLong)
{
    TypedEvents events = narrow_page();
    events.alignment(VW_ALIGN_RIGHT).line("a honorificabilitudinitatibus b");
    EXPECT_EQ(text(events), "                   a\n"
                            "honorificabilitudinitatibus\n"
                            "                   b\n");
}

TEST(AlignedLines, OfTheBodyAreThoseThatBeginWithACommand)
{
    TypedEvents events = narrow_page();
    events.special("*CENTER*").line("Title").special("*c*").line(" Title ");
    events.special("*Right*").line("Date").special("*R*").line("Date").line("Text");
    EXPECT_EQ(text(events), R"(       Title
       Title
                Date
                Date
Text
)");
}

TEST(AlignedLines, CommandMayFollowSpacesAndOtherCommandsButNotText)
{
    TypedEvents events = narrow_page();
    events.special("*JY N*").text(" ").special("*R*").line("Date");
    events.text("Text ").special("*R*").line("goes on");
    EXPECT_EQ(text(events), "                Date\nText goes on\n");
}

TEST(AlignedLines, CommandIsKnownInFullOnly)
{
    EXPECT_EQ(reading::alignment_command("*CENTER*"), VW_ALIGN_CENTRE);
    EXPECT_EQ(reading::alignment_command("*cEnTeR*"), VW_ALIGN_CENTRE);
    EXPECT_EQ(reading::alignment_command("*C*"), VW_ALIGN_CENTRE);
    EXPECT_EQ(reading::alignment_command("*RIGHT*"), VW_ALIGN_RIGHT);
    EXPECT_EQ(reading::alignment_command("*r*"), VW_ALIGN_RIGHT);
    for (const char *other : {"", "*", "**", "*C", "C*", "*CC*", "*CENTER *", "*RIGH*", "*N*"}) {
        EXPECT_EQ(reading::alignment_command(other), std::nullopt) << other;
    }
}

// ------------------------------------------------------------------------ page breaks ---

TEST(PageBreaks, AreFormFeedsBeforeTheNextLine)
{
    TypedEvents events = narrow_page();
    events.line("One").new_page().paragraph().line("Two");
    EXPECT_EQ(text(events), "One\n\fTwo\n");
    EXPECT_EQ(text(TypedEvents().margins(3, 8).line("One").page_break().line("Two")),
              "   One\n\f   Two\n");
}

TEST(PageBreaks, InMidParagraphEndTheLine)
{
    TypedEvents events = narrow_page();
    events.text("One ").new_page().text(" two three four five six").indents(2, 4).paragraph();
    EXPECT_EQ(text(events), "    One\n\f  two three four\n  five six\n");
}

TEST(PageBreaks, AtAParagraphsEndLeaveNoEmptyLine)
{
    EXPECT_EQ(text(narrow_page().text("One").new_page().paragraph().line("Two")), "One\n\fTwo\n");
}

TEST(PageBreaks, AtTheEndOfTheDocumentAreFollowedByALineEnd)
{
    EXPECT_EQ(text(narrow_page().line("One").page_break().end()), "One\n\f\n");
}

TEST(PageBreaks, LeaveNoTraceWhereTheyAreNotWanted)
{
    TypedEvents events = narrow_page();
    events.line("One").new_page().paragraph().text("two ").page_break().line("three");
    EXPECT_EQ(text(events, without_page_breaks()), "One\ntwo three\n");
}

// --------------------------------------------------------------------------- commands ---

TEST(Commands, AreHidden)
{
    EXPECT_EQ(text(narrow_page().text("be").special("*PRINTER 27*").line("fore")), "before\n");
}

TEST(Commands, ThatAreAllOfAParagraphLeaveNoLine)
{
    TypedEvents events = narrow_page();
    events.line("One").special("*JY N*").paragraph().special("*C*").text(" ").paragraph();
    EXPECT_EQ(text(events.line("Two")), "One\nTwo\n");
}

TEST(Commands, AreShownAsStoredWhenAskedFor)
{
    TypedEvents events = narrow_page();
    events.line("One").new_page().paragraph().text("be").special("*p x*").line("fore");
    EXPECT_EQ(text(events, with_commands()), "One\n\f*NEW PAGE*\nbe*p x*fore\n");
    EXPECT_EQ(text(narrow_page().special("*R*").line("Date"), with_commands()),
              "             *R*Date\n");
}

TEST(Commands, ThatAreTruncatedAreMarked)
{
    TypedEvents events = narrow_page();
    events.special("*" + std::string(100000, 'x')).paragraph();
    const std::string kept(reading::ParagraphCollector::max_command_bytes - 1, 'x');
    EXPECT_EQ(text(events, with_commands()), "*" + kept + "...\n");
    EXPECT_EQ(text(events), "");
}

// ----------------------------------------------------------------- headers and footers ---

TEST(HeadersAndFooters, AreAtTheTextsStartAndEnd)
{
    TypedEvents events;
    events.margins(2, 21).indents(0, 0);
    events.alignment(VW_ALIGN_LEFT).header().alignment(VW_ALIGN_CENTRE).line("Memo");
    events.alignment(VW_ALIGN_LEFT).alignment(VW_ALIGN_CENTRE).line("of July").close_block();
    events.alignment(VW_ALIGN_LEFT).footer().alignment(VW_ALIGN_RIGHT).line("Page 1");
    events.alignment(VW_ALIGN_LEFT).line("end").close_block();
    events.indents(0, 0).alignment(VW_ALIGN_LEFT).line("Dear Sir").line("").line("Yours").end();
    EXPECT_EQ(text(events), page_text(R"(
          Memo
        of July

  Dear Sir

  Yours

                Page 1
  end
)"));
}

TEST(HeadersAndFooters, AreSeparatedByOneLineWhereTheBodyIsEmpty)
{
    TypedEvents events = narrow_page();
    events.header().line("Top").close_block().footer().line("Bottom").close_block().end();
    EXPECT_EQ(text(events), "Top\n\nBottom\n");
}

TEST(HeadersAndFooters, AloneHaveNoEmptyLine)
{
    EXPECT_EQ(text(narrow_page().header().line("Top").close_block().end()), "Top\n");
    EXPECT_EQ(text(narrow_page().footer().line("Bottom").close_block().end()), "Bottom\n");
}

// A document with a second footer line reports two header lines, whether it has any or not.
TEST(HeadersAndFooters, WithoutTextAreLeftOut)
{
    TypedEvents events = narrow_page();
    events.header().line("").line("").close_block().footer().line("Bottom").close_block();
    EXPECT_EQ(text(events.line("Body").end()), "Body\n\nBottom\n");
}

TEST(HeadersAndFooters, AreCutOffNowhere)
{
    const std::string longest(255, 'x');
    TypedEvents events = narrow_page();
    events.footer().line(longest).line(longest).close_block();
    EXPECT_EQ(text(events.end()), longest + "\n" + longest + "\n");
}

TEST(HeadersAndFooters, FollowAFormFeedOnANewPage)
{
    TypedEvents events = narrow_page();
    events.footer().line("Bottom").close_block().line("Body").page_break().end();
    EXPECT_EQ(text(events), "Body\n\f\nBottom\n");
}

// ------------------------------------------------------------------------- characters ---

TEST(Characters, AreThoseOfTheCodePage)
{
    EXPECT_EQ(text(narrow_page().line("Gr\x81\xE1\x65 \x9C\x35 \xC4\xC4\x10")), "Grüße £5 ──►\n");
}

TEST(Characters, LeaveNoControlCodeRaw)
{
    std::string all;
    for (int byte = 0; byte < 256; ++byte) {
        all += static_cast<char>(byte);
    }
    TypedEvents events = narrow_page();
    events.header().line(all).close_block().footer().line(all).close_block();
    events.line(all).special("*" + all + "*").line("");
    for (const char character : text(events, with_commands())) {
        const auto byte = static_cast<unsigned char>(character);
        EXPECT_TRUE((byte >= 0x20 && byte != 0x7F) || byte == '\n') << unsigned{byte};
    }
}

TEST(Characters, OfAZeroByteIsASpace)
{
    EXPECT_EQ(text(narrow_page().line(std::string("a\0b\0", 4))), "a b\n");
}

// A line's columns are characters, however many bytes they take in UTF-8.
TEST(Characters, CountAsOneColumnEach)
{
    EXPECT_EQ(text(narrow_page().line("\xC4\xC4\xC4\xC4\xC4\xC4\xC4\xC4\xC4\xC4 123456789 b")),
              "────────── 123456789\nb\n");
}

} // namespace

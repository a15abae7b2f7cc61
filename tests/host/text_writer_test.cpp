// Plain text as people get it: events in, the whole text out.
#include "text_writer.h"

#include "text_commands.h"
#include "typed_events.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace {

using namespace pfsdoc;
using tests::TypedEvents;

std::string text(const TypedEvents &events, const TextOptions &options = {})
{
    StringOutput output;
    TextWriter writer(output, options);
    events.tell(writer);
    writer.finish();
    return output.text;
}

TextOptions without_page_breaks()
{
    TextOptions options;
    options.page_breaks = false;
    return options;
}

TextOptions with_commands()
{
    TextOptions options;
    options.commands = true;
    return options;
}

// Expected text that begins on a line of its own, so that its columns can be seen.
std::string page(std::string_view written)
{
    return std::string(written.substr(1));
}

// A page of the columns 0 to 19, without a left margin: what the layout does is seen best there.
TypedEvents narrow_page()
{
    TypedEvents events;
    events.margins(0, 19);
    return events;
}

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

TEST(Text, ShowsTheLeftMarginAsBlanks)
{
    EXPECT_EQ(text(TypedEvents().margins(10, 29).line("The quick brown fox jumps")), page(R"(
          The quick brown fox
          jumps
)"));
}

TEST(Text, ShowsEmptyParagraphsAsEmptyLines)
{
    EXPECT_EQ(text(TypedEvents().margins(5, 29).line("One").line("").line("Two")), page(R"(
     One

     Two
)"));
    EXPECT_EQ(text(TypedEvents().margins(5, 29).special("   ").paragraph()), "\n");
}

TEST(Text, KeepsRunsOfBlanksButNotAtAWrap)
{
    EXPECT_EQ(text(narrow_page().line("a    b")), "a    b\n");
    EXPECT_EQ(text(narrow_page().line("a whole line, almost      next")),
              "a whole line, almost\nnext\n");
}

TEST(Text, KeepsTheBlanksThatAParagraphBeginsWith)
{
    EXPECT_EQ(text(narrow_page().line("  two blanks")), "  two blanks\n");
}

TEST(Text, NeverEndsALineInBlanks)
{
    EXPECT_EQ(text(narrow_page().line("word   ").line("     ").line("\t").line("x\t ")),
              "word\n\n\nx\n");
}

TEST(Text, EndsInALineEndWhereTheDocumentDoesNot)
{
    EXPECT_EQ(text(narrow_page().text("no paragraph end").end()), "no paragraph end\n");
}

TEST(Text, LetsAWordLongerThanTheLineStandAlone)
{
    EXPECT_EQ(text(narrow_page().line("a honorificabilitudinitatibus b")), R"(a
honorificabilitudinitatibus
b
)");
    EXPECT_EQ(text(TypedEvents().margins(5, 14).line("honorificabilitudinitatibus b")), page(R"(
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

// ------------------------------------------------------------------------- alignment ---

TEST(AlignedLines, LieBetweenTheMargins)
{
    TypedEvents events;
    events.margins(5, 24).alignment(VW_ALIGN_CENTRE).line("Title");
    events.alignment(VW_ALIGN_RIGHT).line("Date").alignment(VW_ALIGN_LEFT).line("Text");
    EXPECT_EQ(text(events), page(R"(
            Title
                     Date
     Text
)"));
}

TEST(AlignedLines, DisregardTheirOuterBlanksAndIndents)
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

TEST(AlignedLines, CommandMayFollowBlanksAndOtherCommandsButNotText)
{
    TypedEvents events = narrow_page();
    events.special("*JY N*").text(" ").special("*R*").line("Date");
    events.text("Text ").special("*R*").line("goes on");
    EXPECT_EQ(text(events), "                Date\nText goes on\n");
}

TEST(AlignedLines, CommandIsKnownInFullOnly)
{
    EXPECT_EQ(alignment_command("*CENTER*"), VW_ALIGN_CENTRE);
    EXPECT_EQ(alignment_command("*cEnTeR*"), VW_ALIGN_CENTRE);
    EXPECT_EQ(alignment_command("*C*"), VW_ALIGN_CENTRE);
    EXPECT_EQ(alignment_command("*RIGHT*"), VW_ALIGN_RIGHT);
    EXPECT_EQ(alignment_command("*r*"), VW_ALIGN_RIGHT);
    for (const char *other : {"", "*", "**", "*C", "C*", "*CC*", "*CENTER *", "*RIGH*", "*N*"}) {
        EXPECT_EQ(alignment_command(other), std::nullopt) << other;
    }
}

// -------------------------------------------------------------------------- tab stops ---

TEST(TabStops, AreColumnsOfThePage)
{
    TypedEvents events;
    events.margins(5, 39).tabs({10, 20}).line("a\tb\tc").line("\td");
    EXPECT_EQ(text(events), page(R"(
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

TEST(DecimalStops, AreAPlaceForTheNextTabToStartFrom)
{
    TypedEvents events;
    events.margins(0, 39).tabs({15}, {10}).line("a\t\tb");
    EXPECT_EQ(text(events), "a              b\n");
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

TEST(Commands, ThatAreCutSaySo)
{
    TypedEvents events = narrow_page();
    events.special("*" + std::string(100000, 'x')).paragraph();
    const std::string kept(ParagraphCollector::max_command_bytes - 1, 'x');
    EXPECT_EQ(text(events, with_commands()), "*" + kept + "...\n");
    EXPECT_EQ(text(events), "");
}

// ----------------------------------------------------------------- headers and footers ---

TEST(HeadersAndFooters, StandAtTheTextsStartAndEnd)
{
    TypedEvents events;
    events.margins(2, 21).indents(0, 0);
    events.alignment(VW_ALIGN_LEFT).header().alignment(VW_ALIGN_CENTRE).line("Memo");
    events.alignment(VW_ALIGN_LEFT).alignment(VW_ALIGN_CENTRE).line("of July").close_block();
    events.alignment(VW_ALIGN_LEFT).footer().alignment(VW_ALIGN_RIGHT).line("Page 1");
    events.alignment(VW_ALIGN_LEFT).line("end").close_block();
    events.indents(0, 0).alignment(VW_ALIGN_LEFT).line("Dear Sir").line("").line("Yours").end();
    EXPECT_EQ(text(events), page(R"(
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

TEST(Characters, OfAZeroByteIsABlank)
{
    EXPECT_EQ(text(narrow_page().line(std::string("a\0b\0", 4))), "a b\n");
}

// A line's columns are characters, however many bytes they take in UTF-8.
TEST(Characters, CountAsOneColumnEach)
{
    EXPECT_EQ(text(narrow_page().line("\xC4\xC4\xC4\xC4\xC4\xC4\xC4\xC4\xC4\xC4 123456789 b")),
              "────────── 123456789\nb\n");
}

// --------------------------------------------------------------------------- the writer ---

TEST(Writer, FlushesOnceWhetherOrNotTheEndIsReported)
{
    StringOutput output;
    TextWriter writer(output);
    narrow_page().line("One").end().tell(writer);
    EXPECT_EQ(output.text, "One\n");
    writer.finish();
    writer.finish();
    EXPECT_EQ(output.text, "One\n");
}

class WriteSizes final : public Output {
public:
    void write(std::string_view bytes) override
    {
        ++writes;
        total += bytes.size();
        largest = std::max(largest, bytes.size());
    }

    std::size_t writes = 0;
    std::size_t total = 0;
    std::size_t largest = 0;
};

constexpr std::size_t megabyte = 1000000;

void tell_character(EventSink &sink, char byte, std::size_t times)
{
    const Event event = Character{static_cast<unsigned char>(byte)};
    for (std::size_t i = 0; i < times; ++i) {
        sink.on_event(event, 0);
    }
}

TEST(Writer, WritesInChunks)
{
    WriteSizes output;
    TextWriter writer(output);
    for (std::size_t i = 0; i < 100000; ++i) {
        TypedEvents().margins(0, 59).line("A line of some length.").tell(writer);
    }
    writer.finish();
    EXPECT_EQ(output.total, 100000U * 23U);
    EXPECT_LE(output.largest, Utf8Output::chunk_size);
    EXPECT_LE(output.writes, 50U);
}

// -------------------------------------------------------------------- hostile documents ---
//
// Each is of a size at which anything but linear time would be felt, and its output is known.

struct Hostile {
    explicit Hostile(const TypedEvents &start, const TextOptions &options = {})
        : writer(output, options)
    {
        start.tell(writer);
    }
    void finish()
    {
        TypedEvents().paragraph().end().tell(writer);
        writer.finish();
    }

    WriteSizes output;
    TextWriter writer;
};

TEST(HostileDocument, WithAWordThatNeverEnds)
{
    Hostile hostile(TypedEvents().margins(10, 69));
    tell_character(hostile.writer, '\xC4', 10 * megabyte);
    hostile.finish();
    EXPECT_EQ(hostile.output.total, 10 + 30 * megabyte + 1);
    EXPECT_LE(hostile.output.largest, Utf8Output::chunk_size);
}

TEST(HostileDocument, WithNothingButBlanks)
{
    Hostile hostile(TypedEvents().margins(10, 69));
    tell_character(hostile.writer, 'a', 1);
    tell_character(hostile.writer, ' ', 10 * megabyte);
    tell_character(hostile.writer, 'b', 1);
    hostile.finish();
    EXPECT_EQ(hostile.output.total, 2U * 12U);
}

TEST(HostileDocument, WithNothingButTabs)
{
    // Seven multiples of eight lie on a line of 60 columns; the eighth tab ends it.
    Hostile hostile(TypedEvents().margins(10, 69));
    tell_character(hostile.writer, '\t', megabyte);
    hostile.finish();
    EXPECT_EQ(hostile.output.total, megabyte / 8);
}

TEST(HostileDocument, WithNothingButDecimalTabs)
{
    TypedEvents start;
    start.margins(0, 59).tabs({}, {10, 20, 30, 40, 50, 55});
    Hostile hostile(start); // six stops and then column 56
    tell_character(hostile.writer, '\t', 8 * 125000);
    hostile.finish();
    EXPECT_EQ(hostile.output.total, 125000U);
}

TEST(HostileDocument, WithADecimalTabBeforeAWordWithoutPointOrEnd)
{
    TypedEvents start;
    start.margins(0, 59).tabs({}, {10}).text("\t");
    Hostile hostile(start);
    tell_character(hostile.writer, '9', 5 * megabyte);
    hostile.finish();
    EXPECT_EQ(hostile.output.total, 5 * megabyte + 1);
}

TEST(HostileDocument, WithMostBlanksForItsSize)
{
    // Two columns at the right end of the widest page: a line for each letter.
    Hostile hostile(TypedEvents().margins(254, 255));
    for (std::size_t i = 0; i < 10000; ++i) {
        tell_character(hostile.writer, 'x', 1);
        tell_character(hostile.writer, ' ', 1);
    }
    hostile.finish();
    EXPECT_EQ(hostile.output.total, 10000U * 256U);
}

TEST(HostileDocument, WithACommandThatNeverEnds)
{
    Hostile hostile(TypedEvents().margins(0, 59), with_commands());
    const Event opening = SpecialCharacter{'*', 7};
    const Event byte = SpecialCharacter{'x', 7};
    hostile.writer.on_event(opening, 0);
    for (std::size_t i = 0; i < 10 * megabyte; ++i) {
        hostile.writer.on_event(byte, 0);
    }
    TypedEvents().end().tell(hostile.writer);
    EXPECT_EQ(hostile.output.total, ParagraphCollector::max_command_bytes + 3 + 1);
}

TEST(HostileDocument, WithAnAttributeForEachCharacter)
{
    Hostile hostile(TypedEvents().margins(0, 59));
    for (std::size_t i = 0; i < megabyte; ++i) {
        hostile.writer.on_event(AttributeChange{2, static_cast<int32_t>(i % 2)}, 0);
        tell_character(hostile.writer, 'x', 1);
    }
    hostile.finish();
    EXPECT_EQ(hostile.output.total, megabyte + 1);
}

TEST(HostileDocument, WithNothingButPageBreaks)
{
    Hostile hostile(TypedEvents().margins(0, 59).text("x"));
    for (std::size_t i = 0; i < megabyte; ++i) {
        hostile.writer.on_event(PageBreak{4, 0}, 0);
    }
    hostile.finish();
    EXPECT_EQ(hostile.output.total, 2 + megabyte + 1);
}

TEST(HostileDocument, WithAnEndlessFooter)
{
    Hostile hostile(TypedEvents().margins(0, 59).footer());
    for (std::size_t i = 0; i < 100000; ++i) {
        TypedEvents().line("footer line").tell(hostile.writer);
    }
    hostile.finish();
    EXPECT_GE(hostile.output.total, TextBlockWriter::max_footer_bytes);
    EXPECT_LE(hostile.output.total, 2 * TextBlockWriter::max_footer_bytes);
}

TEST(HostileDocument, WithEventsOfEveryKindAndAnyValue)
{
    const std::vector<int32_t> values = {INT32_MIN, -1, 0,   1,     2,       6,
                                         7,         42, 144, 10080, 1 << 20, INT32_MAX};
    StringOutput output;
    TextOptions options = with_commands();
    TextWriter writer(output, options);
    for (const int32_t a : values) {
        for (const int32_t b : values) {
            const auto position = static_cast<uint32_t>(b);
            for (const Event &event : std::initializer_list<Event>{
                     Margins{a, b}, Indents{a, b, b}, TabStopsBegin{},
                     TabStop{static_cast<uint16_t>(a), 0, 0, position}, TabStopsEnd{},
                     Character{'\t'}, Character{a}, SpecialCharacter{b, a}, AttributeChange{a, b},
                     Font{a}, Alignment{a}, Character{'y'}, PageBreak{a, b}, HeaderFooter{a, b},
                     SectionStart{a}, LineSpacing{a, b, a, b}, Character{b},
                     Break{a == VW_BREAK_END_OF_DOCUMENT ? 0 : a, b}}) {
                EXPECT_EQ(writer.on_event(event, position), 0);
            }
        }
    }
    writer.finish();
    ASSERT_FALSE(output.text.empty());
    EXPECT_EQ(output.text.back(), '\n');
    EXPECT_EQ(output.text.find(" \n"), std::string::npos);
    EXPECT_LT(output.text.size(), 1000000U);
}

} // namespace

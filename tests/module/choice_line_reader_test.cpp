// The reader of First Choice 2 text.
#include "tests/module/bench.h"

#include "vs_pfs/line_readers.h"

#include <gtest/gtest.h>

namespace {

using namespace tests;
using namespace vs_pfs;

// The spacing that each of the two line ends reports.
const std::string single_end = "46 1 240 0 0 | ";
const std::string double_end = "46 1 480 0 0 | ";

// What a body reports after the announcements.
Calls text(std::string_view body, uint16_t left = 0, uint16_t right = 60)
{
    RecordingHost host(choice_document('2', bytes(body), {choice_margins(left, right)}));
    EXPECT_EQ(host.open(1017), 0);
    return after_announcements(host.read());
}

std::string letters(std::size_t count)
{
    return "'" + std::string(count, 'a') + "'";
}

TEST(ChoiceLineReader, OpensWithItsAnnouncementsInOrder)
{
    RecordingHost host(choice_document('2', bytes("0E"), {choice_margins(9, 69)}));
    ASSERT_EQ(host.open(), 0);
    EXPECT_TRUE(matches(host.read(), no_tab_stops + attributes_off + "11 1296 9936 |" +
                                         line_defaults + "13 2 0"));
}

TEST(ChoiceLineReader, HeadersComeBetweenMarginsAndIndents)
{
    RecordingHost host(
        choice_document('2', bytes("0E"), {{356, "RC"}, {363, "U"}, choice_header_line(0, "H")}));
    ASSERT_EQ(host.open(), 0);
    EXPECT_TRUE(matches(host.read(), no_tab_stops + attributes_off +
                                         "11 0 8640 | 7 0 0 0 | 6 1 | 13 6 0 | 12 1 3 | 4 4 1 | "
                                         "6 2 | 'H' | 13 1 0 | 4 4 0 | 13 7 0 |" +
                                         line_defaults + "13 2 0"));
}

TEST(ChoiceLineReader, AStoppedHeaderEndsTheCall)
{
    RecordingHost host(choice_document('2', bytes("0E"), {choice_header_line(0, "H")}));
    ASSERT_EQ(host.open(), 0);
    host.stop_at(1);
    EXPECT_TRUE(after_announcements(host.read()).empty());
    EXPECT_TRUE(matches(after_announcements(host.read()), "13 2 0"));
}

TEST(ChoiceLineReader, ABodyMayBeItsEndByte)
{
    EXPECT_TRUE(matches(text("0E"), "13 2 0"));
}

TEST(ChoiceLineReader, LeadingSpacesBecomeIndents)
{
    EXPECT_TRUE(matches(text("'  AB' 0C 0E"),
                        "'AB' | " + single_end + "7 288 0 288 | 13 1 0 | 7 0 0 0 | 13 2 0"));
}

TEST(ChoiceLineReader, TheTwoLineEndsReportTheirSpacing)
{
    EXPECT_TRUE(matches(text("'a' 0C 'b' 0D 0E"), "'a' | " + single_end + "13 1 0 | 'b' | " +
                                                      double_end + "13 1 0 | 13 2 0"));
}

TEST(ChoiceLineReader, ALineIsWrappedIfTheNextWordDoesNotFit)
{
    EXPECT_TRUE(matches(text(letters(58) + " 0C 'bbbb' 0E"),
                        letters(58) + " | " + single_end + "' bbbb' | 13 2 0"));
    EXPECT_TRUE(matches(text(letters(58) + " 0C 'bb' 0E"),
                        letters(58) + " | " + single_end + "13 1 0 | 'bb' | 13 2 0"));
}

TEST(ChoiceLineReader, TheSpacingComesBeforeTheJoin)
{
    EXPECT_TRUE(matches(text(letters(58) + " 0D 'bbbb' 0E"),
                        letters(58) + " | " + double_end + "' bbbb' | 13 2 0"));
}

TEST(ChoiceLineReader, AWrapAfterASpaceAddsNone)
{
    EXPECT_TRUE(matches(text(letters(58) + " ' ' 0C 'bbbb' 0E"),
                        letters(58) + " | ' ' | " + single_end + "'bbbb' | 13 2 0"));
}

TEST(ChoiceLineReader, ALineOfSpacesAtMarginZeroEndsHardAndIndents)
{
    EXPECT_TRUE(
        matches(text("'  ' 0C " + letters(80) + " 0E"),
                single_end + "7 288 0 288 | 13 1 0 | 7 0 0 0 | " + letters(80) + " | 13 2 0"));
}

TEST(ChoiceLineReader, AnEmptyLineAtMarginZeroEndsHard)
{
    EXPECT_TRUE(matches(text("0C " + letters(80) + " 0E"),
                        single_end + "13 1 0 | " + letters(80) + "|13 2 0"));
}

TEST(ChoiceLineReader, AnEmptyLineAtAnyOtherMarginLooksAhead)
{
    EXPECT_TRUE(matches(text("0C " + letters(51) + " 0E", 10),
                        single_end + "' ' | " + letters(51) + " | 13 2 0"));
    EXPECT_TRUE(matches(text("0C " + letters(50) + " 0E", 10),
                        single_end + "13 1 0 | " + letters(50) + " | 13 2 0"));
}

TEST(ChoiceLineReader, ALineOfSpacesMayBeWrapped)
{
    EXPECT_TRUE(matches(text("'  ' 0C " + letters(50) + " 0C 0E", 10),
                        single_end + letters(50) + " | " + single_end +
                            "7 0 0 288 | 13 1 0 | 7 0 0 0 | 13 2 0"))
        << "its spaces stay the paragraph's first indent";
}

TEST(ChoiceLineReader, TheFirstAndTheLastLineIndent)
{
    EXPECT_TRUE(matches(text("' ' " + letters(56) + " 0C '   bbbbb' 0C 'c' 0C 0E"),
                        letters(56) + " | " + single_end + "' bbbbb' | " + single_end +
                            "7 432 0 144 | 13 1 0 | 7 0 0 0 | 'c' | " + single_end +
                            "13 1 0 | 13 2 0"));
}

TEST(ChoiceLineReader, ALastLineThatIndentsAlone)
{
    EXPECT_TRUE(matches(text(letters(57) + " 0C '   bbbbb' 0C 0E"),
                        letters(57) + " | " + single_end + "' bbbbb' | " + single_end +
                            "7 432 0 0 | 13 1 0 | 7 0 0 0 | 13 2 0"));
}

TEST(ChoiceLineReader, BitThreeOfTheFirstAttributeByteKeepsTheHighBit)
{
    EXPECT_TRUE(matches(text("C1 08 0E"), "1 193 | 13 2 0"));
    EXPECT_TRUE(matches(text("C1 01 0E"), "4 4 1 | 'A' | 13 2 0"));
}

TEST(ChoiceLineReader, BitSixOfTheFirstBringsASecondAttributeByte)
{
    EXPECT_TRUE(matches(text("C1 48 04 0E"), "4 11 1 | 1 193 | 13 2 0"));
    EXPECT_TRUE(matches(text("C1 40 06 0E"), "4 10 1 | 4 11 1 | 'A' | 13 2 0"));
    EXPECT_TRUE(matches(text("C1 47 02 'b' 0E"),
                        "4 4 1 | 4 3 1 | 4 2 1 | 4 10 1 | 'A' | 4 4 0 | 4 3 0 | 4 2 0 | 4 10 0 | "
                        "'b' | 13 2 0"));
}

TEST(ChoiceLineReader, TwoAttributeBytesAreReadAtMost)
{
    EXPECT_TRUE(matches(text("C1 40 44 'b' 0E"), "4 11 1 | 'A' | 4 11 0 | 'b' | 13 2 0"));
}

TEST(ChoiceLineReader, TheSecondAttributeByteKeepsNoHighBit)
{
    EXPECT_TRUE(matches(text("C1 40 08 0E"), "'A' | 13 2 0"));
}

TEST(ChoiceLineReader, AnAttributeByteIsNeverAControlByte)
{
    EXPECT_TRUE(matches(text("C1 0C C2 0D C3 0E C4 4E 0E 0E"),
                        "4 3 1 | 1 193 | 4 4 1 | 1 194 | 4 4 0 | 4 2 1 | 1 195 | 4 10 1 | 4 11 1 | "
                        "1 196 | 13 2 0"));
}

TEST(ChoiceLineReader, AnAttributedControlByteIsACharacter)
{
    EXPECT_TRUE(matches(text("8C 00 8D 00 8E 00 0E"), "1 12 | 1 13 | 1 14 | 13 2 0"));
    EXPECT_TRUE(matches(text("8D 08 0E"), "1 141 | 13 2 0"));
}

TEST(ChoiceLineReader, AMaskedSpaceIsASpaceAndAMaskedAsteriskMayOpenACommand)
{
    EXPECT_TRUE(matches(text("A0 00 'a' A0 00 0C 0E"),
                        "'a ' | " + single_end + "7 144 0 144 | 13 1 0 | 7 0 0 0 | 13 2 0"));
    EXPECT_TRUE(matches(text("A0 08 'a' 0E"), "1 160 | 'a' | 13 2 0"));
    EXPECT_TRUE(matches(text("AA 00 'N*' 0E"), "3 4 0 | *'*N*' | 13 2 0"));
    EXPECT_TRUE(matches(text("AA 08 'N*' 0E"), "1 170 | 'N*' | 13 2 0"));
}

TEST(ChoiceLineReader, AByteOfAllBitsIsASpaceThatDoesNotLead)
{
    EXPECT_TRUE(matches(text("FF 08 0C 0E"), "' ' | " + single_end + "13 1 0 | 13 2 0"));
    EXPECT_TRUE(matches(text(letters(59) + " FF 08 0C 'b' 0E"),
                        letters(59) + " | ' ' | " + single_end + "' b' | 13 2 0"))
        << "nor does it keep the join away";
    EXPECT_TRUE(matches(text("FF 00 0E"), "1 127 | 13 2 0"));
}

TEST(ChoiceLineReader, AnAsteriskThatOpensNothingAdvancesTheColumn)
{
    EXPECT_TRUE(matches(text("'2*3*4' 0E"), "'2*3*4' | 13 2 0"));
    EXPECT_TRUE(matches(text(letters(56) + " '*' 0C 'bbbb' 0E"),
                        letters(56) + " | '*' | " + single_end + "' bbbb' | 13 2 0"));
    EXPECT_TRUE(matches(text(letters(55) + " '*' 0C 'bbbb' 0E"),
                        letters(55) + " | '*' | " + single_end + "13 1 0 | 'bbbb' | 13 2 0"));
}

TEST(ChoiceLineReader, ACommandAdvancesTheColumnByItsBytes)
{
    EXPECT_TRUE(matches(text(letters(54) + " '*C*' 0C 'bbbb' 0E"),
                        letters(54) + " | *'*C*' | " + single_end + "' bbbb' | 13 2 0"));
    EXPECT_TRUE(matches(text(letters(53) + " '*C*' 0C 'bbbb' 0E"),
                        letters(53) + " | *'*C*' | " + single_end + "13 1 0 | 'bbbb' | 13 2 0"));
}

TEST(ChoiceLineReader, PlainBytesAreCharacters)
{
    EXPECT_TRUE(matches(text("00 01 07 09 0B 0F 1F 7F 0E"),
                        "1 0 | 1 1 | 1 7 | 1 9 | 1 11 | 1 15 | 1 31 | 1 127 | 13 2 0"));
}

TEST(ChoiceLineReader, AttributesStayOverALineEnd)
{
    EXPECT_TRUE(matches(text("C1 01 0C 'b' 0E"),
                        "4 4 1 | 'A' | " + single_end + "13 1 0 | 4 4 0 | 'b' | 13 2 0"));
    EXPECT_TRUE(
        matches(text(letters(59) + " C1 01 0C 'b' 0E"),
                letters(59) + " | 4 4 1 | 'A' | " + single_end + "' ' | 4 4 0 | 'b' | 13 2 0"));
    EXPECT_TRUE(matches(text("C1 01 0E"), "4 4 1 | 'A' | 13 2 0"));
}

TEST(ChoiceLineReader, AnswerOneGivesOneLineEndToARead)
{
    RecordingHost host(choice_document('2', bytes("'  a' 0C 0D 'b' 0E")));
    ASSERT_EQ(host.open(), 0);
    host.stop_at_all();
    const std::string start = no_tab_stops + attributes_off + "11 0 8640 |" + line_defaults;
    EXPECT_TRUE(matches(host.read(), start + "'a' | " + single_end + "7 288 0 288 | 13 1 0"));
    EXPECT_EQ(VwCharTell(host.stream), choice_body_offset + 4);
    EXPECT_TRUE(matches(host.read(), start + double_end + "13 1 0"));
    EXPECT_TRUE(matches(host.read(), start + "'b' | 13 2 0"));
    EXPECT_EQ(VwCharTell(host.stream), choice_body_offset + 7);
}

TEST(ChoiceLineReader, TheColumnHasSixteenBits)
{
    const std::string line = "'a'x65592 ";
    EXPECT_TRUE(matches(text(line + "0C 'bbbb' 0E"),
                        letters(65592) + " | " + single_end + "13 1 0 | 'bbbb' | 13 2 0"));
    EXPECT_TRUE(matches(text(line + "0C 'bbbbb' 0E"),
                        letters(65592) + " | " + single_end + "' bbbbb' | 13 2 0"));
}

TEST(ChoiceLineReader, LeadingSpacesHaveSixteenBits)
{
    EXPECT_TRUE(matches(text("' 'x65538 'a' 0C 0E"),
                        "'a' | " + single_end + "7 288 0 288 | 13 1 0 | 7 0 0 0 | 13 2 0"));
    EXPECT_TRUE(matches(text("' 'x40000 'a' 0C 0E"), "'a' | " + single_end + "13 1 0 | 13 2 0"));
}

// A number of spaces that has become negative is not an indent, nor part of the next paragraph's.
TEST(ChoiceLineReader, SpacesThatWrappedAreNotCarriedOver)
{
    EXPECT_TRUE(matches(text("' 'x40000 'a' 0C '  b' 0C 0E"),
                        "'a' | " + single_end + "13 1 0 | 'b' | " + single_end +
                            "7 288 0 288 | 13 1 0 | 7 0 0 0 | 13 2 0"));
}

// ---------------------------------------------------------------- the lookahead

bool ends_hard(int16_t column, std::string_view next, uint16_t right = 60)
{
    Bench bench("xyz" + bytes(next));
    bench.saved().rightMargin = right;
    VwCharSeek(bench.stream, 3, 0);
    uint16_t ends_here = 1;
    EXPECT_EQ(FcDetermineEnder(bench.stream, column, &ends_here, bench.instance), 0);
    EXPECT_EQ(bench.tell(), 3U) << "the stream is put back";
    EXPECT_TRUE(bench.take().empty());
    return ends_here != 0;
}

TEST(FcDetermineEnder, ComparesColumnAndWordWithTheRightMargin)
{
    EXPECT_TRUE(ends_hard(56, "'bbbb' 0C"));
    EXPECT_FALSE(ends_hard(56, "'bbbbb' 0C"));
}

TEST(FcDetermineEnder, TheWordEndsAtSpaceLineEndEndOrEndOfData)
{
    for (const char *end : {"' bbb'", "0C 'bbb'", "0D 'bbb'", "0E 'bbb'", ""}) {
        EXPECT_TRUE(ends_hard(56, std::string("'bbbb' ") + end)) << end;
        EXPECT_FALSE(ends_hard(56, std::string("'bbbbb' ") + end)) << end;
    }
}

TEST(FcDetermineEnder, LeadingSpacesAreSkipped)
{
    EXPECT_TRUE(ends_hard(56, "'   bbbb ' 0C"));
    EXPECT_FALSE(ends_hard(56, "'   bbbbb' 0C"));
}

TEST(FcDetermineEnder, NoWordLeavesTheEndHard)
{
    for (const char *next : {"", "0C", "0D", "0E", "'  ' 0C", "'  '"}) {
        EXPECT_TRUE(ends_hard(70, next)) << next;
    }
}

TEST(FcDetermineEnder, AnAttributedByteIsOneCharacter)
{
    EXPECT_TRUE(ends_hard(56, "C1 00 C2 40 00 C3 08 C4 48 00 0C"));
    EXPECT_FALSE(ends_hard(56, "C1 00 C2 40 00 C3 08 C4 48 00 C5 00 0C"));
}

TEST(FcDetermineEnder, AttributeBytesMayChainWithoutLimit)
{
    EXPECT_TRUE(ends_hard(56, "C1 40 40 7F 40 C8 00 'bbb' 0C"));
    EXPECT_FALSE(ends_hard(56, "C1 40 40 7F 40 C8 00 'bbbb' 0C"));
    EXPECT_TRUE(ends_hard(56, "C1 40x5000 00 'bbb' 0C"));
}

TEST(FcDetermineEnder, ChainsRunOverLineEnds)
{
    EXPECT_FALSE(ends_hard(56, "C1 40 40 0C 'bbbb' 0C"));
    EXPECT_FALSE(ends_hard(56, "C1 40 40 0E 'bbbb' 0C"));
}

TEST(FcDetermineEnder, AMaskedSpaceIsASpace)
{
    EXPECT_TRUE(ends_hard(56, "A0 00 'bbbb' A0 00 'bbb' 0C"));
    EXPECT_TRUE(ends_hard(56, "'bbbb' A0 40 00 'bbb' 0C"));
    EXPECT_FALSE(ends_hard(56, "'bbbb' A0 08 ' bbb' 0C"));
}

TEST(FcDetermineEnder, AMaskedLineEndBelongsToTheWord)
{
    EXPECT_FALSE(ends_hard(56, "'bb' 8C 00 8D 00 8E 00 0C"));
    EXPECT_TRUE(ends_hard(56, "'b' 8C 00 8D 00 8E 00 0C"));
}

TEST(FcDetermineEnder, AByteOfAllBitsIsNotTheEnd)
{
    EXPECT_FALSE(ends_hard(56, "'bbbb' FF 00 0C"));
    EXPECT_FALSE(ends_hard(56, "'bbbb' FF 08 0C"));
}

TEST(FcDetermineEnder, AsterisksBelongToTheWord)
{
    EXPECT_FALSE(ends_hard(56, "'*N*bb' 0C"));
    EXPECT_TRUE(ends_hard(56, "'*N*b' 0C"));
}

TEST(FcDetermineEnder, TheWordLengthHasSixteenBits)
{
    EXPECT_FALSE(ends_hard(0, "'b'x32767 0C"));
    EXPECT_TRUE(ends_hard(0, "'b'x32768 0C")) << "-32768";
    EXPECT_TRUE(ends_hard(70, "'b'x65536 0C")) << "no word";
    EXPECT_FALSE(ends_hard(60, "'b'x65537 0C")) << "a word of one";
}

TEST(FcDetermineEnder, ColumnsAreSigned)
{
    EXPECT_TRUE(ends_hard(-5, "'bbbb' 0C", 0xFFFF));
    EXPECT_FALSE(ends_hard(-5, "'bbbbb' 0C", 0xFFFF));
}

TEST(FcDetermineEnder, NeverSetsTheFlag)
{
    Bench bench(bytes("'b' 0C"));
    bench.saved().rightMargin = 60;
    uint16_t ends_here = 0;
    FcDetermineEnder(bench.stream, 1, &ends_here, bench.instance);
    EXPECT_EQ(ends_here, 0);
}

// Line ends that the lookahead takes for attribute bytes: each scans the same bytes again, and each
// result is that of a fresh scan.
TEST(ChoiceLineReader, LineEndsInARowAgreeWithFreshLooks)
{
    // The reader takes two attribute bytes, so the third 0x40 is a character and the 0x0C a
    // line end; the lookahead takes the whole chain for one character.
    std::string body;
    std::string wanted;
    for (int line = 0; line < 40; ++line) {
        body += "C1 40 40 40 0C ";
        const int word = 39 - line + 1;
        wanted += "'A@' | " + single_end + (2 + word > 21 ? "' ' | " : "13 1 0 | ");
    }
    EXPECT_TRUE(matches(text(body + "'b' 0E", 0, 21), wanted + "'b' | 13 2 0"));
}

} // namespace

// The reader of PFS: WRITE text, and its lookahead. writing_assistant_test.cpp tests the
// differences of Writing Assistant.
#include "tests/module/bench.h"

#include "vs_pfs/line_readers.h"

#include <gtest/gtest.h>

namespace {

using namespace tests;
using namespace vs_pfs;

constexpr int write_b = 2;

// What a body reports after the announcements. Its first return, which would be swallowed,
// is put before it.
Calls text_of_type(int type, std::string_view body, uint16_t left = 0, uint16_t right = 64)
{
    RecordingHost host(
        write_document(type, bytes("0D") + bytes(body), {write_margins(left, right)}));
    EXPECT_EQ(host.open(), 0);
    return after_announcements(host.read());
}

Calls text(std::string_view body, uint16_t left = 0, uint16_t right = 64)
{
    return text_of_type(write_b, body, left, right);
}

std::string letters(std::size_t count)
{
    return "'" + std::string(count, 'a') + "'";
}

TEST(WriteLineReader, OpensWithItsAnnouncementsInOrder)
{
    for (const int type : {1, 2, 3}) {
        RecordingHost host(write_document(type, bytes("0E"), {write_margins(9, 69)}));
        ASSERT_EQ(host.open(), 0);
        EXPECT_TRUE(matches(host.read(), no_tab_stops + attributes_off + "11 1296 9936 |" +
                                             line_defaults + "13 2 0"));
    }
}

TEST(WriteLineReader, ANegativeMarginIsReportedAsOne)
{
    RecordingHost host(write_document(2, bytes("0E"), {{10, word(0) + word(0)}}));
    ASSERT_EQ(host.open(), 0);
    EXPECT_TRUE(matches(host.read(), no_tab_stops + attributes_off + "11 -144 -144 |" +
                                         line_defaults + "13 2 0"));
}

TEST(WriteLineReader, HeadersComeBetweenMarginsAndIndents)
{
    RecordingHost host(write_document(1, bytes("0E"), {write_header_line(0, "H")}));
    ASSERT_EQ(host.open(), 0);
    EXPECT_TRUE(matches(host.read(), no_tab_stops + attributes_off +
                                         "11 0 9216 | 7 0 0 0 | 6 1 | 13 6 0 | 12 1 3 | 6 3 | 'H' "
                                         "| 13 1 0 | 13 7 0 |" +
                                         line_defaults + "13 2 0"));
}

TEST(WriteLineReader, AStoppedHeaderEndsTheCall)
{
    RecordingHost host(write_document(2, bytes("0E"), {write_header_line(0, "H")}));
    ASSERT_EQ(host.open(), 0);
    host.stop_at(1);
    EXPECT_TRUE(after_announcements(host.read()).empty());
    EXPECT_FALSE(host.document_ended);
    EXPECT_TRUE(matches(after_announcements(host.read()), "13 2 0"));
}

TEST(WriteLineReader, FirstReturnOfTheBodyIsSwallowed)
{
    RecordingHost host(write_document(2, bytes("0D 0D 0E")));
    ASSERT_EQ(host.open(), 0);
    EXPECT_TRUE(matches(after_announcements(host.read()), "13 1 0 | 13 2 0"));
    EXPECT_EQ(host.instance->state.saved.skipFirstReturn, 0);
}

TEST(WriteLineReader, TheSwallowedReturnChangesNothingElse)
{
    RecordingHost host(write_document(2, bytes("'  A' 0D '  B' 0D 0E")));
    ASSERT_EQ(host.open(), 0);
    EXPECT_TRUE(matches(after_announcements(host.read()),
                        "'A  B' | 7 288 0 288 | 13 1 0 | 7 0 0 0 | 13 2 0"));
}

TEST(WriteLineReader, TheReturnIsSwallowedOnceOverAllReads)
{
    RecordingHost host(write_document(2, bytes("0D 'A' 0D 0D 0D 0E")));
    ASSERT_EQ(host.open(), 0);
    host.stop_at_all();
    EXPECT_TRUE(matches(after_announcements(host.read()), "'A' | 13 1 0"));
    EXPECT_TRUE(matches(after_announcements(host.read()), "13 1 0"));
    EXPECT_TRUE(matches(after_announcements(host.read()), "13 1 0"));
    EXPECT_TRUE(matches(after_announcements(host.read()), "13 2 0"));
}

TEST(WriteLineReader, AnEmptyLineEndsHardWithoutIndents)
{
    EXPECT_TRUE(
        matches(text("'A' 0D 0D 'B' 0D 0E"), "'A' | 13 1 0 | 13 1 0 | 'B' | 13 1 0 | 13 2 0"));
}

TEST(WriteLineReader, AnEmptyLineEndsHardHoweverLongTheNextWordIs)
{
    EXPECT_TRUE(
        matches(text("0D " + letters(80) + " 0E", 10), "13 1 0 | " + letters(80) + " | 13 2 0"));
}

TEST(WriteLineReader, ALineOfSpacesIsSpecialCharacters)
{
    EXPECT_TRUE(matches(text("'   ' 0D 'word' 0E"), "*'   ' | 13 1 0 | 'word' | 13 2 0"));
}

TEST(WriteLineReader, ALineOfSpacesIsMeasuredByItsSpaces)
{
    // From column 3, not from the left margin: 3 + 4 fit within 7, and not within 6.
    EXPECT_TRUE(matches(text("'   ' 0D 'word' 0E", 5, 7), "*'   ' | 13 1 0 | 'word' | 13 2 0"));
    EXPECT_TRUE(matches(text("'   ' 0D 'word' 0E", 5, 6), "*'   ' | 'word' | 13 2 0"));
}

TEST(WriteLineReader, TheSpacesOfAWrappedLineOfSpacesStayTheFirstLinesIndent)
{
    EXPECT_TRUE(matches(text("'   ' 0D 'word' 0D 0E", 0, 6),
                        "*'   ' | 'word' | 7 0 0 432 | 13 1 0 | 7 0 0 0 | 13 2 0"));
}

TEST(WriteLineReader, LeadingSpacesBecomeIndents)
{
    EXPECT_TRUE(
        matches(text("'  Hello' 0D 0E"), "'Hello' | 7 288 0 288 | 13 1 0 | 7 0 0 0 | 13 2 0"));
}

TEST(WriteLineReader, TheFirstLineAloneIndents)
{
    EXPECT_TRUE(matches(text("'     aaaa bbbb' 0D 'cccccccc' 0D 0E", 0, 20),
                        "'aaaa bbbb cccccccc' | 7 0 0 720 | 13 1 0 | 7 0 0 0 | 13 2 0"));
}

TEST(WriteLineReader, TheLeftIndentIsTheLastLines)
{
    EXPECT_TRUE(matches(text("'  aaaa bbbb' 0D '    cccccc' 0D 0E", 0, 12),
                        "'aaaa bbbb cccccc' | 7 576 0 288 | 13 1 0 | 7 0 0 0 | 13 2 0"));
    EXPECT_TRUE(matches(text("'aaaa bbbb' 0D '    cccccc' 0D 0E", 0, 12),
                        "'aaaa bbbb cccccc' | 7 576 0 0 | 13 1 0 | 7 0 0 0 | 13 2 0"));
}

TEST(WriteLineReader, IndentsDoNotReachTheNextParagraph)
{
    EXPECT_TRUE(matches(text("' a' 0D 'b' 0D '  c' 0D 0E"),
                        "'a' | 7 144 0 144 | 13 1 0 | 7 0 0 0 | 'b' | 13 1 0 | "
                        "'c' | 7 288 0 288 | 13 1 0 | 7 0 0 0 | 13 2 0"));
}

TEST(WriteLineReader, ALineOfSpacesWithAHardEndHasNoIndents)
{
    // Attributed spaces are a word to the lookahead, so the line before them is wrapped; to the
    // reader they are a line of spaces, which then drops the paragraph's first indent.
    EXPECT_TRUE(matches(text("'  aaaa' 0D A0 00 A0 00 0D 'cccc' 0D 0E", 0, 7),
                        "'aaaa ' | *'  ' | 13 1 0 | 'cccc' | 13 1 0 | 13 2 0"));
}

TEST(WriteLineReader, AWrapBecomesOneSpace)
{
    EXPECT_TRUE(matches(text(letters(62) + " 0D 'bbb' 0E"), letters(62) + " | ' bbb' | 13 2 0"));
}

TEST(WriteLineReader, AWrapAfterASpaceAddsNone)
{
    EXPECT_TRUE(matches(text(letters(62) + " ' ' 0D 'bb' 0E"), letters(62) + " | ' bb' | 13 2 0"));
}

TEST(WriteLineReader, ALineIsWrappedIfTheNextWordDoesNotFit)
{
    EXPECT_TRUE(matches(text(letters(60) + " 0D 'bbbbb' 0E"), letters(60) + "|' bbbbb'|13 2 0"));
    EXPECT_TRUE(
        matches(text(letters(60) + " 0D 'bbbb' 0E"), letters(60) + "|13 1 0|'bbbb'|13 2 0"));
}

TEST(WriteLineReader, TheLeftMarginCounts)
{
    EXPECT_TRUE(
        matches(text(letters(50) + " 0D 'bbbbb' 0E", 10), letters(50) + "|' bbbbb'|13 2 0"));
    EXPECT_TRUE(
        matches(text(letters(50) + " 0D 'bbbb' 0E", 10), letters(50) + "|13 1 0|'bbbb'|13 2 0"));
}

TEST(WriteLineReader, LeadingSpacesCountInTheColumn)
{
    EXPECT_TRUE(matches(text("'    ' " + letters(56) + " 0D 'bbbbb' 0D 0E"),
                        letters(56) + "|' bbbbb'|7 0 0 576|13 1 0|7 0 0 0|13 2 0"));
}

TEST(WriteLineReader, AColumnEqualToTheLeadingSpacesEndsHard)
{
    // A left margin of -1 puts the column of one character at 0.
    EXPECT_TRUE(matches(text("'a' 0D 'bbbb' 0E", 0xFFFF, 3), "'a' | 13 1 0 | 'bbbb' | 13 2 0"));
    EXPECT_TRUE(matches(text("'aa' 0D 'bbbb' 0E", 0xFFFF, 3), "'aa bbbb' | 13 2 0"));
}

TEST(WriteLineReader, AFormFeedIsIgnored)
{
    EXPECT_TRUE(matches(text("'a' 0C 'b' 0E"), "'ab' | 13 2 0"));
    EXPECT_TRUE(
        matches(text("0C '  ' 0C 'a' 0C 0D 0E"), "'a' | 7 288 0 288 | 13 1 0 | 7 0 0 0 | 13 2 0"));
}

TEST(WriteLineReader, AFormFeedDoesNotAdvanceTheColumn)
{
    EXPECT_TRUE(matches(text("0C 0C 0C " + letters(60) + " 0C 0D 'bbbb' 0E"),
                        letters(60) + " | 13 1 0 | 'bbbb' | 13 2 0"));
}

TEST(WriteLineReader, AFormFeedKeepsTheAttributes)
{
    EXPECT_TRUE(matches(text("C1 02 0C C2 02 0E"), "4 2 1 | 'AB' | 13 2 0"));
}

TEST(WriteLineReader, APrefixedByteHasItsAttributes)
{
    for (const int type : {1, 2}) {
        EXPECT_TRUE(matches(text_of_type(type, "C1 05 0E"), "4 4 1 | 4 3 1 | 'A' | 13 2 0"));
        EXPECT_TRUE(matches(text_of_type(type, "C1 F8 'b' 0E"),
                            "4 10 1 | 4 11 1 | 'A' | 4 10 0 | 4 11 0 | 'b' | 13 2 0"));
    }
}

TEST(WriteLineReader, APrefixedControlByteIsACharacter)
{
    EXPECT_TRUE(matches(text("8C 00 8D 00 8E 00 0E"), "1 12 | 1 13 | 1 14 | 13 2 0"));
    EXPECT_TRUE(matches(text("FF 00 80 00 0E"), "1 127 | 1 0 | 13 2 0"));
}

TEST(WriteLineReader, APrefixedSpaceIsASpace)
{
    EXPECT_TRUE(matches(text("A0 08 A0 08 'a' A0 08 0D 0E"),
                        "4 11 1 | 4 11 0 | 'a' | 4 11 1 | ' ' | 7 288 0 288 | 13 1 0 | 7 0 0 0 | "
                        "13 2 0"));
}

TEST(WriteLineReader, APrefixedAsteriskMayOpenACommand)
{
    EXPECT_TRUE(matches(text("AA 00 'N*b' 0E"), "3 4 0 | *'*N*' | 'b' | 13 2 0"));
}

TEST(WriteLineReader, PlainBytesAreCharacters)
{
    EXPECT_TRUE(
        matches(text("01 02 07 09 1F 7F 0E"), "1 1 | 1 2 | 1 7 | 1 9 | 1 31 | 1 127 | 13 2 0"));
}

TEST(WriteLineReader, AttributesStayOverALineEnd)
{
    EXPECT_TRUE(matches(text(letters(63) + " C1 02 0D C2 02 'c' 0D 0E"),
                        letters(63) + "| 4 2 1 | 'A B' | 4 2 0 | 'c' | 13 1 0 | 13 2 0"));
}

TEST(WriteLineReader, ACommandIsEchoedAndAdvancesTheColumn)
{
    EXPECT_TRUE(matches(text(letters(57) + " '*C*' 0D 'bbbb' 0E"),
                        letters(57) + "| *'*C*' | 13 1 0 | 'bbbb' | 13 2 0"));
    EXPECT_TRUE(matches(text(letters(57) + " '*C*' 0D 'bbbbb' 0E"),
                        letters(57) + "| *'*C*' | ' bbbbb' | 13 2 0"));
}

TEST(WriteLineReader, ALineOfACommandIsNotALineOfSpaces)
{
    EXPECT_TRUE(
        matches(text("'  *N*' 0D 0E"), "3 4 0 | *'*N*' | 7 288 0 288 | 13 1 0 | 7 0 0 0 | 13 2 0"));
}

TEST(WriteLineReader, AnAsteriskThatOpensNothingIsText)
{
    EXPECT_TRUE(matches(text("'2*3*4' 0E"), "'2*3*4' | 13 2 0"));
    EXPECT_TRUE(
        matches(text(letters(59) + " '*' 0D 'bbbbb' 0E"), letters(59) + "| '* bbbbb' | 13 2 0"));
}

TEST(WriteLineReader, AnswerOneReturnsAtOnce)
{
    RecordingHost host(write_document(2, bytes("0D '  a' 0D 'b' 0D 0E")));
    ASSERT_EQ(host.open(), 0);
    host.stop_at_all();
    const std::string start = no_tab_stops + attributes_off + "11 0 9216 |" + line_defaults;
    EXPECT_TRUE(matches(host.read(), start + "'a' | 7 288 0 288 | 13 1 0"));
    EXPECT_EQ(VwCharTell(host.stream), write_body_offset + 5) << "just past the return";
    EXPECT_TRUE(matches(host.read(), start + "'b' | 13 1 0"));
    EXPECT_TRUE(matches(host.read(), start + "13 2 0"));
    EXPECT_EQ(VwCharTell(host.stream), write_body_offset + 8);
}

TEST(WriteLineReader, EachCallBeginsAParagraph)
{
    RecordingHost host(write_document(2, bytes("0D 'a' 0D '  b' 0D 0E")));
    ASSERT_EQ(host.open(), 0);
    host.stop_at_all();
    host.read();
    EXPECT_TRUE(matches(after_announcements(host.read()), "'b' | 7 288 0 288 | 13 1 0"));
}

TEST(WriteLineReader, AnswersOtherThanOneGoOn)
{
    // The recording host answers 0; here the answer is one of the others.
    RecordingHost host(write_document(2, bytes("0D 'a' 0D 'b' 0E")));
    ASSERT_EQ(host.open(), 0);
    static unsigned breaks;
    breaks = 0;
    const VwOutput2 answers_many = [](int32_t, int32_t, uint32_t, uint32_t) -> int32_t {
        return breaks++ % 2 == 0 ? -1 : 0x10001;
    };
    VwSetSoRtn(VW_SO_BREAK, reinterpret_cast<VwRoutine>(answers_many), host.instance);
    EXPECT_TRUE(matches(after_announcements(host.read()), "'ab'"));
    EXPECT_EQ(breaks, 2U);
}

// ---------------------------------------------------------------- the lookahead

// Whether the line end before `next` is hard at `column`, by the lookahead alone.
bool ends_hard(int16_t column, std::string_view next, uint16_t right = 64)
{
    Bench bench("xyz" + bytes(next));
    bench.saved().rightMargin = right;
    VwCharSeek(bench.stream, 3, 0);
    uint16_t hard_end = 1;
    EXPECT_EQ(PfsDetermineEnder(bench.stream, column, &hard_end, bench.instance), 0);
    EXPECT_EQ(bench.tell(), 3U) << "the stream is put back";
    EXPECT_TRUE(bench.take().empty());
    return hard_end != 0;
}

TEST(PfsDetermineEnder, ComparesColumnAndWordWithTheRightMargin)
{
    EXPECT_TRUE(ends_hard(60, "'bbbb' 0D"));
    EXPECT_FALSE(ends_hard(60, "'bbbbb' 0D"));
}

TEST(PfsDetermineEnder, TheWordEndsAtSpaceReturnEndOrEndOfData)
{
    for (const char *end : {"' bbb'", "0D 'bbb'", "0E 'bbb'", ""}) {
        EXPECT_TRUE(ends_hard(60, std::string("'bbbb' ") + end)) << end;
        EXPECT_FALSE(ends_hard(60, std::string("'bbbbb' ") + end)) << end;
    }
}

TEST(PfsDetermineEnder, LeadingSpacesAreSkipped)
{
    EXPECT_TRUE(ends_hard(60, "'      bbbb ' 0D"));
    EXPECT_FALSE(ends_hard(60, "'      bbbbb' 0D"));
}

TEST(PfsDetermineEnder, NoWordLeavesTheEndHard)
{
    for (const char *next : {"", "0D", "0E", "'   ' 0D", "'   ' 0E", "'   '"}) {
        EXPECT_TRUE(ends_hard(70, next)) << next;
    }
}

TEST(PfsDetermineEnder, APairIsOneCharacter)
{
    EXPECT_TRUE(ends_hard(60, "C1 00 C2 00 C3 00 C4 00 0D"));
    EXPECT_FALSE(ends_hard(60, "C1 00 C2 00 C3 00 C4 00 C5 00 0D"));
}

TEST(PfsDetermineEnder, ThePairsSecondByteIsIgnored)
{
    for (const char *second : {"20", "0D", "0E", "FF"}) {
        EXPECT_TRUE(ends_hard(60, std::string("C1 ") + second + " 'bbb' 0D")) << second;
        EXPECT_FALSE(ends_hard(60, std::string("C1 ") + second + " 'bbbb' 0D")) << second;
    }
}

TEST(PfsDetermineEnder, AnAttributedSpaceBelongsToTheWord)
{
    EXPECT_FALSE(ends_hard(60, "A0 00 'bbbb ' 0D"));
    EXPECT_FALSE(ends_hard(60, "'b' A0 00 'bbb' 0D"));
}

TEST(PfsDetermineEnder, FormFeedsAndAsterisksBelongToTheWord)
{
    EXPECT_FALSE(ends_hard(60, "0C 'bbbb' 0D"));
    EXPECT_FALSE(ends_hard(60, "'*N*bb' 0D"));
    EXPECT_TRUE(ends_hard(60, "'*N*b' 0D"));
}

TEST(PfsDetermineEnder, APairThatIsCutCounts)
{
    EXPECT_FALSE(ends_hard(64, "C1"));
    EXPECT_TRUE(ends_hard(63, "C1"));
}

TEST(PfsDetermineEnder, ColumnsAreSigned)
{
    EXPECT_TRUE(ends_hard(-5, "'bbbb' 0D", 0xFFFF));
    EXPECT_FALSE(ends_hard(-5, "'bbbbb' 0D", 0xFFFF));
    EXPECT_TRUE(ends_hard(-32768, "'bbbb' 0D"));
    EXPECT_FALSE(ends_hard(32767, "'b' 0D", 32767));
}

TEST(PfsDetermineEnder, TheWordLengthHasSixteenBits)
{
    EXPECT_FALSE(ends_hard(0, "'b'x32767 0D"));
    EXPECT_TRUE(ends_hard(0, "'b'x32768 0D")) << "-32768";
    EXPECT_TRUE(ends_hard(0, "'b'x65535 0D")) << "-1";
    EXPECT_TRUE(ends_hard(70, "'b'x65536 0D")) << "no word";
    EXPECT_FALSE(ends_hard(64, "'b'x65537 0D")) << "a word of one";
}

TEST(PfsDetermineEnder, NeverSetsTheFlag)
{
    Bench bench(bytes("'b' 0D"));
    bench.saved().rightMargin = 64;
    uint16_t hard_end = 0;
    PfsDetermineEnder(bench.stream, 1, &hard_end, bench.instance);
    EXPECT_EQ(hard_end, 0);
}

TEST(WriteLineReader, TheColumnHasSixteenBits)
{
    const std::string line = "'a'x65596 ";
    EXPECT_TRUE(matches(text(line + "0D 'bbbb' 0E"), letters(65596) + "|13 1 0|'bbbb'|13 2 0"));
    EXPECT_TRUE(matches(text(line + "0D 'bbbbb' 0E"), letters(65596) + "|' bbbbb'|13 2 0"));
}

TEST(WriteLineReader, LeadingSpacesHaveSixteenBits)
{
    EXPECT_TRUE(
        matches(text("' 'x65538 'a' 0D 0E"), "'a' | 7 288 0 288 | 13 1 0 | 7 0 0 0 | 13 2 0"));
    EXPECT_TRUE(matches(text("' 'x40000 'a' 0D 0E"), "'a' | 13 1 0 | 13 2 0"))
        << "a negative count is no indent";
    EXPECT_TRUE(matches(text("' 'x40000 0D 0E"), "13 1 0 | 13 2 0"))
        << "nor are so many spaces reported";
}

} // namespace

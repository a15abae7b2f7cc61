// The reader of Professional Write text, whose lines begin with a type byte.
#include "tests/module/bench.h"

#include <gtest/gtest.h>

namespace {

using namespace tests;
using namespace vs_pfs;

const std::string single_spacing = "46 1 240 0 0 | ";
const std::string double_spacing = "46 1 480 0 0 | ";

// What a body reports after the announcements.
Calls text(std::string_view body, int type = 4)
{
    RecordingHost host(write_document(type, bytes(body)));
    EXPECT_EQ(host.open(), 0);
    return after_announcements(host.read());
}

// The same, with the suppression state that an earlier read has left.
Calls text_with_flag(uint8_t flag, std::string_view body)
{
    Bench bench(write_document(4, bytes(body)));
    EXPECT_TRUE(bench.opens());
    bench.saved().pwReaderFlag = flag;
    return after_announcements(bench.read());
}

TEST(ProfessionalWriteLineReader, AnnouncesMarginsBeforeAttributes)
{
    RecordingHost host(write_document(4, bytes("0E"), {write_margins(9, 64)}));
    ASSERT_EQ(host.open(), 0);
    EXPECT_TRUE(matches(host.read(), no_tab_stops + "11 1296 9216 |" + attributes_off +
                                         line_defaults + "13 2 0"));
    RecordingHost fixed_margins(write_document(5, bytes("0E")));
    ASSERT_EQ(fixed_margins.open(), 0);
    EXPECT_TRUE(matches(fixed_margins.read(), no_tab_stops + "11 1296 9936 |" + attributes_off +
                                                  line_defaults + "13 2 0"));
}

TEST(ProfessionalWriteLineReader, HeadersComeAfterTheAttributes)
{
    RecordingHost host(write_document(
        4, bytes("0E"), {write_header_line(0, "H"), {822, word(2) + word(1)}, {828, "\x02"}}));
    ASSERT_EQ(host.open(), 0);
    EXPECT_TRUE(matches(host.read(), no_tab_stops + "11 0 9216 |" + attributes_off +
                                         "7 0 0 0 | 6 1 | 13 6 0 | 12 1 3 | 4 2 1 | 6 2 | 'H' | "
                                         "13 1 0 | 4 2 0 | 13 7 0 |" +
                                         line_defaults + "13 2 0"));
}

TEST(ProfessionalWriteLineReader, AStoppedHeaderEndsTheCall)
{
    RecordingHost host(write_document(4, bytes("0E"), {write_header_line(0, "H")}));
    ASSERT_EQ(host.open(), 0);
    host.stop_at(1);
    EXPECT_TRUE(after_announcements(host.read()).empty());
    EXPECT_TRUE(matches(after_announcements(host.read()), "13 2 0"));
}

TEST(ProfessionalWriteLineReader, ReportsLineSpacingOnBothSidesOfALineEnd)
{
    for (const int type : {4, 5}) {
        EXPECT_TRUE(matches(text("01 'Hi' 01 0E", type), single_spacing + "'Hi' | " +
                                                             single_spacing + "13 1 0 | " +
                                                             single_spacing + "13 2 0"));
        EXPECT_TRUE(matches(text("03 'Hi' 03 0E", type), double_spacing + "'Hi' | " +
                                                             double_spacing + "13 1 0 | " +
                                                             double_spacing + "13 2 0"));
    }
}

TEST(ProfessionalWriteLineReader, ASoftEndIsASpaceEvenAfterASpace)
{
    EXPECT_TRUE(matches(text("00 'text ' 00 'more' 0E"), "'text  more' | 13 2 0"));
    EXPECT_TRUE(matches(text("00 'text' 00 'more' 0E"), "'text more' | 13 2 0"));
}

TEST(ProfessionalWriteLineReader, TheLinesOwnTypeDecidesHowItEnds)
{
    EXPECT_TRUE(matches(text("00 'a' 01 'b' 00 'c' 0E"), "'a' | " + single_spacing + "' ' | " +
                                                             single_spacing +
                                                             "'b' | 13 1 0 | 'c' | 13 2 0"));
}

TEST(ProfessionalWriteLineReader, AnEmptyLineEndsAParagraph)
{
    EXPECT_TRUE(matches(text("00 00 0E"), "13 1 0 | 13 2 0"));
    EXPECT_TRUE(matches(text("01 01 0E"),
                        single_spacing + single_spacing + "13 1 0 | " + single_spacing + "13 2 0"));
}

TEST(ProfessionalWriteLineReader, AnEmptyLineTakesTheLastIndentBack)
{
    RecordingHost host(write_document(4, bytes("01 '   abc' 00 00 0E")));
    ASSERT_EQ(host.open(), 0);
    EXPECT_TRUE(
        matches(after_announcements(host.read()),
                single_spacing + "'abc' | 7 432 0 432 | 13 1 0 | 7 0 0 0 | 13 1 0 | 13 2 0"));
    EXPECT_EQ(host.instance->state.saved.pwReaderWord, 0);
}

TEST(ProfessionalWriteLineReader, LeadingSpacesBecomeIndentsThatTheNextParagraphTakesBack)
{
    EXPECT_TRUE(matches(text("01 '   abc' 01 'def' 01 0E"),
                        single_spacing + "'abc' | " + single_spacing + "7 432 0 432 | 13 1 0 | " +
                            single_spacing + "'def' | " + single_spacing + "7 0 0 0 | 13 1 0 | " +
                            single_spacing + "13 2 0"));
}

TEST(ProfessionalWriteLineReader, TheLastIndentIsRememberedOverReads)
{
    RecordingHost host(write_document(4, bytes("01 '   abc' 01 'def' 01 'ghi' 01 0E")));
    ASSERT_EQ(host.open(), 0);
    host.stop_at_all();
    host.read();
    EXPECT_EQ(host.instance->state.saved.pwReaderWord, 3);
    EXPECT_TRUE(matches(after_announcements(host.read()),
                        single_spacing + "'def' | " + single_spacing + "7 0 0 0 | 13 1 0"));
    EXPECT_TRUE(matches(after_announcements(host.read()),
                        single_spacing + "'ghi' | " + single_spacing + "13 1 0"));
}

TEST(ProfessionalWriteLineReader, AnEqualLeftIndentIsReportedAgain)
{
    EXPECT_TRUE(matches(text("01 ' a' 00 ' b' 0E"),
                        single_spacing + "'a' | 7 144 0 144 | 13 1 0 | 'b' | 13 2 0"));
    EXPECT_TRUE(matches(text("01 ' a' 01 ' b' 00 0E"),
                        single_spacing + "'a' | " + single_spacing + "7 144 0 144 | 13 1 0 | " +
                            single_spacing + "'b' | 7 144 0 144 | 13 1 0 | 13 2 0"));
}

TEST(ProfessionalWriteLineReader, FirstLineAndLastLineIndent)
{
    EXPECT_TRUE(matches(text("00 '  aaa' 01 ' bbb' 00 0E"),
                        "'aaa' | " + single_spacing + "' ' | " + single_spacing +
                            "'bbb' | 7 144 0 288 | 13 1 0 | 13 2 0"));
}

TEST(ProfessionalWriteLineReader, AFirstLineIndentAloneIsReported)
{
    EXPECT_TRUE(matches(text("00 '  aaa' 01 'bbb' 01 'ccc' 00 0E"),
                        "'aaa' | " + single_spacing + "' ' | " + single_spacing + "'bbb' | " +
                            single_spacing + "7 0 0 288 | 13 1 0 | " + single_spacing +
                            "'ccc' | 13 1 0 | 13 2 0"));
}

TEST(ProfessionalWriteLineReader, ALineOfSpacesIsSpecialCharacters)
{
    EXPECT_TRUE(matches(text("01 '   ' 01 0E"), single_spacing + single_spacing +
                                                    "*'   ' | 13 1 0 | " + single_spacing +
                                                    "13 2 0"));
    EXPECT_TRUE(matches(text("00 '   ' 00 0E"), "*'   ' | 13 1 0 | 13 2 0"));
}

TEST(ProfessionalWriteLineReader, ALineOfSpacesDropsTheFirstLinesIndent)
{
    EXPECT_TRUE(matches(text("00 '  aaa' 00 00 0E"), "'aaa ' | 13 1 0 | 13 2 0"));
}

TEST(ProfessionalWriteLineReader, ATypeByteFromFourOnIsText)
{
    EXPECT_TRUE(matches(text("'Hi' 00 0E"), "'Hi ' | 13 2 0"));
    EXPECT_TRUE(matches(text("04 0D 00 0E"), "1 4 | 1 13 | ' ' | 13 2 0"));
    EXPECT_TRUE(matches(text("C1 02 00 0E"), "4 2 1 | 'A ' | 13 2 0"));
}

TEST(ProfessionalWriteLineReader, AReturnIsACharacter)
{
    EXPECT_TRUE(matches(text("00 'a' 0D 'b' 0E"), "'a' | 1 13 | 'b' | 13 2 0"));
}

TEST(ProfessionalWriteLineReader, AFormFeedIsIgnored)
{
    EXPECT_TRUE(matches(text("00 0C ' ' 0C 'a' 0C 'b' 0E"), "'ab' | 13 2 0"));
}

TEST(ProfessionalWriteLineReader, BitSixOfTheAttributeByteKeepsTheHighBit)
{
    EXPECT_TRUE(matches(text("00 E9 41 0E"), "4 4 1 | 1 233 | 13 2 0"));
    EXPECT_TRUE(matches(text("00 E9 01 0E"), "4 4 1 | 'i' | 13 2 0"));
    EXPECT_TRUE(matches(text("00 E9 40 0E"), "1 233 | 13 2 0"));
}

TEST(ProfessionalWriteLineReader, AByteOfAllBitsIsASpace)
{
    EXPECT_TRUE(matches(text("00 FF 40 0E"), "' ' | 13 2 0")) << "and no leading one";
    EXPECT_TRUE(matches(text("00 FF 00 0E"), "1 127 | 13 2 0"));
}

TEST(ProfessionalWriteLineReader, AMaskedSpaceIsASpace)
{
    EXPECT_TRUE(matches(text("00 A0 00 'a' 0E"), "'a' | 13 2 0"));
    EXPECT_TRUE(matches(text("00 A0 40 'a' 0E"), "1 160 | 'a' | 13 2 0"));
}

TEST(ProfessionalWriteLineReader, AMaskedControlByteIsACharacter)
{
    EXPECT_TRUE(matches(text("00 80 00 81 00 82 00 83 00 87 00 8C 00 8E 00 0E"),
                        "1 0 | 1 1 | 1 2 | 1 3 | 1 7 | 1 12 | 1 14 | 13 2 0"));
}

TEST(ProfessionalWriteLineReader, Commands)
{
    EXPECT_TRUE(matches(text("00 'a*N*b' 0E"), "'a' | 3 4 0 | *'*N*' | 'b' | 13 2 0"));
    EXPECT_TRUE(matches(text("00 AA 00 'C*' 00 0E"), "*'*C*' | ' ' | 13 2 0"));
    EXPECT_TRUE(matches(text("00 '2*3' 0E"), "'2*3' | 13 2 0"));
}

TEST(ProfessionalWriteLineReader, AttributesStayOverALineEnd)
{
    EXPECT_TRUE(
        matches(text("00 C1 02 00 C2 02 'c' 00 0E"), "4 2 1 | 'A B' | 4 2 0 | 'c ' | 13 2 0"));
}

TEST(ProfessionalWriteLineReader, LeadingSpacesHaveSixteenBits)
{
    // A negative count is not an indent, but it differs from the last: -25536 columns.
    EXPECT_TRUE(matches(text("01 ' 'x40000 'a' 00 0E"),
                        single_spacing + "'a' | 7 -3677184 0 -3677184 | 13 1 0 | 13 2 0"));
    EXPECT_TRUE(matches(text("01 ' 'x40000 00 0E"), single_spacing + "13 1 0 | 13 2 0"));
}

// ------------------------------------------------------------ suppressed stretches

TEST(ProfessionalWriteLineReader, ASecondTwoSuppressesTheRestOfTheLine)
{
    EXPECT_TRUE(matches(text("02 'ab' 02 'cd' 00 0E"), "'ab ' | 13 2 0"));
}

TEST(ProfessionalWriteLineReader, AThreeSuppressesTooAndReportsItsSpacing)
{
    EXPECT_TRUE(
        matches(text("02 'ab' 03 'cd' 00 0E"), "'ab' | " + double_spacing + "' ' | 13 2 0"));
}

TEST(ProfessionalWriteLineReader, WhileSuppressedATwoEndsTheLineAndTheTextComesBack)
{
    EXPECT_TRUE(matches(text("02 'ab' 02 'cd' 02 'ef' 00 0E"), "'ab ef ' | 13 2 0"));
}

TEST(ProfessionalWriteLineReader, WhileSuppressedAThreeEndsTheLine)
{
    EXPECT_TRUE(matches(text("02 'ab' 03 'cd' 03 'ef' 00 0E"),
                        "'ab' | " + double_spacing + double_spacing + "' ' | " + double_spacing +
                            "'ef' | 13 1 0 | 13 2 0"));
}

TEST(ProfessionalWriteLineReader, WithTheFlagAtOneNeitherEndsALine)
{
    EXPECT_TRUE(matches(text_with_flag(1, "'ab' 02 'cd' 00 0E"), "'ab ' | 13 2 0"));
    EXPECT_TRUE(matches(text_with_flag(1, "'ab' 03 'cd' 00 0E"),
                        "'ab' | " + double_spacing + "' ' | 13 2 0"));
}

TEST(ProfessionalWriteLineReader, WithTheFlagAtZeroATwoEndsTheLine)
{
    EXPECT_TRUE(matches(text("00 'ab' 02 'cd' 00 0E"), "'ab cd ' | 13 2 0"));
}

TEST(ProfessionalWriteLineReader, EveryTypeByteSetsTheFlag)
{
    const auto flag_after = [](uint8_t flag, std::string_view body) {
        Bench bench(write_document(4, bytes(body)));
        EXPECT_TRUE(bench.opens());
        bench.saved().pwReaderFlag = flag;
        bench.read();
        return static_cast<int>(bench.saved().pwReaderFlag);
    };
    for (const uint8_t flag : std::initializer_list<uint8_t>{0, 1, 2, 3, 255}) {
        EXPECT_EQ(flag_after(flag, "00 0E"), 0);
        EXPECT_EQ(flag_after(flag, "01 0E"), 0);
        EXPECT_EQ(flag_after(flag, "02 0E"), flag == 1 ? 2 : 1);
        EXPECT_EQ(flag_after(flag, "03 0E"), 0);
        EXPECT_EQ(flag_after(flag, "'a' 0E"), flag);
    }
}

TEST(ProfessionalWriteLineReader, TextIsDroppedFromFlagTwoOn)
{
    EXPECT_TRUE(matches(text_with_flag(1, "'ab' 0E"), "'ab' | 13 2 0"));
    EXPECT_TRUE(matches(text_with_flag(2, "'ab' 0E"), "13 2 0"));
    EXPECT_TRUE(matches(text_with_flag(3, "'ab' 0E"), "13 2 0"));
    EXPECT_TRUE(matches(text_with_flag(255, "'ab' 0E"), "13 2 0"));
    EXPECT_TRUE(matches(text_with_flag(1, "02 'ab' 0E"), "13 2 0"));
}

TEST(ProfessionalWriteLineReader, TheFlagSurvivesARead)
{
    // The line ends in a suppressed stretch; its read is stopped there.
    RecordingHost host(write_document(4, bytes("03 'a' 02 02 02 'cd' 00 0E")));
    ASSERT_EQ(host.open(), 0);
    host.stop_at_all();
    EXPECT_TRUE(matches(after_announcements(host.read()), double_spacing + "'a' | 13 1 0"));
    EXPECT_TRUE(matches(after_announcements(host.read()), "13 1 0"));
    EXPECT_EQ(host.instance->state.saved.pwReaderFlag, 2);
    EXPECT_TRUE(matches(after_announcements(host.read()), "'cd ' | 13 2 0"));
}

TEST(ProfessionalWriteLineReader, AttributesOfDroppedTextAreReported)
{
    EXPECT_TRUE(matches(text("02 'a' 02 E2 01 'c' 00 0E"), "'a' | 4 4 1 | 4 4 0 | ' ' | 13 2 0"));
}

TEST(ProfessionalWriteLineReader, DroppedTextDoesNotFillALine)
{
    EXPECT_TRUE(matches(text("02 02 'cd' 00 0E"), "13 1 0 | 13 2 0"));
    EXPECT_TRUE(matches(text("02 '  ' 02 'cd' 00 0E"), "*'  ' | 13 1 0 | 13 2 0"));
    EXPECT_TRUE(matches(text("02 'ab' 02 '   *N*' 00 0E"), "'ab ' | 13 2 0"));
}

// -------------------------------------------------------------------- 0x07 records

TEST(ProfessionalWriteLineReader, ARecordChangesTheMarginsOfTheNextRead)
{
    RecordingHost host(write_document(4, bytes("01 'a' 07 05 01 0B 47 'b' 01 'c' 0E")));
    ASSERT_EQ(host.open(), 0);
    host.stop_at_all();
    EXPECT_TRUE(matches(after_announcements(host.read()),
                        single_spacing + "'ab' | " + single_spacing + "13 1 0"));
    EXPECT_TRUE(matches(host.read(), no_tab_stops + "11 1440 10080 |" + attributes_off +
                                         line_defaults + single_spacing + "'c' | 13 2 0"));
}

TEST(ProfessionalWriteLineReader, AfterARecordLeadingSpacesAreCharacters)
{
    EXPECT_TRUE(matches(text("00 07 05 01 0B 47 '  ' 00 0E"), "'  ' | 13 1 0 | 13 2 0"));
    EXPECT_TRUE(matches(text("00 07 03 02 '  a' 00 0E"), "'  a ' | 13 2 0"));
}

TEST(ProfessionalWriteLineReader, SpacesBeforeARecordStayAnIndent)
{
    EXPECT_TRUE(matches(text("01 '  ' 07 03 02 ' a' 00 0E"),
                        single_spacing + "' a' | 7 288 0 288 | 13 1 0 | 13 2 0"));
    EXPECT_TRUE(matches(text("00 '  ' 07 03 02 ' ' 00 0E"), "' ' | *'  ' | 13 1 0 | 13 2 0"));
}

TEST(ProfessionalWriteLineReader, ARecordAfterTextChangesNoSpaces)
{
    EXPECT_TRUE(matches(text("00 'a' 07 03 02 ' b' 0E"), "'a b' | 13 2 0"));
}

TEST(ProfessionalWriteLineReader, TwoRecordsInALine)
{
    EXPECT_TRUE(matches(text("00 07 03 02 07 05 01 02 03 ' a' 0E"), "' a' | 13 2 0"));
}

TEST(ProfessionalWriteLineReader, ARecordMayReplaceATypeByte)
{
    // Opening has read the record already; here it is read again, as text.
    Bench bench(write_document(4, bytes("07 05 01 0B 47 ' b' 0E")));
    ASSERT_TRUE(bench.opens());
    VwCharSeek(bench.stream, write_body_offset, 0);
    EXPECT_TRUE(matches(after_announcements(bench.read()), "' b' | 13 2 0"));
}

// ------------------------------------------------------------------------- reads

TEST(ProfessionalWriteLineReader, AStopLeavesTheNextLinesTypeByte)
{
    RecordingHost host(write_document(4, bytes("01 'Hi' 01 'Yo' 03 0E")));
    ASSERT_EQ(host.open(), 0);
    host.stop_at_all();
    const std::string start = no_tab_stops + "11 0 9216 |" + attributes_off + line_defaults;
    EXPECT_TRUE(
        matches(host.read(), start + single_spacing + "'Hi' | " + single_spacing + "13 1 0"));
    EXPECT_EQ(VwCharTell(host.stream), write_body_offset + 3);
    EXPECT_TRUE(
        matches(host.read(), start + single_spacing + "'Yo' | " + double_spacing + "13 1 0"));
    EXPECT_TRUE(matches(host.read(), start + double_spacing + "13 2 0"));
}

TEST(ProfessionalWriteLineReader, EachCallBeginsAParagraph)
{
    RecordingHost host(write_document(4, bytes("01 'a' 00 '  b' 01 'c' 00 0E")));
    ASSERT_EQ(host.open(), 0);
    host.stop_at_all();
    host.read();
    EXPECT_TRUE(matches(after_announcements(host.read()), "'b' | " + single_spacing + "' ' | " +
                                                              single_spacing +
                                                              "'c' | 7 0 0 288 | 13 1 0"));
}

} // namespace

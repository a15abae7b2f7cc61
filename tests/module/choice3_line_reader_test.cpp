// The reader of First Choice 3 text, whose lines begin with header bytes.
#include "tests/module/bench.h"

#include <gtest/gtest.h>

namespace {

using namespace tests;
using namespace vs_pfs;

// What a body reports after the announcements.
Calls text(std::string_view body, uint16_t left = 0)
{
    RecordingHost host(choice_document('3', bytes(body), {choice_margins(left, 60)}));
    EXPECT_EQ(host.open(1058), 0);
    return after_announcements(host.read());
}

TEST(Choice3LineReader, OpensWithItsAnnouncementsInOrder)
{
    RecordingHost host(choice_document('3', bytes("0E"), {choice_margins(9, 69)}));
    ASSERT_EQ(host.open(), 0);
    EXPECT_TRUE(matches(host.read(), no_tab_stops + attributes_off + "11 1296 9936 |" +
                                         line_defaults + "13 2 0"));
}

TEST(Choice3LineReader, HeadersComeBetweenMarginsAndIndents)
{
    RecordingHost host(
        choice_document('3', bytes("0E"), {{356, "LC"}, choice_header_line(2, "F")}));
    ASSERT_EQ(host.open(), 0);
    EXPECT_TRUE(matches(host.read(), no_tab_stops + attributes_off +
                                         "11 0 8640 | 7 0 0 0 | 6 1 | 13 6 0 | 12 2 3 | 6 3 | "
                                         "'F' | 13 1 0 | 13 7 0 |" +
                                         line_defaults + "13 2 0"));
}

TEST(Choice3LineReader, AStoppedHeaderEndsTheCall)
{
    RecordingHost host(choice_document('3', bytes("0E"), {choice_header_line(0, "H")}));
    ASSERT_EQ(host.open(), 0);
    host.stop_at(1);
    EXPECT_TRUE(after_announcements(host.read()).empty());
    EXPECT_TRUE(matches(after_announcements(host.read()), "13 2 0"));
}

TEST(Choice3LineReader, ABodyMayBeItsEndByte)
{
    RecordingHost host(choice_document('3', bytes("0E 'x'")));
    ASSERT_EQ(host.open(), 0);
    EXPECT_TRUE(matches(after_announcements(host.read()), "13 2 0"));
    EXPECT_EQ(VwCharTell(host.stream), choice_body_offset + 1);
}

TEST(Choice3LineReader, ALineWithTwoHeaderBytesMayEndItsParagraph)
{
    EXPECT_TRUE(
        matches(text("40 01 '  A' 0D 0E"), "'A' | 7 288 0 288 | 13 1 0 | 7 0 0 0 | 13 2 0"));
}

TEST(Choice3LineReader, ALineWithThreeHeaderBytesDoesNot)
{
    EXPECT_TRUE(matches(text("40 41 01 '  A' 0D 00 'b' 0E"), "'A b' | 13 2 0"));
}

TEST(Choice3LineReader, NorALineWithOneOrWithoutTheBit)
{
    EXPECT_TRUE(matches(text("01 'a' 0D 0E"), "'a ' | 13 2 0"));
    EXPECT_TRUE(matches(text("41 00 'a' 0D 0E"), "'a ' | 13 2 0"));
    EXPECT_TRUE(matches(text("40 BE 'a' 0D 0E"), "'a ' | 13 2 0"));
    EXPECT_TRUE(matches(text("40 40 40 41 01 'a' 0D 0E"), "'a ' | 13 2 0"));
}

TEST(Choice3LineReader, TheChainsLengthHasSixteenBits)
{
    EXPECT_TRUE(matches(text("40x65537 01 'a' 0D 0E"), "'a' | 13 1 0 | 13 2 0"));
    EXPECT_TRUE(matches(text("40x65536 01 'a' 0D 0E"), "'a ' | 13 2 0"));
    EXPECT_TRUE(matches(text("40x257 01 'a' 0D 0E"), "'a ' | 13 2 0"));
}

TEST(Choice3LineReader, OnlyTheLastHeaderBytesBitCounts)
{
    EXPECT_TRUE(matches(text("40 BF 'a' 0D 0E"), "'a' | 13 1 0 | 13 2 0"));
    EXPECT_TRUE(matches(text("50 01 'a' 0D 0E"), "'a' | 13 1 0 | 13 2 0"));
}

TEST(Choice3LineReader, HeaderBytesAfterTheFirstAreNoControlBytes)
{
    EXPECT_TRUE(matches(text("40 0E 'a' 0D 0E"), "'a ' | 13 2 0"));
    EXPECT_TRUE(matches(text("40 0D 'a' 0D 0E"), "'a' | 13 1 0 | 13 2 0"));
}

TEST(Choice3LineReader, FirstHeaderBytesSayTheKindOfLine)
{
    for (int first = 0; first < 256; ++first) {
        if (first == 0x0E) {
            continue;
        }
        constexpr const char *digits = "0123456789ABCDEF";
        const std::string header{digits[first >> 4], digits[first & 15], ' '};
        const std::string rest = (first & 0x40) != 0 ? "00 'a' 0D" : "'a' 0D";
        const bool special = (first & 0x10) == 0 && (first & 0x08) != 0;
        if (special && (first & 0x04) != 0) {
            EXPECT_TRUE(matches(text(header + "00 00 00 0D 0E"), "8 | 9 | 11 0 8640 | 13 2 0"))
                << header;
        } else {
            EXPECT_TRUE(
                matches(text(header + rest + "0E"), special ? "3 4 0 | 13 2 0" : "'a ' | 13 2 0"))
                << header;
        }
    }
}

TEST(Choice3LineReader, APageBreakLineReportsNothingElse)
{
    EXPECT_TRUE(matches(text("08 ' a' C1 40 06 '*N*' 0C 0E 0D 00 'b' 0E"), "3 4 0 | 'b' | 13 2 0"));
}

TEST(Choice3LineReader, APageBreakLineHasAHeaderChainToo)
{
    EXPECT_TRUE(matches(text("48 40 00 'a' 0D 0E"), "3 4 0 | 13 2 0"));
    EXPECT_TRUE(matches(text("48 0D 'a' 0D 0E"), "3 4 0 | 13 2 0"))
        << "the return within the chain does not end the line";
    EXPECT_TRUE(matches(text("48 01 'a' 0D 0E"), "3 4 0 | 13 2 0")) << "nor a paragraph";
}

TEST(Choice3LineReader, APageBreakLineInAParagraphLeavesItRunning)
{
    EXPECT_TRUE(matches(text("00 '  a' 0D 08 0D 40 01 'b' 0D 0E"),
                        "'a ' | 3 4 0 | 'b' | 7 0 0 288 | 13 1 0 | 7 0 0 0 | 13 2 0"));
}

TEST(Choice3LineReader, BitFourMakesATextLine)
{
    EXPECT_TRUE(matches(text("18 'a' 0D 0E"), "'a ' | 13 2 0"));
    EXPECT_TRUE(matches(text("1C 'a' 0D 0E"), "'a ' | 13 2 0"));
}

TEST(Choice3LineReader, ARulerLineIsReportedWhereItStands)
{
    EXPECT_TRUE(matches(text("40 01 'a' 0D 0C 00 00 00 '[ T ]' 0D 40 01 'b' 0D 0E"),
                        "'a' | 13 1 0 | 8 | 10 1 0 0 288 | 9 | 11 0 576 | 'b' | 13 1 0 | 13 2 0"));
}

TEST(Choice3LineReader, TheNextReadTellsTheRulersTableAndMargins)
{
    RecordingHost host(choice_document(
        '3', bytes("0C 00 00 00 '  [ T ]' 0D 40 01 'a' 0D 00 'b' 0E"), {{366, "\x01"}}));
    ASSERT_EQ(host.open(), 0);
    host.stop_at_all();
    EXPECT_TRUE(matches(host.read(), "8 | 10 1 0 0 0 | 9 |" + attributes_off + "11 0 8640 |" +
                                         line_defaults +
                                         "8 | 10 1 0 0 576 | 9 | 11 288 864 | 'a' | 13 1 0"));
    EXPECT_TRUE(matches(host.read(), "8 | 10 1 0 0 576 | 9 |" + attributes_off + "11 288 864 |" +
                                         line_defaults + "'b' | 13 2 0"));
}

TEST(Choice3LineReader, ARulerLineReadsNoHeaderChain)
{
    // With bit 0x40 set, too, the three bytes follow at once.
    EXPECT_TRUE(matches(text("4C 40 40 40 'T' 0D 0E"), "8 | 10 1 0 0 0 | 9 | 11 0 8640 | 13 2 0"));
}

TEST(Choice3LineReader, WhatAFullRulerLeavesIsTheNextLine)
{
    std::string stops;
    for (int i = 0; i < 30; ++i) {
        stops += "10 1 0 0 " + std::to_string(144 * i) + " | ";
    }
    EXPECT_TRUE(matches(text("0C 00 00 00 'T'x100 'X' 00 'ab' 0D 0E"),
                        "8 | " + stops + "9 | 11 0 8640 | 'ab ' | 13 2 0"));
}

TEST(Choice3LineReader, AFormFeedInALineIsACharacter)
{
    EXPECT_TRUE(matches(text("00 'a' 0C 'b' 0D 0E"), "'a' | 1 12 | 'b ' | 13 2 0"));
}

TEST(Choice3LineReader, ASoftEndIsOneSpace)
{
    EXPECT_TRUE(matches(text("00 'a' 0D 00 'b' 0E"), "'a b' | 13 2 0"));
    EXPECT_TRUE(matches(text("00 'a ' 0D 00 'b' 0E"), "'a b' | 13 2 0"));
}

TEST(Choice3LineReader, ASoftEndAfterSpacesOnlyIsASpaceToo)
{
    EXPECT_TRUE(matches(text("00 '  ' 0D 00 'a' 0D 0E"), "' a ' | 13 2 0"));
}

TEST(Choice3LineReader, AnEmptySoftLineIsASpace)
{
    EXPECT_TRUE(matches(text("00 0D 00 0D 0E"), "'  ' | 13 2 0"));
}

TEST(Choice3LineReader, AnEmptyHardLineEndsAParagraph)
{
    EXPECT_TRUE(matches(text("40 01 0D 0E", 9), "13 1 0 | 13 2 0"));
}

TEST(Choice3LineReader, AHardLineOfSpacesIndents)
{
    EXPECT_TRUE(matches(text("40 01 '  ' 0D 0E"), "7 288 0 288 | 13 1 0 | 7 0 0 0 | 13 2 0"));
}

TEST(Choice3LineReader, TheFirstAndTheLastLineIndent)
{
    EXPECT_TRUE(matches(text("00 '  a' 0D 40 01 '   b' 0D 40 01 'c' 0D 0E"),
                        "'a b' | 7 432 0 288 | 13 1 0 | 7 0 0 0 | 'c' | 13 1 0 | 13 2 0"));
    EXPECT_TRUE(matches(text("00 'a' 0D 40 01 '   b' 0D 0E"),
                        "'a b' | 7 432 0 0 | 13 1 0 | 7 0 0 0 | 13 2 0"));
}

TEST(Choice3LineReader, LineEndsHaveNoSpacingOfTheirOwn)
{
    for (const Call &call : text("40 01 'a' 0D 00 'b' 0D 40 01 'c' 0D 0E")) {
        EXPECT_NE(call.id, VW_SO_LINE_SPACING);
    }
}

TEST(Choice3LineReader, AttributesAreThoseOfFirstChoice)
{
    EXPECT_TRUE(matches(text("00 C1 08 C1 01 C1 48 04 'b' 0E"),
                        "1 193 | 4 4 1 | 'A' | 4 4 0 | 4 11 1 | 1 193 | 4 11 0 | 'b' | 13 2 0"));
    EXPECT_TRUE(matches(text("00 C1 40 06 C2 40 06 0E"), "4 10 1 | 4 11 1 | 'AB' | 13 2 0"));
}

TEST(Choice3LineReader, MaskedBytes)
{
    EXPECT_TRUE(matches(text("00 8D 00 8E 00 8C 00 0E"), "1 13 | 1 14 | 1 12 | 13 2 0"));
    EXPECT_TRUE(
        matches(text("40 01 A0 00 'a' 0D 0E"), "'a' | 7 144 0 144 | 13 1 0 | 7 0 0 0 | 13 2 0"));
    EXPECT_TRUE(matches(text("00 AA 00 'N*' 0E"), "3 4 0 | *'*N*' | 13 2 0"));
    EXPECT_TRUE(matches(text("00 FF 08 0D 0E"), "'  ' | 13 2 0"));
    EXPECT_TRUE(matches(text("00 FF 00 0E"), "1 127 | 13 2 0"));
}

TEST(Choice3LineReader, Commands)
{
    EXPECT_TRUE(
        matches(text("00 'a*NEW PAGE*b' 0E"), "'a' | 3 4 0 | *'*NEW PAGE*' | 'b' | 13 2 0"));
    EXPECT_TRUE(matches(text("00 '2*3' 0E"), "'2*3' | 13 2 0"));
}

TEST(Choice3LineReader, TheEndByteMayStandWithinALine)
{
    EXPECT_TRUE(matches(text("40 01 '  a' 0E 'b' 0D"), "'a' | 13 2 0"));
}

TEST(Choice3LineReader, AnswerOneReturnsAtOnce)
{
    RecordingHost host(choice_document('3', bytes("40 01 '  a' 0D 40 01 'b' 0D 0E")));
    ASSERT_EQ(host.open(), 0);
    host.stop_at_all();
    const std::string start = no_tab_stops + attributes_off + "11 0 8640 |" + line_defaults;
    EXPECT_TRUE(matches(host.read(), start + "'a' | 7 288 0 288 | 13 1 0"));
    EXPECT_EQ(VwCharTell(host.stream), choice_body_offset + 6);
    EXPECT_TRUE(matches(host.read(), start + "'b' | 13 1 0"));
    EXPECT_TRUE(matches(host.read(), start + "13 2 0"));
}

} // namespace

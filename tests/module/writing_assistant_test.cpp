// What the PFS: WRITE reader does in Writing Assistant text only: a different kind of attribute
// pairs, a translation of characters, and a lookahead that ignores both.
#include "tests/module/bench.h"

#include <gtest/gtest.h>

#include <array>

namespace {

using namespace tests;
using namespace vs_pfs;

constexpr int writing_assistant = 3;

// What a body reports after the announcements. Its first return, which would be swallowed,
// is put before it.
Calls text(std::string_view body, uint16_t left = 0, uint16_t right = 64)
{
    RecordingHost host(
        write_document(writing_assistant, bytes("0D") + bytes(body), {write_margins(left, right)}));
    EXPECT_EQ(host.open(1016), 0);
    return after_announcements(host.read());
}

std::string letters(std::size_t count)
{
    return "'" + std::string(count, 'a') + "'";
}

// Writing Assistant's translation of a decoded value.
int translated(int value)
{
    struct Range {
        int first;
        int last;
        int result;
    };
    constexpr std::array<Range, 9> ranges{{{0x0F, 0x11, 0xE4},
                                           {0x12, 0x15, 0xEB},
                                           {0x16, 0x19, 0xF0},
                                           {0x1A, 0x1E, 0xF6},
                                           {0x1F, 0x1F, 0xFE},
                                           {0xB0, 0xB1, 0xB3},
                                           {0xB2, 0xB8, 0xBF},
                                           {0xB9, 0xBB, 0xD9},
                                           {0xBC, 0xBF, 0xE0}}};
    for (const Range &range : ranges) {
        if (value >= range.first && value <= range.last) {
            return range.result + value - range.first;
        }
    }
    return value;
}

std::string byte_text(int value)
{
    constexpr const char *digits = "0123456789ABCDEF";
    return {digits[value >> 4], digits[value & 15], ' '};
}

// A letter before the byte keeps it from being a leading space.
void expect_assistant_byte(const std::string &stored, int expected)
{
    EXPECT_TRUE(
        matches(text("'a' " + stored + "0E"), "'a' | 1 " + std::to_string(expected) + " | 13 2 0"))
        << stored;
}

TEST(WritingAssistant, TranslatesEveryPlainByte)
{
    for (int value = 0; value < 0xC0; ++value) {
        if (value != 0x0C && value != 0x0D && value != 0x0E) {
            expect_assistant_byte(byte_text(value), translated(value));
        }
    }
}

TEST(WritingAssistant, TranslatesEveryPrefixedByteInEveryRange)
{
    for (int value = 0xC0; value < 0x100; ++value) {
        for (const int other_bits : {0x00, 0x40, 0x80}) {
            const auto pair = [&](int range) {
                return byte_text(value) + byte_text(range | other_bits);
            };
            const int low = value == 0xE0 ? 0xE0 : translated(value & 0x3F);
            expect_assistant_byte(pair(0x00), low);
            expect_assistant_byte(pair(0x30), low);
            expect_assistant_byte(pair(0x10), translated(value & 0x7F));
            expect_assistant_byte(pair(0x20), translated(value & 0xBF));
        }
    }
}

TEST(WritingAssistant, AttributesAreTheLowFourBits)
{
    EXPECT_TRUE(matches(text("F0 21 0E"), "4 4 1 | 1 179 | 13 2 0"));
    EXPECT_TRUE(matches(text("E0 00 0E"), "1 224 | 13 2 0"));
    EXPECT_TRUE(matches(text("1F 0E"), "1 254 | 13 2 0"));
    EXPECT_TRUE(matches(text("C1 1F 'b' 0E"),
                        "4 4 1 | 4 3 1 | 4 2 1 | 4 11 1 | 'A' | 4 4 0 | 4 3 0 | 4 2 0 | 4 11 0 | "
                        "'b' | 13 2 0"));
}

TEST(WritingAssistant, NoPairDecodesToASpace)
{
    // 0xE0, the only byte that could, is kept in the first range.
    EXPECT_TRUE(matches(text("E0 00 'a' 0E"), "1 224 | 'a' | 13 2 0"));
    EXPECT_TRUE(matches(text("E0 10 E0 20 '  ' 0D 0E"), "'`' | 1 160 | '  ' | 13 1 0 | 13 2 0"));
}

TEST(WritingAssistant, ADecodedAsteriskMayOpenACommand)
{
    EXPECT_TRUE(matches(text("EA 00 'N*' 0E"), "3 4 0 | *'*N*' | 13 2 0"));
}

TEST(WritingAssistant, ADecodedControlByteIsACharacter)
{
    EXPECT_TRUE(matches(text("CC 00 CD 00 CE 00 0E"), "1 12 | 1 13 | 1 14 | 13 2 0"));
}

TEST(WritingAssistant, BytesBelowTheHighestQuarterAreNoPairs)
{
    EXPECT_TRUE(matches(text("80 01 BF 01 0E"), "1 128 | 1 1 | 1 227 | 1 1 | 13 2 0"));
}

TEST(WritingAssistant, TheLookaheadTakesAllHighBytesForPairs)
{
    // The reader sees five characters, the lookahead four.
    EXPECT_TRUE(matches(text(letters(60) + " 0D 80 'bcde' 0E"),
                        letters(60) + " | 13 1 0 | 1 128 | 'bcde' | 13 2 0"));
    EXPECT_TRUE(matches(text(letters(60) + " 0D 80 'bcdef' 0E"),
                        letters(60) + " | ' ' | 1 128 | 'bcdef' | 13 2 0"));
}

TEST(WritingAssistant, TheLookaheadReadsOnOverAReturnThatItTakesForAnAttribute)
{
    EXPECT_TRUE(matches(text(letters(60) + " 0D 80 0D 'bbbb' 0E"),
                        letters(60) + " | ' ' | 1 128 | 13 1 0 | 'bbbb' | 13 2 0"));
}

// Many line ends before one long word: each looks ahead at the same word, and each result is that
// of a fresh scan.
TEST(WritingAssistant, LineEndsInARowAgreeWithFreshLooks)
{
    std::string body;
    for (int line = 0; line < 40; ++line) {
        body += "80 0D ";
    }
    // Writing Assistant reads the line ends; its lookahead runs over all of them.
    const Calls calls = text(body + "'b' 0E", 0, 21);
    std::string wanted;
    for (int line = 0; line < 40; ++line) {
        // Column 1; from here the lookahead counts one for each remaining pair, and the b.
        const int word = 39 - line + 1;
        wanted += std::string("1 128 | ") + (1 + word > 21 ? "1 32 |" : "13 1 0 |");
    }
    EXPECT_TRUE(matches(calls, wanted + "'b' | 13 2 0"));
}

} // namespace

// The header of First Choice: margins, header and footer lines, alignment and style letters,
// and the two forms of its ruler.
#include "tests/module/bench.h"

#include "vs_pfs/document_headers.h"

#include <gtest/gtest.h>

namespace {

using namespace tests;
using namespace vs_pfs;

constexpr std::size_t ruler_offset = 366;

class ChoiceHeader : public ::testing::Test {
protected:
    Bench &header(char generation, const Patches &patches, std::size_t size = 512)
    {
        bench = std::make_unique<Bench>(choice_document(generation, "", patches).substr(0, size));
        bench->state().fcVersion = generation == '3' ? 3 : 2;
        EXPECT_EQ(PfsChoiceHeaderInfo(bench->instance), 0);
        return *bench;
    }
    std::string stops() const
    {
        std::string text;
        for (int i = 0; i < bench->saved().tabCount; ++i) {
            text += (i > 0 ? " " : "") + std::to_string(bench->saved().tabPos[i]);
            EXPECT_EQ(bench->saved().tabKind[i], tab_kind_ordinary);
        }
        EXPECT_EQ(bench->saved().tabPos[bench->saved().tabCount], tab_table_end);
        return text;
    }

    std::unique_ptr<Bench> bench;
};

TEST_F(ChoiceHeader, MarginsAreStoredAsColumnsFromZero)
{
    header('2', {{0, word(10) + word(0x0146)}});
    EXPECT_EQ(bench->saved().leftMargin, 9);
    EXPECT_EQ(bench->saved().rightMargin, 0x0145);
    EXPECT_EQ(bench->state().hfMargins[0], 9);
    EXPECT_EQ(bench->state().hfMargins[1], 9);
    EXPECT_EQ(bench->state().hfMargins[2], 0x0145);
    EXPECT_EQ(bench->state().hfMargins[3], 0x0145);
}

TEST_F(ChoiceHeader, AMarginOfZeroIsColumnMinusOne)
{
    header('2', {{0, word(0) + word(0)}});
    EXPECT_EQ(bench->saved().leftMargin, 0xFFFF);
    EXPECT_EQ(bench->saved().rightMargin, 0xFFFF);
}

TEST_F(ChoiceHeader, EachLengthMarksItsLine)
{
    const std::array<std::size_t, 4> offsets{28, 110, 192, 274};
    const std::array<uint16_t, 4> masks{0x02, 0x04, 0x08, 0x16};
    for (std::size_t line = 0; line < 4; ++line) {
        header('2', {{offsets[line], "\xF1"}});
        EXPECT_EQ(bench->saved().hfPending, masks[line]);
        for (std::size_t other = 0; other < 4; ++other) {
            EXPECT_EQ(bench->state().hfLength[other], other == line ? 0xF1 : 0);
        }
    }
}

TEST_F(ChoiceHeader, ALengthOfZeroLeavesFooterLineTwoAbsent)
{
    header('2', {{275, "text without a length"}});
    EXPECT_EQ(bench->saved().hfPending, 0);
    EXPECT_EQ(bench->state().hfLength[3], 0);
}

TEST_F(ChoiceHeader, AlignmentLetters)
{
    const auto alignments = [&](char header_letter, char footer_letter) {
        header('2', {{356, std::string{header_letter, footer_letter}}});
        return std::pair<int, int>(bench->state().headerAlign, bench->state().footerAlign);
    };
    EXPECT_EQ(alignments('C', 'R'), std::pair(0, 2));
    EXPECT_EQ(alignments('R', 'C'), std::pair(2, 0));
    EXPECT_EQ(alignments('L', ' '), std::pair(1, 1));
    EXPECT_EQ(alignments('c', 'r'), std::pair(1, 1));
    EXPECT_EQ(alignments('\0', '\xFF'), std::pair(1, 1));
}

TEST_F(ChoiceHeader, StyleLetters)
{
    const auto styles = [&](std::string_view footer, std::string_view header_letters) {
        header('2', {{359, std::string(footer)}, {363, std::string(header_letters)}});
        return std::pair<int, int>(bench->state().footerAttrs, bench->state().headerAttrs);
    };
    EXPECT_EQ(styles("BU", "UX"), std::pair(3, 1));
    EXPECT_EQ(styles("UX", "XB"), std::pair(1, 2));
    EXPECT_EQ(styles("XB", "BU"), std::pair(2, 3));
    EXPECT_EQ(styles("UB", "XX"), std::pair(3, 0));
    EXPECT_EQ(styles("ub", "  "), std::pair(0, 0));
    EXPECT_EQ(styles("XU", "BB"), std::pair(1, 2));
}

TEST_F(ChoiceHeader, TheFirstStyleLetterAssignsAndTheSecondAdds)
{
    const auto from = [&](std::string_view letters, uint8_t before) {
        bench = std::make_unique<Bench>(choice_document('2', "", {{363, std::string(letters)}}));
        bench->state().fcVersion = 2;
        bench->state().headerAttrs = before;
        PfsChoiceHeaderInfo(bench->instance);
        return static_cast<int>(bench->state().headerAttrs);
    };
    EXPECT_EQ(from("UX", 0x04), 0x01);
    EXPECT_EQ(from("BX", 0x04), 0x02);
    EXPECT_EQ(from("XU", 0x04), 0x05);
    EXPECT_EQ(from("XB", 0x04), 0x06);
    EXPECT_EQ(from("XX", 0x04), 0x04);
}

TEST_F(ChoiceHeader, GenerationsTwoAndThreeHaveTheBitRuler)
{
    for (const char generation : {'2', '3'}) {
        header(generation, {{ruler_offset + 2, "\x05"}});
        EXPECT_EQ(stops(), "16 18") << generation;
        EXPECT_EQ(bench->tell(), ruler_offset + 31);
    }
}

TEST_F(ChoiceHeader, EveryOtherGenerationHasTheByteRuler)
{
    for (const char generation : {'1', '\0', '4', ' ', '\xFF'}) {
        header(generation, {{ruler_offset + 2, "\x05"}});
        EXPECT_EQ(stops(), "2");
        EXPECT_EQ(bench->tell(), ruler_offset + 99);
    }
}

TEST_F(ChoiceHeader, TheBitRulerBeginsWithTheLowestBit)
{
    header('3', {{ruler_offset, "\x81"}, {ruler_offset + 30, "\x80"}});
    EXPECT_EQ(stops(), "0 7 247");
}

TEST_F(ChoiceHeader, TheBitRulerHasThirtyOneBytes)
{
    header('3', {{ruler_offset + 31, "\xFF"}});
    EXPECT_EQ(stops(), "");
}

TEST_F(ChoiceHeader, TheBitRulerStopsAtNinetyNineStops)
{
    header('3', {{ruler_offset, std::string(31, '\xFF')}});
    EXPECT_EQ(bench->saved().tabCount, 99);
    EXPECT_EQ(bench->saved().tabPos[98], 98);
    EXPECT_EQ(bench->saved().tabPos[99], tab_table_end);
}

TEST_F(ChoiceHeader, TheByteRulerLooksAtOneBit)
{
    std::string ruler(99, '\xFE');
    ruler[4] = ruler[10] = '\x01';
    header('1', {{ruler_offset, ruler}});
    EXPECT_EQ(stops(), "4 10");
}

TEST_F(ChoiceHeader, TheByteRulerHasNinetyNineColumns)
{
    header('1', {{ruler_offset, std::string(140, '\x01')}});
    EXPECT_EQ(bench->saved().tabCount, 99);
    EXPECT_EQ(bench->saved().tabPos[98], 98);
    EXPECT_EQ(bench->saved().tabPos[99], tab_table_end);
}

TEST_F(ChoiceHeader, MissingRulerBytesAreStops)
{
    header('1', {}, ruler_offset + 95);
    EXPECT_EQ(stops(), "95 96 97 98");
    header('3', {}, ruler_offset + 30);
    EXPECT_EQ(stops(), "240 241 242 243 244 245 246 247");
}

TEST_F(ChoiceHeader, MissingLengthsMarkNoLine)
{
    header('2', {}, 100);
    EXPECT_EQ(bench->saved().hfPending, 0);
    EXPECT_EQ(bench->state().hfLength[1], 0xFFFF);
    EXPECT_EQ(bench->state().headerAlign, 1);
    EXPECT_EQ(bench->state().headerAttrs, 0);
}

TEST_F(ChoiceHeader, ReplacesTheStopsThatWereThere)
{
    header('3', {{ruler_offset, "\x05"}});
    EXPECT_EQ(stops(), "0 2");
    bench->saved().tabKind[1] = tab_kind_decimal;
    VwCharSeek(bench->stream, 0, 0);
    PfsChoiceHeaderInfo(bench->instance);
    EXPECT_EQ(stops(), "0 2");
}

} // namespace

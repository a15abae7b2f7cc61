// The header of the Write family: margins, ruler, header and footer lines, alignment and
// attributes; the helpers it is read with and the merge of its tab stops.
#include "tests/module/bench.h"

#include "vs_pfs/document_headers.h"

#include <gtest/gtest.h>

#include <map>

namespace {

using namespace tests;
using namespace vs_pfs;

// A table's stops as text, decimal ones with a point: "4 9. 20".
std::string stops_of(const SavedState &saved)
{
    std::string text;
    for (int i = 0; i < saved.tabCount; ++i) {
        text += (i > 0 ? " " : "") + std::to_string(static_cast<int16_t>(saved.tabPos[i])) +
                (saved.tabKind[i] == tab_kind_decimal ? "." : "");
    }
    return text;
}

std::vector<uint8_t> kinds_of(const SavedState &saved)
{
    return {saved.tabKind, saved.tabKind + saved.tabCount};
}

// The ruler of a header: by entry, its kind byte and its column.
using Ruler = std::map<std::size_t, std::pair<uint8_t, uint16_t>>;
constexpr uint8_t ordinary = 0x0F;
constexpr uint8_t decimal = 0x10;

Patches ruler_patches(const Ruler &ruler)
{
    Patches patches;
    for (const auto &[entry, stop] : ruler) {
        patches.push_back({16 + 2 * entry, std::string(1, static_cast<char>(stop.first)) + '\x77'});
        patches.push_back({172 + 2 * entry, word(stop.second)});
    }
    return patches;
}

// Reads the header of a file of zeros with the patches in it.
class WriteHeader : public ::testing::Test {
protected:
    Bench &header(uint8_t format_type, const Patches &patches, std::size_t size = 1024)
    {
        bench = std::make_unique<Bench>(blank_document(size, patches));
        bench->state().formatType = format_type;
        EXPECT_EQ(PfsWriteHeaderInfo(bench->instance), 0);
        return *bench;
    }
    Bench &with_ruler(const Ruler &ruler)
    {
        return header(2, ruler_patches(ruler));
    }

    std::unique_ptr<Bench> bench;
};

TEST_F(WriteHeader, MarginsAreStoredAsColumnsFromZero)
{
    for (uint8_t type = 1; type <= 4; ++type) {
        const Bench &read = header(type, {{10, word(10) + word(70)}});
        EXPECT_EQ(read.instance->state.saved.leftMargin, 9);
        EXPECT_EQ(read.instance->state.saved.rightMargin, 69);
    }
}

TEST_F(WriteHeader, MarginsAreSixteenBitLowByteFirst)
{
    header(1, {{10, "\x02\x01\x04\x03"}});
    EXPECT_EQ(bench->saved().leftMargin, 0x0101);
    EXPECT_EQ(bench->saved().rightMargin, 0x0303);
}

TEST_F(WriteHeader, AMarginOfZeroIsColumnMinusOne)
{
    header(1, {});
    EXPECT_EQ(bench->saved().leftMargin, 0xFFFF);
    EXPECT_EQ(bench->saved().rightMargin, 0xFFFF);
}

TEST_F(WriteHeader, FormatFiveHasFixedMarginsAndNoRuler)
{
    Patches patches = ruler_patches({{0, {ordinary, 5}}, {1, {decimal, 9}}});
    patches.push_back({10, word(20) + word(50)});
    header(5, patches);
    EXPECT_EQ(bench->saved().leftMargin, 9);
    EXPECT_EQ(bench->saved().rightMargin, 69);
    EXPECT_EQ(bench->saved().tabCount, 0);
    EXPECT_EQ(bench->saved().tabPos[0], 0) << "no terminator is written";
}

TEST_F(WriteHeader, TheExtraMarginsStartAsTheMargins)
{
    for (uint8_t type = 1; type <= 4; ++type) {
        header(type, {{10, word(10) + word(70)}, {963, "\x05\x06\x07\x08"}});
        EXPECT_EQ(bench->state().hfMargins[0], 9);
        EXPECT_EQ(bench->state().hfMargins[1], 9);
        EXPECT_EQ(bench->state().hfMargins[2], 69);
        EXPECT_EQ(bench->state().hfMargins[3], 69);
    }
}

TEST_F(WriteHeader, WhatAFormatDoesNotStoreIsReset)
{
    using namespace std::string_literals;
    header(5, {{828, "\x01\x00\x02"s}});
    EXPECT_EQ(bench->state().headerAttrs, 1);
    EXPECT_EQ(bench->state().footerAttrs, 2);
    bench->state().formatType = 2;
    PfsWriteHeaderInfo(bench->instance);
    EXPECT_EQ(bench->state().headerAttrs, 0);
    EXPECT_EQ(bench->state().footerAttrs, 0);
}

TEST_F(WriteHeader, FormatFiveReadsTheExtraMargins)
{
    header(5, {{963, std::string("\x05\x41\x00\x48", 4)}});
    EXPECT_EQ(bench->state().hfMargins[0], 4) << "first left";
    EXPECT_EQ(bench->state().hfMargins[2], 64) << "first right";
    EXPECT_EQ(bench->state().hfMargins[1], 0xFFFF) << "second left";
    EXPECT_EQ(bench->state().hfMargins[3], 71) << "second right";
}

TEST_F(WriteHeader, RulerKindsAreOrdinaryDecimalOrNone)
{
    with_ruler({{0, {ordinary, 5}}, {3, {decimal, 12}}, {4, {0x0E, 14}}, {77, {ordinary, 77}}});
    EXPECT_EQ(stops_of(bench->saved()), "5 12. 77");
    EXPECT_EQ(kinds_of(bench->saved()), (std::vector<uint8_t>{0, 0x2E, 0}));
    EXPECT_EQ(bench->saved().tabPos[3], 0xFFFF);
}

// The ruler is stored in the table before the merge, which overwrites only its beginning; a host
// that saves the state sees the rest.
TEST_F(WriteHeader, AfterTheTerminatorTheRulerRemains)
{
    header(
        2,
        {{16, "\x0F"}, {172, word(5)}, {172 + 2 * 2, word(0x1234)}, {172 + 2 * 77, word(0xFFFE)}});
    EXPECT_EQ(stops_of(bench->saved()), "5");
    EXPECT_EQ(bench->saved().tabPos[2], 0x1234);
    EXPECT_EQ(bench->saved().tabKind[2], 0xFF) << "neither an ordinary stop nor a decimal one";
    EXPECT_EQ(bench->saved().tabPos[77], 0xFFFE);
    EXPECT_EQ(bench->saved().tabPos[78], tab_table_end);
}

TEST_F(WriteHeader, ARulerOfOtherBytesIsEmpty)
{
    Ruler ruler;
    for (std::size_t i = 0; i < 78; ++i) {
        const auto kind = static_cast<uint8_t>(i * 3);
        ruler[i] = {kind == ordinary || kind == decimal ? uint8_t{0xFF} : kind,
                    static_cast<uint16_t>(i)};
    }
    with_ruler(ruler);
    EXPECT_EQ(bench->saved().tabCount, 0);
    EXPECT_EQ(bench->saved().tabPos[0], 0xFFFF);
}

TEST_F(WriteHeader, RulerStopsAreSorted)
{
    with_ruler({{0, {ordinary, 40}},
                {1, {decimal, 30}},
                {2, {ordinary, 10}},
                {3, {decimal, 20}},
                {4, {ordinary, 30}}});
    EXPECT_EQ(stops_of(bench->saved()), "10 20. 30. 30 40");
}

TEST_F(WriteHeader, RulerColumnsAreSortedAsSigned)
{
    with_ruler({{0, {ordinary, 5}}, {1, {ordinary, 0xFFFE}}, {2, {ordinary, 0}}});
    EXPECT_EQ(stops_of(bench->saved()), "-2 0 5");
}

TEST_F(WriteHeader, EqualColumnsStayTwice)
{
    with_ruler({{0, {ordinary, 8}}, {1, {ordinary, 8}}});
    EXPECT_EQ(stops_of(bench->saved()), "8 8");
}

TEST_F(WriteHeader, ADecimalStopComesBeforeAnOrdinaryOneInItsColumn)
{
    with_ruler({{0, {ordinary, 15}}, {1, {decimal, 15}}});
    EXPECT_EQ(stops_of(bench->saved()), "15. 15");
}

TEST_F(WriteHeader, SeventyEightStopsLoseTheLast)
{
    Ruler ruler;
    for (std::size_t i = 0; i < 78; ++i) {
        ruler[i] = {ordinary, static_cast<uint16_t>(100 - i)};
    }
    with_ruler(ruler);
    EXPECT_EQ(bench->saved().tabCount, 77);
    EXPECT_EQ(bench->saved().tabPos[0], 23);
    EXPECT_EQ(bench->saved().tabPos[76], 99) << "100 is the one that is lost";
    EXPECT_EQ(bench->saved().tabPos[77], 0xFFFF);
}

TEST_F(WriteHeader, SeventySevenStopsAreKept)
{
    Ruler ruler;
    for (std::size_t i = 0; i < 77; ++i) {
        ruler[i] = {decimal, static_cast<uint16_t>(i)};
    }
    with_ruler(ruler);
    EXPECT_EQ(bench->saved().tabCount, 77);
    EXPECT_EQ(bench->saved().tabPos[76], 76);
    EXPECT_EQ(bench->saved().tabPos[77], 0xFFFF);
}

TEST_F(WriteHeader, TheWordBeforeTheRulerIsIgnored)
{
    header(2, {{14, "\x0F\x0F"}, {16, std::string(1, '\x0F')}, {172, word(3)}});
    EXPECT_EQ(stops_of(bench->saved()), "3");
}

TEST_F(WriteHeader, EachLengthMarksItsLine)
{
    const std::array<std::size_t, 4> offsets{328, 402, 484, 558};
    const std::array<uint16_t, 4> masks{0x02, 0x04, 0x08, 0x16};
    for (uint8_t type = 1; type <= 5; ++type) {
        for (std::size_t line = 0; line < 4; ++line) {
            header(type, {{offsets[line], "\x21"}});
            EXPECT_EQ(bench->saved().hfPending, masks[line]);
            for (std::size_t other = 0; other < 4; ++other) {
                EXPECT_EQ(bench->state().hfLength[other], other == line ? 0x21 : 0);
            }
        }
    }
}

TEST_F(WriteHeader, ALengthIsUnsigned)
{
    header(2, {{328, "\xFF"}});
    EXPECT_EQ(bench->state().hfLength[0], 255);
    EXPECT_EQ(bench->saved().hfPending, 0x02);
}

TEST_F(WriteHeader, WithoutFooterLineTwoTheHeaderBitsFollowTheirLengths)
{
    header(2, {{328, "\x01"}});
    EXPECT_EQ(bench->saved().hfPending, 0x02);
    header(2, {{402, "\x01"}, {484, "\x01"}});
    EXPECT_EQ(bench->saved().hfPending, 0x0C);
}

TEST_F(WriteHeader, FooterLineTwoSetsTheHeaderBitsInAnyCase)
{
    header(2, {{558, "\x01"}});
    EXPECT_EQ(bench->saved().hfPending, 0x16);
    header(2, {{328, "\x01"}, {402, "\x01"}, {484, "\x01"}, {558, "\x01"}});
    EXPECT_EQ(bench->saved().hfPending, 0x1E);
}

TEST_F(WriteHeader, LinesAddToWhatIsPending)
{
    bench = std::make_unique<Bench>(blank_document(1024, {{484, "\x01"}}));
    bench->state().formatType = 2;
    bench->saved().hfPending = 0x100;
    PfsWriteHeaderInfo(bench->instance);
    EXPECT_EQ(bench->saved().hfPending, 0x108);
}

TEST_F(WriteHeader, FormatOneIsCentredAndReadsNoFurther)
{
    header(1, {{822, std::string(20, '\x02')}});
    EXPECT_EQ(bench->state().headerAlign, 0);
    EXPECT_EQ(bench->state().footerAlign, 0);
    EXPECT_EQ(bench->state().headerAttrs, 0);
    EXPECT_EQ(bench->state().footerAttrs, 0);
    EXPECT_EQ(bench->tell(), 559U);
}

TEST_F(WriteHeader, AlignmentsAreNormalisedByTheirLowByte)
{
    const auto alignments = [&](uint16_t header_word, uint16_t footer_word) {
        header(2, {{822, word(header_word) + word(footer_word)}});
        return std::pair<int, int>(bench->state().headerAlign, bench->state().footerAlign);
    };
    EXPECT_EQ(alignments(0, 2), std::pair(0, 2));
    EXPECT_EQ(alignments(1, 0), std::pair(1, 0));
    EXPECT_EQ(alignments(3, 0xFF), std::pair(1, 1));
    EXPECT_EQ(alignments(0x0102, 0x0100), std::pair(2, 0));
    EXPECT_EQ(alignments(0x0200, 0x0001), std::pair(0, 1));
}

TEST_F(WriteHeader, AlignmentIsReadFromFormatTwoOn)
{
    for (uint8_t type = 2; type <= 5; ++type) {
        header(type, {{822, word(2) + word(0)}});
        EXPECT_EQ(bench->state().headerAlign, 2);
        EXPECT_EQ(bench->state().footerAlign, 0);
    }
}

TEST_F(WriteHeader, AttributesAreReadFromFormatFourOn)
{
    for (uint8_t type = 1; type <= 5; ++type) {
        header(type, {{828, "\x05\x77\xF2"}});
        EXPECT_EQ(bench->state().headerAttrs, type >= 4 ? 0x05 : 0);
        EXPECT_EQ(bench->state().footerAttrs, type >= 4 ? 0xF2 : 0);
    }
}

TEST_F(WriteHeader, OldAttributesAndAlignmentsAreReplaced)
{
    bench = std::make_unique<Bench>(blank_document(1024, {}));
    bench->state().formatType = 2;
    bench->state().headerAttrs = bench->state().footerAttrs = 0xFF;
    PfsWriteHeaderInfo(bench->instance);
    EXPECT_EQ(bench->state().headerAttrs, 0);
    EXPECT_EQ(bench->state().footerAttrs, 0);
}

TEST_F(WriteHeader, AnEmptyFileReadsAsMissingBytes)
{
    header(4, {}, 0);
    // -1 + -1 * 256, less 1
    EXPECT_EQ(static_cast<int16_t>(bench->saved().leftMargin), -258);
    EXPECT_EQ(static_cast<int16_t>(bench->saved().rightMargin), -258);
    EXPECT_EQ(bench->saved().tabCount, 0);
    EXPECT_EQ(bench->saved().hfPending, 0) << "a length of -1 marks no line";
    EXPECT_EQ(bench->state().hfLength[0], 0xFFFF);
    EXPECT_EQ(bench->state().headerAlign, 1);
    EXPECT_EQ(bench->state().headerAttrs, 0xFF);
    EXPECT_EQ(bench->state().footerAttrs, 0xFF);
}

TEST_F(WriteHeader, ARulerThatIsCutHasStopsAtColumnMinus257)
{
    const Patches ruler = ruler_patches({{0, {ordinary, 5}}, {1, {ordinary, 6}}});
    bench = std::make_unique<Bench>(blank_document(174, ruler).substr(0, 174));
    bench->state().formatType = 2;
    PfsWriteHeaderInfo(bench->instance);
    EXPECT_EQ(stops_of(bench->saved()), "-257 5");
}

TEST(GetValue, IsSigned)
{
    const auto value = [](std::string_view notation) {
        Bench bench(bytes(notation));
        return GetValue(bench.instance);
    };
    EXPECT_EQ(value("01 00"), 1);
    EXPECT_EQ(value("FF 00"), 255);
    EXPECT_EQ(value("00 01"), 256);
    EXPECT_EQ(value("FF 7F"), 32767);
    EXPECT_EQ(value("00 80"), -32768);
    EXPECT_EQ(value("FF FF"), -1);
}

TEST(GetValue, CountsAMissingByteAsMinusOne)
{
    Bench half("\x05");
    EXPECT_EQ(GetValue(half.instance), 5 - 256);
    Bench empty("");
    EXPECT_EQ(GetValue(empty.instance), -257);
}

TEST(SkipBytes, DropsAsManyAsAsked)
{
    Bench bench("abcdef");
    EXPECT_EQ(PfsSkipBytes(3, bench.instance), 0);
    EXPECT_EQ(bench.tell(), 3U);
    EXPECT_EQ(PfsSkipBytes(0, bench.instance), 0);
    EXPECT_EQ(PfsSkipBytes(-1, bench.instance), 0);
    EXPECT_EQ(PfsSkipBytes(-32768, bench.instance), 0);
    EXPECT_EQ(bench.tell(), 3U);
}

std::string merged(const std::vector<int16_t> &normal, const std::vector<int16_t> &decimals)
{
    Bench bench("");
    EXPECT_EQ(MergeTabStops(static_cast<int16_t>(normal.size()),
                            static_cast<int16_t>(decimals.size()), normal.data(), decimals.data(),
                            bench.instance),
              0);
    EXPECT_EQ(bench.saved().tabPos[bench.saved().tabCount], 0xFFFF);
    return stops_of(bench.saved());
}

TEST(MergeTabStops, InterleavesTwoLists)
{
    EXPECT_EQ(merged({1, 5, 9}, {2, 5, 7}), "1 2. 5. 5 7. 9");
    EXPECT_EQ(merged({1, 2}, {}), "1 2");
    EXPECT_EQ(merged({}, {1, 2}), "1. 2.");
    EXPECT_EQ(merged({}, {}), "");
    EXPECT_EQ(merged({3, 3}, {3, 3}), "3. 3. 3 3");
}

TEST(MergeTabStops, ComparesAsSigned)
{
    EXPECT_EQ(merged({-5, 4}, {-6, 0}), "-6. -5 0. 4");
}

TEST(MergeTabStops, KeepsSeventySevenOfALongerMerge)
{
    std::vector<int16_t> normal;
    std::vector<int16_t> decimals;
    for (int16_t i = 0; i < 60; ++i) {
        normal.push_back(static_cast<int16_t>(2 * i));
        decimals.push_back(static_cast<int16_t>(2 * i + 1));
    }
    Bench bench("");
    MergeTabStops(60, 60, normal.data(), decimals.data(), bench.instance);
    EXPECT_EQ(bench.saved().tabCount, 77);
    EXPECT_EQ(bench.saved().tabPos[76], 76);
    EXPECT_EQ(bench.saved().tabPos[77], 0xFFFF);
    EXPECT_EQ(bench.saved().tabPos[78], 0) << "nothing is put behind the ruler's 78 entries";
}

TEST(MergeTabStops, KeepsSeventySevenOfOneListToo)
{
    std::vector<int16_t> many(90);
    Bench one("");
    MergeTabStops(90, 0, many.data(), nullptr, one.instance);
    EXPECT_EQ(one.saved().tabCount, 77);
    Bench other("");
    MergeTabStops(0, 90, nullptr, many.data(), other.instance);
    EXPECT_EQ(other.saved().tabCount, 77);
    EXPECT_EQ(other.saved().tabPos[77], 0xFFFF);
}

} // namespace

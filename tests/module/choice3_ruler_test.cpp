// A ruler line of First Choice 3, read from after its line header byte.
#include "tests/module/bench.h"

#include "vs_pfs/document_headers.h"

#include <gtest/gtest.h>

namespace {

using namespace tests;
using namespace vs_pfs;

class Choice3Ruler : public ::testing::Test {
protected:
    // Reads a ruler, with the three unused bytes before the body.
    Calls ruler(std::string_view body)
    {
        bench = std::make_unique<Bench>("\x01\x02\x03" + bytes(body));
        bench->saved().leftMargin = 5;
        bench->saved().rightMargin = 50;
        bench->saved().tabCount = 2;
        bench->saved().tabPos[0] = 7;
        bench->saved().tabPos[1] = 70;
        bench->saved().tabKind[0] = tab_kind_decimal;
        EXPECT_EQ(Fc3GetRuler(bench->stream, bench->instance), 0);
        return bench->take();
    }

    std::unique_ptr<Bench> bench;
};

TEST_F(Choice3Ruler, SetsAndReportsStopsAndMargins)
{
    EXPECT_TRUE(matches(ruler("'[   T    T   ]' 0D 'text'"),
                        "8 | 10 1 0 0 576 | 10 1 0 0 1296 | 9 | 11 0 1872"));
    EXPECT_EQ(bench->saved().leftMargin, 0);
    EXPECT_EQ(bench->saved().rightMargin, 13);
    EXPECT_EQ(bench->saved().tabCount, 2);
    EXPECT_EQ(bench->saved().tabPos[2], tab_table_end);
    EXPECT_EQ(bench->saved().tabKind[0], tab_kind_ordinary);
    EXPECT_EQ(bench->tell(), 3U + 15U);
}

TEST_F(Choice3Ruler, WithoutBracketsKeepsAndReportsTheMargins)
{
    EXPECT_TRUE(matches(ruler("'  T' 0D"), "8 | 10 1 0 0 288 | 9 | 11 720 7200"));
    EXPECT_EQ(bench->saved().leftMargin, 5);
    EXPECT_EQ(bench->saved().rightMargin, 50);
}

TEST_F(Choice3Ruler, APairIsOneColumn)
{
    EXPECT_TRUE(matches(ruler("C2 'x' 'T' 0D"), "8 | 10 1 0 0 144 | 9 | 11 720 7200"));
    EXPECT_TRUE(matches(ruler("C5 'T' 'T' 0D"), "8 | 10 1 0 0 144 | 9 | 11 720 7200"));
    EXPECT_TRUE(matches(ruler("C5 0D 'T' 0D"), "8 | 10 1 0 0 144 | 9 | 11 720 7200"));
}

TEST_F(Choice3Ruler, OtherBytesAreEmptyColumns)
{
    EXPECT_TRUE(
        matches(ruler("00 0E 0C C3 C4 FF 't' 'T' 0D"), "8 | 10 1 0 0 1008 | 9 | 11 720 7200"));
}

TEST_F(Choice3Ruler, TheLaterBracketWins)
{
    EXPECT_TRUE(matches(ruler("'[ [  ] ]' 0D"), "8 | 9 | 11 288 1008"));
}

TEST_F(Choice3Ruler, AnEmptyRulerIsReportedToo)
{
    EXPECT_TRUE(matches(ruler("0D"), "8 | 9 | 11 720 7200"));
    EXPECT_EQ(bench->saved().tabCount, 0);
}

TEST_F(Choice3Ruler, ClearsTheWholeTable)
{
    ruler("'T' 0D");
    for (int i = 1; i < 100; ++i) {
        EXPECT_EQ(bench->saved().tabPos[i], tab_table_end);
        EXPECT_EQ(bench->saved().tabKind[i], 0);
    }
}

TEST_F(Choice3Ruler, ColumnsWrapAfter255)
{
    EXPECT_TRUE(matches(ruler("' 'x255 'T' ' ' 'T' '[' 0D"),
                        "8 | 10 1 0 0 36720 | 10 1 0 0 144 | 9 | 11 288 7200"));
}

TEST_F(Choice3Ruler, EndsWhenTheTableIsFull)
{
    const Calls reported = ruler("'T'x100 'lost' 0D");
    EXPECT_EQ(bench->saved().tabCount, 100);
    EXPECT_EQ(bench->saved().tabPos[99], 99);
    EXPECT_EQ(reported.size(), 1U + 30U + 1U + 1U);
    EXPECT_EQ(bench->tell(), 3U + 101U) << "one byte more is read, and lost";
    EXPECT_EQ(VwCharGet(bench->stream), 'o');
}

TEST_F(Choice3Ruler, NinetyNineStopsAreFollowedByTheTerminator)
{
    ruler("'T'x99 0D 'text'");
    EXPECT_EQ(bench->saved().tabCount, 99);
    EXPECT_EQ(bench->saved().tabPos[99], tab_table_end);
    EXPECT_EQ(VwCharGet(bench->stream), 't');
}

TEST_F(Choice3Ruler, TheEndOfTheDataEndsItAnywhere)
{
    EXPECT_TRUE(matches(ruler("'[T  ]'"), "8 | 10 1 0 0 144 | 9 | 11 0 576"));
    EXPECT_TRUE(matches(ruler("'[T  ]' C2"), "8 | 10 1 0 0 144 | 9 | 11 0 576"));
    EXPECT_TRUE(matches(ruler(""), "8 | 9 | 11 720 7200"));
    Bench cut("\x01\x02");
    Fc3GetRuler(cut.stream, cut.instance);
    EXPECT_TRUE(matches(cut.take(), "8 | 9 | 11 0 0"));
}

TEST_F(Choice3Ruler, ReadsTheStreamItIsGiven)
{
    Bench bench_of_stream(bytes("01 02 03 'T' 0D"));
    bench_of_stream.state().stream = nullptr;
    Fc3GetRuler(bench_of_stream.stream, bench_of_stream.instance);
    EXPECT_TRUE(matches(bench_of_stream.take(), "8 | 10 1 0 0 0 | 9 | 11 0 0"));
}

} // namespace

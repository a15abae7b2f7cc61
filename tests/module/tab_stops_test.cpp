// The table of tab stops as reported to the host.
#include "tests/module/bench.h"

#include "vs_pfs/formatting.h"

#include <gtest/gtest.h>

#include <cstring>

namespace {

using namespace tests;
using namespace vs_pfs;

TEST(PutTabStops, AnEmptyTableIsTwoCalls)
{
    Bench bench("");
    EXPECT_EQ(PutTabStops(bench.instance), 0);
    EXPECT_TRUE(matches(bench.take(), "8 | 9"));
}

Calls stops(uint16_t count, uint16_t column = 0, uint8_t kind = 0)
{
    Bench bench("");
    bench.saved().tabCount = count;
    for (uint16_t i = 0; i < 100; ++i) {
        bench.saved().tabPos[i] = static_cast<uint16_t>(column + i);
        bench.saved().tabKind[i] = kind;
    }
    const VwInstance before = *bench.instance;
    PutTabStops(bench.instance);
    EXPECT_EQ(std::memcmp(&before, bench.instance, sizeof before), 0) << "it only reads";
    return bench.take();
}

TEST(PutTabStops, OfFortyFiveStopsThirtyAreReported)
{
    std::string expected = "8";
    for (int i = 0; i < 30; ++i) {
        expected += " | 10 1 0 0 " + std::to_string(144 * i);
    }
    EXPECT_TRUE(matches(stops(45), expected + " | 9"));
    EXPECT_TRUE(matches(stops(30), expected + " | 9"));
    EXPECT_TRUE(matches(stops(31), expected + " | 9"));
}

TEST(PutTabStops, TwentyNineStopsAreAllReported)
{
    EXPECT_EQ(stops(29).size(), 31U);
}

TEST(PutTabStops, AnOrdinaryStop)
{
    EXPECT_TRUE(matches(stops(1, 20, 0x00), "8 | 10 1 0 0 2880 | 9"));
}

TEST(PutTabStops, AStopOfAnyOtherKindIsALeftStop)
{
    EXPECT_TRUE(matches(stops(1, 20, 0xFF), "8 | 10 1 0 0 2880 | 9"));
    EXPECT_TRUE(matches(stops(1, 20, 0x2C), "8 | 10 1 0 0 2880 | 9"));
}

TEST(PutTabStops, ADecimalStop)
{
    EXPECT_TRUE(matches(stops(1, 0, 0x2E), "8 | 10 4 46 0 0 | 9"));
}

TEST(PutTabStops, TheKindsDoNotStickToTheNextStop)
{
    Bench bench("");
    bench.saved().tabCount = 3;
    bench.saved().tabKind[1] = 0x2E;
    PutTabStops(bench.instance);
    EXPECT_TRUE(matches(bench.take(), "8 | 10 1 0 0 0 | 10 4 46 0 0 | 10 1 0 0 0 | 9"));
}

TEST(PutTabStops, TheCountIsSigned)
{
    EXPECT_TRUE(matches(stops(0xFFFF), "8 | 9"));
    EXPECT_TRUE(matches(stops(0x8000), "8 | 9"));
    EXPECT_EQ(stops(0x7FFF).size(), 32U);
}

TEST(PutTabStops, AColumnIsSigned)
{
    EXPECT_TRUE(matches(stops(1, 0xFFFF), "8 | 10 1 0 0 -144 | 9"));
    EXPECT_TRUE(matches(stops(1, 0x8000), "8 | 10 1 0 0 -4718592 | 9"));
    EXPECT_TRUE(matches(stops(1, 0x7FFF), "8 | 10 1 0 0 4718448 | 9"));
}

} // namespace

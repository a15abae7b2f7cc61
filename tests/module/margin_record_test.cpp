// The 0x07 records of Write-family text. Their first byte has been read already.
#include "tests/module/bench.h"

#include "vs_pfs/document_headers.h"

#include <gtest/gtest.h>

namespace {

using namespace tests;
using namespace vs_pfs;

struct Record {
    int left;
    int right;
    uint32_t length; // bytes read, without the 0x07
};

Record read_record(std::string_view notation)
{
    Bench bench(bytes(notation));
    bench.saved().leftMargin = 1000;
    bench.saved().rightMargin = 2000;
    MarginsFontRecord(bench.instance);
    return {bench.saved().leftMargin, bench.saved().rightMargin, bench.tell()};
}

void expect_record(std::string_view notation, int left, int right, uint32_t length)
{
    const Record record = read_record(notation);
    EXPECT_EQ(record.left, left) << notation;
    EXPECT_EQ(record.right, right) << notation;
    EXPECT_EQ(record.length, length) << notation;
}

TEST(MarginsFontRecord, TypeOneSetsTheMargins)
{
    expect_record("05 01 0B 47 'text'", 10, 70, 4);
}

TEST(MarginsFontRecord, OtherTypesAreSkippedCompletely)
{
    expect_record("08 02 'AAAAA' 'text'", 1000, 2000, 7);
    expect_record("08 00 'AAAAA' 'text'", 1000, 2000, 7);
    expect_record("08 FF 'AAAAA' 'text'", 1000, 2000, 7);
}

TEST(MarginsFontRecord, TypeOneSkipsItsRest)
{
    expect_record("07 01 0A 46 00 00 'text'", 9, 69, 6);
}

TEST(MarginsFontRecord, ALengthThatIsTooSmallSkipsNothingMore)
{
    for (const char *length : {"00", "01", "02", "03", "04", "05"}) {
        expect_record(std::string(length) + " 01 0A 46 'text'", 9, 69, 4);
    }
    for (const char *length : {"00", "01", "02", "03"}) {
        expect_record(std::string(length) + " 02 'text'", 1000, 2000, 2);
    }
}

TEST(MarginsFontRecord, ALengthIsUnsigned)
{
    expect_record("FF 02 'A'x300", 1000, 2000, 254);
}

TEST(MarginsFontRecord, AMarginByteOfZeroIsColumnMinusOne)
{
    expect_record("05 01 00 00", 0xFFFF, 0xFFFF, 4);
}

TEST(MarginsFontRecord, MissingMarginsAreColumnMinusTwo)
{
    const Record record = read_record("05 01");
    EXPECT_EQ(record.left, 0xFFFE);
    EXPECT_EQ(record.right, 0xFFFE);
}

TEST(MarginsFontRecord, AMissingLengthEndsTheRecord)
{
    const Record record = read_record("");
    EXPECT_EQ(record.left, 1000);
    EXPECT_EQ(record.right, 2000);
}

TEST(MarginsFontRecord, AMissingRestEnds)
{
    const Record record = read_record("FF 02 'A'");
    EXPECT_EQ(record.left, 1000);
}

TEST(MarginsFontRecord, ReportsNothing)
{
    Bench bench(bytes("05 01 0B 47"));
    MarginsFontRecord(bench.instance);
    EXPECT_TRUE(bench.take().empty());
}

} // namespace

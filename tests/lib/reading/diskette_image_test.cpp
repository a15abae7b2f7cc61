// Images of diskettes, and what only resembles one.
#include "lib/reading/diskette_image.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <utility>
#include <vector>

namespace {

using namespace pfsdoc;

using Bytes = std::vector<uint8_t>;

bool is_image(Bytes bytes)
{
    MemorySource source(std::move(bytes));
    return reading::is_diskette_image(source);
}

void put_word(Bytes &bytes, std::size_t offset, unsigned value)
{
    bytes[offset] = static_cast<uint8_t>(value);
    bytes[offset + 1] = static_cast<uint8_t>(value >> 8U);
}

// As the first sector of a diskette of 720 KB describes it.
Bytes described_image(std::size_t size = 737280)
{
    Bytes bytes(size);
    bytes[0] = 0xEB;
    bytes[1] = 0x3C;
    bytes[2] = 0x90;
    put_word(bytes, 11, 512);  // bytes a sector
    bytes[13] = 2;             // sectors a cluster
    put_word(bytes, 14, 1);    // reserved sectors
    bytes[16] = 2;             // allocation tables
    put_word(bytes, 17, 112);  // entries of the root directory
    put_word(bytes, 19, 1440); // sectors
    bytes[21] = 0xF9;          // media
    put_word(bytes, 22, 3);    // sectors of a table
    return bytes;
}

// Of an early DOS, whose first sector is nothing but a program.
Bytes early_image(std::size_t size, uint8_t media)
{
    Bytes bytes(size, 0xF6);
    bytes[512] = media;
    bytes[513] = 0xFF;
    bytes[514] = 0xFF;
    return bytes;
}

TEST(DisketteImage, IsKnownByItsFirstSector)
{
    EXPECT_TRUE(is_image(described_image()));
    EXPECT_TRUE(is_image(described_image(100000))); // a part of one
    Bytes near = described_image();
    near[0] = 0xE9;
    near[2] = 0;
    EXPECT_TRUE(is_image(near));
}

TEST(DisketteImage, IsKnownByItsSizeAndItsTable)
{
    EXPECT_TRUE(is_image(early_image(163840, 0xFE)));
    EXPECT_TRUE(is_image(early_image(184320, 0xFC)));
    EXPECT_TRUE(is_image(early_image(327680, 0xFF)));
    EXPECT_TRUE(is_image(early_image(368640, 0xFD)));
    EXPECT_TRUE(is_image(early_image(737280, 0xF9)));
    EXPECT_TRUE(is_image(early_image(2949120, 0xF0)));
    EXPECT_FALSE(is_image(early_image(163841, 0xFE)));
    EXPECT_FALSE(is_image(early_image(163840, 0xEF)));
    Bytes other = early_image(163840, 0xFE);
    other[514] = 0xFE;
    EXPECT_FALSE(is_image(other));
}

// Each of what a first sector must have, taken away.
TEST(DisketteImage, IsNotWhatOnlyBeginsLikeOne)
{
    const std::pair<std::size_t, uint8_t> faults[] = {{0, 0x60}, {2, 0},  {11, 1}, {12, 0},
                                                      {13, 3},   {14, 0}, {16, 0}, {16, 3},
                                                      {17, 0},   {21, 1}, {22, 0}};
    for (const auto &[offset, value] : faults) {
        Bytes bytes = described_image();
        bytes[offset] = value;
        EXPECT_FALSE(is_image(bytes)) << offset;
    }
    EXPECT_FALSE(is_image({}));
    EXPECT_FALSE(is_image(described_image(512)));
    EXPECT_FALSE(is_image(Bytes(368640)));
}

} // namespace

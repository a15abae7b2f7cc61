// The public header compiles alone as C++, first in its file and twice, and means the same in
// both languages.
#include "vs_pfs.h"

#include "tests/module/header_languages.h"
#include "tests/support/memory_block_file.h"

#include <gtest/gtest.h>

namespace {

TEST(PublicHeader, ExpandsTheStreamOperationsInC)
{
    tests::MemoryBlockFile file("abcd");
    EXPECT_EQ(c99_third_byte(&file), 'c');
    tests::MemoryBlockFile empty("");
    EXPECT_EQ(c99_third_byte(&empty), -1);
}

TEST(PublicHeader, HasTheSameRecordsInBothLanguages)
{
    EXPECT_EQ(c99_size_of_kind(), sizeof(VwFileKind));
    EXPECT_EQ(c99_size_of_kind(), 44U);
    EXPECT_EQ(c99_size_of_description(), sizeof(VwFileDescription));
    EXPECT_EQ(offsetof(VwFileDescription, fileDescFlags), 2U);
    EXPECT_EQ(offsetof(VwFileDescription, fileKindName), 4U);
    EXPECT_EQ(c99_size_of_tab_stop(), sizeof(VwTabStop));
    EXPECT_EQ(offsetof(VwTabStop, position), 8U);
    EXPECT_EQ(sizeof(VwTabStop), 12U);
}

TEST(PublicHeader, BlockFileOperationsAreInTheirSlots)
{
    constexpr std::size_t slot = sizeof(VwRoutine);
    EXPECT_EQ(offsetof(VwBlockFile, close), 0 * slot);
    EXPECT_EQ(offsetof(VwBlockFile, read), 1 * slot);
    EXPECT_EQ(offsetof(VwBlockFile, seek), 3 * slot);
    EXPECT_EQ(offsetof(VwBlockFile, tell), 4 * slot);
    EXPECT_EQ(offsetof(VwBlockFile, open), 6 * slot);
}

} // namespace

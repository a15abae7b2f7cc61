// Lines come in the order of the files, in whatever order these are done.
#include "batch/trusted/manifest_lines.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using pfsdoc::batch::FileStatus;
using pfsdoc::batch::ManifestLines;

class Lines : public testing::Test {
protected:
    std::string taken()
    {
        return lines.take(tally).lines;
    }

    ManifestLines lines;
    pfsdoc::batch::Tally tally;
};

TEST_F(Lines, ComeInOrder)
{
    ManifestLines::Entry &a = lines.add();
    ManifestLines::Entry &b = lines.add();
    ManifestLines::Entry &c = lines.add();
    EXPECT_EQ(taken(), "");
    b.finish(FileStatus::damaged, "b");
    EXPECT_EQ(taken(), "") << "a is not done";
    a.finish(FileStatus::converted, "a");
    EXPECT_EQ(taken(), "ab");
    EXPECT_EQ(taken(), "") << "each line comes once";
    c.finish(FileStatus::crashed, "c");
    ManifestLines::Entry &d = lines.add();
    EXPECT_EQ(taken(), "c");
    EXPECT_FALSE(lines.is_empty());
    d.finish(FileStatus::converted, "d");
    EXPECT_EQ(taken(), "d");
    EXPECT_TRUE(lines.is_empty());
    EXPECT_EQ(tally.words(), "4 files: 2 converted, 2 failed (1 damaged, 1 crashed)");
}

TEST_F(Lines, ComeWithTheOutputsThatAreInPlace)
{
    lines.add().finish(FileStatus::converted, "a", "a.txt");
    lines.add().finish(FileStatus::kept, "b");
    EXPECT_EQ(lines.take(tally).outputs, std::vector<std::string>{"a.txt"});
}

// A file that takes long holds up the others in the end.
TEST_F(Lines, HaveSoMuchRoomAndNoMore)
{
    ManifestLines::Entry &slow = lines.add();
    for (std::size_t added = 1; added < ManifestLines::capacity; ++added) {
        EXPECT_FALSE(lines.is_full());
        lines.add().finish(FileStatus::converted, "x");
    }
    EXPECT_TRUE(lines.is_full());
    EXPECT_EQ(taken(), "");
    EXPECT_TRUE(lines.is_full());
    slow.finish(FileStatus::timeout, "s");
    EXPECT_EQ(taken().substr(0, 3), "sxx");
    EXPECT_FALSE(lines.is_full());
    EXPECT_EQ(tally.files(), ManifestLines::capacity);
}

} // namespace

// Which header and footer lines are kept.
#include "lib/page/running_lines.h"

#include <gtest/gtest.h>

namespace {

using namespace pfsdoc;
using page::RunningLines;

Paragraph running_line(const std::string &bytes)
{
    Paragraph line;
    line.bytes = bytes;
    line.pieces = {{0, 0, 0, PieceKind::text, false}};
    return line;
}

TEST(RunningLines, AreKeptByTheirBlock)
{
    RunningLines lines;
    EXPECT_FALSE(lines.block());
    lines.begin(BlockKind::header);
    EXPECT_TRUE(lines.keep(running_line("head")));
    EXPECT_FALSE(lines.in_footer());
    lines.end();
    lines.begin(BlockKind::footer);
    EXPECT_TRUE(lines.in_footer());
    EXPECT_TRUE(lines.keep(running_line("foot")));
    EXPECT_TRUE(lines.keep(running_line("")));
    EXPECT_EQ(lines.headers(), std::vector{running_line("head")});
    EXPECT_EQ(lines.footers(), (std::vector{running_line("foot"), running_line("")}));
}

TEST(RunningLines, AreAsManyAsTheFormatHasRoomFor)
{
    RunningLines lines(page::usual_running_lines);
    lines.begin(BlockKind::header);
    EXPECT_TRUE(lines.keep(running_line("1")));
    EXPECT_TRUE(lines.keep(running_line("2")));
    EXPECT_FALSE(lines.keep(running_line("3")));
    lines.begin(BlockKind::footer);
    EXPECT_TRUE(lines.keep(running_line("1")));
    EXPECT_EQ(lines.headers().size(), 2U);
}

TEST(RunningLines, AreBoundedInBytes)
{
    RunningLines lines;
    lines.begin(BlockKind::footer);
    EXPECT_FALSE(lines.keep(running_line(std::string(RunningLines::max_bytes, 'x'))));
    EXPECT_TRUE(lines.keep(running_line(std::string(RunningLines::max_bytes - 3, 'x'))));
    EXPECT_FALSE(lines.keep(running_line("xx")));
    EXPECT_TRUE(lines.keep(running_line("x")));
    EXPECT_FALSE(lines.keep(running_line("")));
}

TEST(RunningLines, BreakNoPages)
{
    Paragraph line = running_line("ab");
    line.pieces.push_back({1, 0, 0, PieceKind::page_break, false});
    line.pieces.push_back({1, 0, 0, PieceKind::text, false});
    const Paragraph found = page::without_page_breaks(line);
    ASSERT_EQ(found.pieces.size(), 2U);
    EXPECT_EQ(found.piece_bytes(0), "a");
    EXPECT_EQ(found.piece_bytes(1), "b");
}

} // namespace

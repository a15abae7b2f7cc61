// Lines that were edited, or were never those of a manifest.
#include "batch/trusted/recorded_line.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using pfsdoc::batch::output_of_line;
using pfsdoc::batch::recorded_line;

std::string line_with(const std::string &output, const std::string &name = "a")
{
    return R"({"name":")" + name + R"(","status":"converted","output":)" + output +
           R"(,"format":"text"})";
}

std::string output_named(const std::string &name)
{
    return R"({"name":")" + name + R"(","size":3,"sha256":")" + std::string(64, '0') + R"("})";
}

TEST(RecordedLine, NamesItsOutput)
{
    const auto line = recorded_line(line_with(output_named("b/c.html")));
    ASSERT_TRUE(line.has_value());
    EXPECT_EQ(line->name, "a");
    EXPECT_EQ(line->status, "converted");
    ASSERT_TRUE(line->output.has_value());
    EXPECT_EQ(line->output->name, "b/c.html");
    EXPECT_EQ(line->output->content.size, 3U);
    EXPECT_EQ(line->output_name, "b/c.html");
}

TEST(RecordedLine, IsAboutTheOutputThatWouldBe)
{
    EXPECT_EQ(output_of_line(line_with("null")), "a.txt");
}

TEST(RecordedLine, IsNoneWhereItsOutputIsNotInTheFolder)
{
    for (const char *name : {"", "/a", "../a", "a/../b", "a//b", "a/", ".", "a/.", "a\\u0000b"}) {
        EXPECT_FALSE(recorded_line(line_with(output_named(name))).has_value()) << name;
    }
    for (const char *name : {"/a", "../a", "a/../b", "a//b", "a\\u0000b"}) {
        EXPECT_EQ(output_of_line(line_with("null", name)), "");
    }
    EXPECT_TRUE(recorded_line(line_with(output_named("..a/b..c/.d"))).has_value());
}

TEST(RecordedLine, IsNoneWhereMembersAreWrong)
{
    for (const std::string &line :
         {std::string(), std::string("{}"), std::string("[]"), std::string("3"),
          std::string("nonsense"), line_with("3"), line_with("{}"),
          line_with(R"({"name":"a","size":-3,"sha256":")" + std::string(64, '0') + R"("})"),
          line_with(R"({"name":"a","size":3,"sha256":"00"})"),
          std::string(R"({"name":"a","status":7,"output":null,"format":"text"})")}) {
        EXPECT_FALSE(recorded_line(line).has_value()) << line;
        EXPECT_EQ(output_of_line(line), "");
    }
}

TEST(RecordedLine, IsNoneWhereItIsNestedTooDeeply)
{
    EXPECT_TRUE(recorded_line(line_with("null,\"x\":[[[[]]]]")).has_value());
    const std::string deep = std::string(100, '[') + std::string(100, ']');
    EXPECT_FALSE(recorded_line(line_with("null,\"x\":" + deep)).has_value());
    EXPECT_FALSE(recorded_line(std::string(200000, '[')).has_value());
}

} // namespace

// Mistyped words.
#include "cli/near_miss.h"

#include <gtest/gtest.h>

namespace {

using pfsdoc::cli::did_you_mean;
using pfsdoc::cli::near_miss;

const std::vector<std::string> commands = {"identify", "text", "convert", "explain", "batch"};

TEST(NearMiss, IsTheClosestWord)
{
    for (const char *word : {"identif", "identiyf", "idnetify", "IDENTIFY", "identfiy", "ident"}) {
        EXPECT_EQ(near_miss(word, commands), "identify") << word;
    }
    EXPECT_EQ(near_miss("txt", commands), "text");
    EXPECT_EQ(near_miss("covnert", commands), "convert");
    EXPECT_EQ(near_miss("bathc", commands), "batch");
    EXPECT_EQ(near_miss("--no-header", {"--no-headers", "--no-page-breaks"}), "--no-headers");
    EXPECT_EQ(near_miss("colour", {"colours", "color"}), "colours");
}

TEST(NearMiss, IsNothingForOtherWords)
{
    for (const std::string &word : {std::string(), std::string("x"), std::string("frobnicate"),
                                    std::string("tt"), std::string(1000000, 't')}) {
        EXPECT_EQ(near_miss(word, commands), "") << word.substr(0, 20);
    }
    EXPECT_EQ(near_miss("text", {}), "");
}

TEST(NearMiss, IsAskedFor)
{
    EXPECT_EQ(did_you_mean("txet", commands, "see the manual"), "did you mean text?");
    EXPECT_EQ(did_you_mean("none", commands, "see the manual"), "see the manual");
}

} // namespace

// Counting what a format cannot express.
#include "pfsdoc/loss_report.h"

#include <gtest/gtest.h>

namespace {

using pfsdoc::Loss;
using pfsdoc::LossEntry;
using pfsdoc::LossReport;

TEST(LossReport, IsEmptyAtFirst)
{
    EXPECT_TRUE(LossReport().entries().empty());
}

TEST(LossReport, CountsAndRemembersTheFirstOffset)
{
    LossReport report;
    report.add(Loss::tab_stops, 900);
    report.add(Loss::bold, 0, 0);
    report.add(Loss::bold, 700);
    report.add(Loss::tab_stops, 950, 2);
    const std::vector<LossEntry> entries = report.entries();
    ASSERT_EQ(entries.size(), 2U);
    EXPECT_EQ(entries[0].loss, Loss::bold);
    EXPECT_EQ(entries[0].count, 1U);
    EXPECT_EQ(entries[0].first_source, 700U);
    EXPECT_EQ(entries[1].loss, Loss::tab_stops);
    EXPECT_EQ(entries[1].count, 3U);
    EXPECT_EQ(entries[1].first_source, 900U);
}

TEST(LossReport, HasWordsAndNamesForEveryLoss)
{
    EXPECT_EQ(loss_words(Loss::bold), "bold text");
    EXPECT_EQ(loss_name(Loss::bold), "bold");
    EXPECT_EQ(loss_words(Loss::character), "characters unknown to the character set");
    EXPECT_EQ(loss_name(Loss::character), "character");
}

} // namespace

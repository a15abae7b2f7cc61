// The numbers that a command line may have, and those that it must not.
#include "cli/number_checks.h"

#include <CLI/CLI.hpp>
#include <gtest/gtest.h>

#include <functional>

namespace {

using namespace pfsdoc::cli;

std::string answer(const std::function<std::string()> &check)
{
    try {
        return check();
    } catch (const CLI::ValidationError &error) {
        return std::string("refused: ") + error.what();
    }
}

struct NumberCase {
    const char *text;
    const char *answer;
};

TEST(NumberChecks, TakeWholeNumbers)
{
    constexpr const char *wrong = "is not a whole number from 1 to 1024";
    for (const auto &[text, expected] :
         {NumberCase{"1", "1"}, NumberCase{"1024", "1024"}, NumberCase{"007", "7"},
          NumberCase{"0", wrong}, NumberCase{"1025", wrong}, NumberCase{"-1", wrong},
          NumberCase{"+1", wrong}, NumberCase{"1.5", wrong}, NumberCase{"1e1", wrong},
          NumberCase{"0x2", wrong}, NumberCase{"nan", wrong}, NumberCase{"", wrong},
          NumberCase{"1 ", wrong}, NumberCase{"18446744073709551617", wrong}}) {
        const std::string given = text;
        const std::string refused = "refused: " + given + " " + expected;
        EXPECT_EQ(answer([&] { return whole_number(given, 1, 1024); }),
                  expected == wrong ? refused : expected)
            << given;
    }
}

TEST(NumberChecks, TakeSeconds)
{
    constexpr const char *wrong = "is not a number of seconds from 0.001 to 86400";
    for (const auto &[text, expected] :
         {NumberCase{"30", "30"}, NumberCase{"0.5", "0.5"}, NumberCase{"0.001", "0.001"},
          NumberCase{"86400", "86400"}, NumberCase{"0", wrong}, NumberCase{"0.0001", wrong},
          NumberCase{"86401", wrong}, NumberCase{"nan", wrong}, NumberCase{"NAN", wrong},
          NumberCase{"inf", wrong}, NumberCase{"-1", wrong}, NumberCase{"-nan", wrong},
          NumberCase{"1e3", wrong}, NumberCase{"0x10", wrong}, NumberCase{"1s", wrong},
          NumberCase{"", wrong}, NumberCase{".", wrong}, NumberCase{"1,5", wrong}}) {
        const std::string given = text;
        const std::string refused = "refused: " + given + " " + expected;
        EXPECT_EQ(answer([&] { return number_of_seconds(given, 0.001, 86400); }),
                  expected == wrong ? refused : expected)
            << given;
    }
}

TEST(NumberChecks, TakeSizes)
{
    constexpr const char *wrong = "is not a size such as 500KB, 64MB or 2GB";
    constexpr const char *large = "is too large";
    constexpr const char *zero = "allows nothing";
    for (const auto &[text, expected] : {NumberCase{"1", "1"},
                                         NumberCase{"64KB", "65536"},
                                         NumberCase{"64kb", "65536"},
                                         NumberCase{"64k", "65536"},
                                         NumberCase{"1KiB", "1024"},
                                         NumberCase{"1 MB", "1048576"},
                                         NumberCase{"2GB", "2147483648"},
                                         NumberCase{"100B", "100"},
                                         NumberCase{"15EB", "17293822569102704640"},
                                         NumberCase{"18446744073709551615", "18446744073709551615"},
                                         NumberCase{"16EB", large},
                                         NumberCase{"18446744073709551616", large},
                                         NumberCase{"99999999999999999999GB", large},
                                         NumberCase{"0", zero},
                                         NumberCase{"0GB", zero},
                                         NumberCase{"-1", wrong},
                                         NumberCase{"-5GB", wrong},
                                         NumberCase{"+5MB", wrong},
                                         NumberCase{"1.5GB", wrong},
                                         NumberCase{"1e3", wrong},
                                         NumberCase{"0x10", wrong},
                                         NumberCase{"nan", wrong},
                                         NumberCase{"much", wrong},
                                         NumberCase{"GB", wrong},
                                         NumberCase{"", wrong},
                                         NumberCase{"1GBs", wrong},
                                         NumberCase{"1x", wrong}}) {
        const std::string given = text;
        const bool is_refused = expected == wrong || expected == large || expected == zero;
        const std::string refused = "refused: " + given + " " + expected;
        EXPECT_EQ(answer([&] { return number_of_bytes(given); }), is_refused ? refused : expected)
            << given;
    }
}

} // namespace

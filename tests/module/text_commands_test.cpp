// The commands between asterisks.
#include "tests/module/bench.h"

#include "vs_pfs/formatting.h"

#include <gtest/gtest.h>

namespace {

using namespace tests;
using namespace vs_pfs;

const std::array<const char *, 18> keywords{
    "N*", "NEW ",    "PAGE*", "JUSTIFY ", "JY ", "YES*",  "Y*", "NO*",    "PRINTER ",
    "P ", "CENTER*", "C*",    "GRAPH ",   "G ",  "JOIN ", "J ", "RIGHT*", "R*"};

struct Keyword {
    int32_t code;
    uint32_t read;
    std::string buffer;
};

Keyword keyword(const std::string &text)
{
    Bench bench(text);
    char buffer[command_buffer_size];
    const int32_t code = PfsGetCommand(bench.stream, buffer, bench.instance);
    EXPECT_TRUE(bench.take().empty());
    return {code, bench.tell(), code > 0 ? buffer : ""};
}

std::string lower_case(std::string text)
{
    for (char &c : text) {
        c = c >= 'A' && c <= 'Z' ? static_cast<char>(c + 0x20) : c;
    }
    return text;
}

TEST(GetCommand, ReturnsEachKeywordsIndexInTheTable)
{
    for (std::size_t i = 0; i < keywords.size(); ++i) {
        const Keyword read = keyword(std::string(keywords[i]) + "rest");
        EXPECT_EQ(read.code, static_cast<int32_t>(i + 1)) << keywords[i];
        EXPECT_EQ(read.read, std::string(keywords[i]).size());
        EXPECT_EQ(read.buffer, keywords[i]);
    }
}

TEST(GetCommand, ReadsLowerCaseAsUpperCase)
{
    for (std::size_t i = 0; i < keywords.size(); ++i) {
        EXPECT_EQ(keyword(lower_case(keywords[i])).code, static_cast<int32_t>(i + 1));
    }
}

TEST(GetCommand, LeavesWhatItReadInTheBuffer)
{
    Bench bench("azAZ@[`{*");
    char buffer[command_buffer_size];
    EXPECT_EQ(PfsGetCommand(bench.stream, buffer, bench.instance), 0);
    EXPECT_STREQ(buffer, "AZAZ@[`{*");
}

TEST(GetCommand, ChangesNoByteBesideTheLetters)
{
    EXPECT_EQ(keyword("n\x60*").code, 0);
    EXPECT_EQ(keyword("\xEE*").code, 0);
    EXPECT_EQ(keyword("\x0D*").code, 0);
    EXPECT_EQ(keyword("N{*").code, 0);
}

TEST(GetCommand, TheTerminatorBelongsToTheKeyword)
{
    for (std::size_t i = 0; i < keywords.size(); ++i) {
        std::string other = keywords[i];
        other.back() = other.back() == '*' ? ' ' : '*';
        // "JUSTIFY*" and the like are not keywords; no two differ only in the terminator.
        EXPECT_EQ(keyword(other).code, 0) << other;
    }
}

TEST(GetCommand, ReturnsAtOnceAtAControlByte)
{
    for (const char *control : {"00", "01", "02", "03", "07", "0E"}) {
        for (std::size_t before = 0; before < 9; ++before) {
            const Keyword read = keyword(std::string(before, 'A') + bytes(control) + "*****");
            EXPECT_EQ(read.code, 0);
            EXPECT_EQ(read.read, before + 1) << control;
        }
    }
}

TEST(GetCommand, ReadsNineBytesAtMost)
{
    const Keyword read = keyword("ABCDEFGHIJKLM*");
    EXPECT_EQ(read.code, 0);
    EXPECT_EQ(read.read, 9U);
    EXPECT_EQ(keyword("ABCDEFGH*").read, 9U);
}

TEST(GetCommand, StopsAtTheFirstTerminator)
{
    EXPECT_EQ(keyword("AB CD*").read, 3U);
    EXPECT_EQ(keyword(" N*").read, 1U);
    EXPECT_EQ(keyword("*N*").read, 1U);
}

TEST(GetCommand, FindsNothingAtTheEndOfTheData)
{
    EXPECT_EQ(keyword("").code, 0);
    EXPECT_EQ(keyword("N").code, 0);
    EXPECT_EQ(keyword("JUSTIFY").code, 0);
}

// How PfsTextCommand reads the text after an asterisk.
struct Outcome {
    int32_t result;
    uint32_t position;
    int column;
    Calls calls;
};

Outcome command(const std::string &after_asterisk)
{
    Bench bench("*" + after_asterisk);
    VwCharGet(bench.stream);
    int16_t column = 100;
    const int32_t result = PfsTextCommand(bench.stream, &column, bench.instance);
    return {result, bench.tell(), column, bench.take()};
}

// A command of that text: `text` is echoed from asterisk to asterisk.
void expect_command(const std::string &text, bool page_break)
{
    const Outcome outcome = command(text + " behind");
    EXPECT_EQ(outcome.result, 1) << text;
    EXPECT_EQ(outcome.position, 1 + text.size()) << text;
    EXPECT_EQ(outcome.column, 101 + static_cast<int>(text.size())) << text;
    EXPECT_TRUE(matches(outcome.calls, (page_break ? "3 4 0 | *'*" : "*'*") + text + "'"));
}

void expect_no_command(const std::string &text)
{
    const Outcome outcome = command(text);
    EXPECT_EQ(outcome.result, 0) << text;
    EXPECT_EQ(outcome.position, 1U) << text;
    EXPECT_EQ(outcome.column, 100) << text;
    EXPECT_TRUE(outcome.calls.empty()) << text;
}

TEST(TextCommand, NIsANewPageAndEchoedAsWritten)
{
    expect_command("n*", true);
    expect_command("N*", true);
}

TEST(TextCommand, NewPage)
{
    expect_command("NEW PAGE*", true);
    expect_command("New Page*", true);
}

TEST(TextCommand, NewPageNeedsOneSpaceAndTheWordPage)
{
    expect_no_command("NEW  PAGE*");
    expect_no_command("NEW LINE*");
    expect_no_command("NEW N*");
    expect_no_command("NEW *");
    expect_no_command("NEW*");
}

TEST(TextCommand, PageAloneHasNoPageBreak)
{
    expect_command("PAGE*", false);
}

TEST(TextCommand, JustifyNeedsAnAnswer)
{
    for (const char *word : {"JUSTIFY ", "JY ", "justify "}) {
        for (const char *answer : {"YES*", "Y*", "NO*", "N*", "no*"}) {
            expect_command(std::string(word) + answer, false);
        }
        for (const char *answer : {"C*", "PAGE*", "MAYBE*", " YES*", "*", "R*", "P x*"}) {
            expect_no_command(std::string(word) + answer);
        }
    }
}

TEST(TextCommand, PrinterGraphAndJoinTakeAnArgument)
{
    for (const char *word : {"PRINTER ", "P ", "GRAPH ", "G ", "JOIN ", "J "}) {
        expect_command(std::string(word) + "27,15*", false);
        expect_command(std::string(word) + "*", false);
    }
}

TEST(TextCommand, PrinterMustEndInASpace)
{
    for (const char *word : {"PRINTER*", "P*", "GRAPH*", "G*", "JOIN*", "J*"}) {
        expect_no_command(word);
    }
}

TEST(TextCommand, OneWordCommandsAreOnlyEchoed)
{
    for (const char *word : {"YES*", "Y*", "NO*", "CENTER*", "C*", "RIGHT*", "R*"}) {
        expect_command(word, false);
    }
}

TEST(TextCommand, AWordThatOnlyBeginsWithAKeywordIsNotOne)
{
    expect_no_command("NEWPAGE*");
    expect_no_command("PRINTERXY*");
    expect_no_command("NN*");
    expect_no_command("CENTERED*");
}

TEST(TextCommand, AControlByteInTheKeywordMakesItText)
{
    for (const char *control : {"0E", "00", "01", "02", "03", "07"}) {
        expect_no_command(bytes(control) + "N*");
        expect_no_command("NEW " + bytes(control) + "PAGE*");
        expect_no_command("NE" + bytes(control) + "W PAGE*");
    }
}

TEST(TextCommand, AnAsteriskBeforeASpaceOpensNothing)
{
    expect_no_command(" N*");
    expect_no_command("*");
}

TEST(TextCommand, TheEchoPassesEveryByteOfTheArgument)
{
    const std::string argument = bytes("'P ' 0C 0D 0E 00 C1 05 FF 'x' 2A");
    const Outcome outcome = command(argument);
    EXPECT_EQ(outcome.result, 1);
    EXPECT_TRUE(matches(outcome.calls, "*'*P ' | 2 12 7 | 2 13 7 | 2 14 7 | 2 0 7 | 2 193 7 | "
                                       "2 5 7 | 2 255 7 | *'x*'"));
}

TEST(TextCommand, TheEchoHasNoLimit)
{
    const Outcome outcome = command("P " + std::string(5000, 'x') + "*");
    EXPECT_EQ(outcome.calls.size(), 5004U);
    EXPECT_EQ(outcome.column, 100 + 5004);
}

TEST(TextCommand, TheColumnKeepsItsSixteenBits)
{
    const Outcome outcome = command("P " + std::string(70000, 'x') + "*");
    EXPECT_EQ(outcome.column, static_cast<int16_t>(100 + 70004));
}

TEST(TextCommand, TheEndOfTheDataInAKeywordMakesItText)
{
    expect_no_command("");
    expect_no_command("N");
    expect_no_command("NEW ");
    expect_no_command("NEW PAG");
    expect_no_command("JUSTIFY YE");
}

TEST(TextCommand, TheEndOfTheDataEndsTheEcho)
{
    const Outcome outcome = command("P 27,15");
    EXPECT_TRUE(matches(outcome.calls, "*'*P 27,15'"));
}

} // namespace

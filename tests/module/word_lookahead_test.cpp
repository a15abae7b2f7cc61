// The lookahead remembers its last scan. Here its results are compared with those of a scan that
// remembers nothing and works on the bytes themselves, and its cost is counted in block file reads,
// over bodies in which each line end's scan is long.
//
// VS_PFS_LOOKAHEAD_BODIES sets how many random and hostile bodies are compared, over both
// families together, and VS_PFS_LOOKAHEAD_SEED the number of the first.
#include "tests/module/bench.h"
#include "vs_pfs/line_readers.h"
#include "vs_pfs/line_readers/word_lookahead.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <iostream>
#include <ostream>
#include <random>
#include <vector>

namespace tests {
namespace {

constexpr int nothing = -1;

// The bytes of a body, delivered one after the other; then nothing.
struct Bytes {
    const std::string &text;
    std::size_t at;

    int next()
    {
        return at < text.size() ? static_cast<unsigned char>(text[at++]) : nothing;
    }
};

using Ender = int32_t (*)(VwCharStream *, int16_t, uint16_t *, VwInstance *);

// One family: its line ends, the module's lookahead, and the plain one.
struct Family {
    const char *name;
    std::string line_ends;
    Ender determine_ender;
    int16_t (*word_length)(const std::string &body, std::size_t position);
    std::string alphabet;            // of random bodies
    std::vector<std::string> tokens; // of hostile ones: whole characters, as the lookahead counts
};

// For the list of tests, which would show an address.
void PrintTo(const Family *family, std::ostream *stream)
{
    *stream << family->name;
}

int16_t write_word_length(const std::string &body, std::size_t position)
{
    Bytes bytes = {body, position};
    bool in_leading_blanks = true;
    uint16_t length = 0;
    for (;;) {
        const int c = bytes.next();
        if (c == 0x0D || c == 0x0E || c == nothing) {
            break;
        }
        if ((c & 0x80) != 0) {
            bytes.next();
        }
        if (c == 0x20) {
            if (!in_leading_blanks) {
                break;
            }
            continue;
        }
        in_leading_blanks = false;
        ++length;
    }
    return static_cast<int16_t>(length);
}

int16_t choice_word_length(const std::string &body, std::size_t position)
{
    Bytes bytes = {body, position};
    bool leading = true;
    uint16_t length = 0;
    for (;;) {
        int d = bytes.next();
        if (d == nothing || d == 0x0C || d == 0x0D || d == 0x0E) {
            break;
        }
        if ((d & 0x80) != 0) {
            int attribute = bytes.next();
            d = (attribute & 0x08) == 0 ? d & 0x7F : d;
            while (attribute != nothing && (attribute & 0x40) != 0) {
                attribute = bytes.next();
            }
            if (attribute == nothing) {
                break; // a truncated character is dropped
            }
        }
        if (d == 0x20 && !leading) {
            break;
        }
        if (d != 0x20) {
            leading = false;
            ++length;
        }
    }
    return static_cast<int16_t>(length);
}

const Family write_family = {"write",
                             "\x0D",
                             vs_pfs::PfsDetermineEnder,
                             write_word_length,
                             std::string("\x80\x80\x0D\x0D\xBF\xA0 a\x0C\x0E", 10),
                             {"\x80\x0D", "\xBF\x0D", "a", " ", "\x80\x80", "\xFF ", "\x0D"}};
const Family choice_family = {
    "choice",
    "\x0C\x0D",
    vs_pfs::FcDetermineEnder,
    choice_word_length,
    std::string("\x80\x80\x40\x40\x48\x0C\x0D\xA0 a\x08\x0E\x00", 13),
    {"\x80\x0D", "\x80@@\x0D", "\xA0@@@\x0C", "\xA0H@\x0C", "a", " ", "\xA0\x01", "\x0C"}};

std::vector<std::size_t> positions_after_line_ends(const std::string &body, const Family &family)
{
    std::vector<std::size_t> positions;
    for (std::size_t i = 0; i < body.size(); ++i) {
        if (family.line_ends.find(body[i]) != std::string::npos) {
            positions.push_back(i + 1);
        }
    }
    return positions;
}

// Queries the module at a position as its reader would.
bool module_says_hard(Bench &bench, const Family &family, std::size_t position, int16_t column)
{
    VwCharSeek(bench.stream, static_cast<uint32_t>(position), 0);
    uint16_t hard = 1;
    family.determine_ender(bench.stream, column, &hard, bench.instance);
    EXPECT_EQ(bench.tell(), position);
    return hard != 0;
}

bool plain_scan_says_hard(const std::string &body, const Family &family, std::size_t position,
                          int16_t column, int16_t right_margin)
{
    const int16_t length = family.word_length(body, position);
    return length == 0 || column + length <= right_margin;
}

void expect_same_answers(const std::string &body, const Family &family,
                         const std::vector<std::size_t> &positions, int16_t column,
                         int16_t right_margin, uint32_t most_per_read)
{
    Bench bench(body);
    bench.file.keep_log = false;
    bench.file.most_per_read = most_per_read;
    bench.saved().rightMargin = static_cast<uint16_t>(right_margin);
    for (const std::size_t position : positions) {
        ASSERT_EQ(module_says_hard(bench, family, position, column),
                  plain_scan_says_hard(body, family, position, column, right_margin))
            << family.name << " at " << position << " column " << column << " margin "
            << right_margin << " buffers of " << most_per_read;
    }
}

// With whole buffers, which contain the words, and with small ones, which the words exceed.
void expect_same_answers(const std::string &body, const Family &family,
                         const std::vector<std::size_t> &positions, int16_t column,
                         int16_t right_margin)
{
    const auto few_bytes = static_cast<uint32_t>(1 + body.size() % 50);
    expect_same_answers(body, family, positions, column, right_margin, UINT32_MAX);
    expect_same_answers(body, family, positions, column, right_margin, few_bytes);
}

std::string random_body(std::mt19937 &random, const std::string &alphabet, std::size_t size)
{
    std::string body;
    std::uniform_int_distribution<std::size_t> pick(0, alphabet.size() - 1);
    std::generate_n(std::back_inserter(body), size, [&] { return alphabet[pick(random)]; });
    return body;
}

// From a few tokens only, so that the one that would end a scan is often missing.
std::string hostile_body(std::mt19937 &random, std::vector<std::string> tokens, std::size_t size)
{
    std::shuffle(tokens.begin(), tokens.end(), random);
    tokens.resize(1 + random() % 4);
    std::string body;
    while (body.size() < size) {
        body += tokens[random() % tokens.size()];
    }
    return body;
}

std::string any_body(std::mt19937 &random, const Family &family)
{
    const std::size_t size = random() % 400;
    if (random() % 2 == 0) {
        return hostile_body(random, family.tokens, size);
    }
    // Omitting one byte value at a time makes scans longer.
    std::string alphabet = family.alphabet;
    alphabet.erase(random() % alphabet.size(), 1);
    return random_body(random, alphabet, size);
}

// Mostly near the words' lengths; otherwise any, including negative ones.
int16_t any_margin(std::mt19937 &random)
{
    return static_cast<int16_t>(random() % 8 == 0 ? random() : random() % 260);
}

unsigned long setting(const char *name, unsigned long otherwise)
{
    const char *value = std::getenv(name);
    return value == nullptr ? otherwise : std::strtoul(value, nullptr, 0);
}

class WordLookahead : public ::testing::TestWithParam<const Family *> {};

TEST_P(WordLookahead, AnswersRandomHostileBodiesAsThePlainScanDoes)
{
    const Family &family = *GetParam();
    const unsigned long bodies = setting("VS_PFS_LOOKAHEAD_BODIES", 6000) / 2;
    const unsigned long first = setting("VS_PFS_LOOKAHEAD_SEED", 1);
    std::size_t line_ends = 0;
    for (unsigned long number = first; number < first + bodies && !HasFatalFailure(); ++number) {
        SCOPED_TRACE("body " + std::to_string(number));
        std::mt19937 random(static_cast<unsigned>(number));
        const std::string body = any_body(random, family);
        const auto positions = positions_after_line_ends(body, family);
        const auto column = static_cast<int16_t>(random() % 40);
        expect_same_answers(body, family, positions, column, any_margin(random));
        line_ends += positions.size();
    }
    std::cout << bodies << " bodies, numbered from " << first << ", " << line_ends
              << " line ends\n";
    EXPECT_GT(line_ends, bodies);
}

TEST_P(WordLookahead, IsRightWhateverTheOrderOfPositions)
{
    const Family &family = *GetParam();
    std::mt19937 random(7);
    for (int i = 0; i < 500; ++i) {
        const std::string body = random_body(random, family.alphabet.substr(0, 6), 200);
        auto positions = positions_after_line_ends(body, family);
        std::shuffle(positions.begin(), positions.end(), random);
        expect_same_answers(body, family, positions, 3, 40);
    }
}

// A body whose every line end is taken for an attribute byte by the lookahead, so that one
// word runs from the first line to the end.
std::string endless_word(const Family &family, std::size_t lines)
{
    std::string body;
    for (std::size_t i = 0; i < lines; ++i) {
        body += 'a';
        body += '\x80';
        body += family.line_ends[i % family.line_ends.size()];
    }
    return body;
}

TEST_P(WordLookahead, CountsWordsInSixteenBitsThatWrap)
{
    const Family &family = *GetParam();
    // Two characters a line: the word's length passes 32767 and 65535 on the way.
    const std::string body = endless_word(family, 40000);
    const auto all = positions_after_line_ends(body, family);
    std::vector<std::size_t> some; // the plain scan is slow here
    for (std::size_t i = 0; i < all.size(); i += 400) {
        some.push_back(all[i]);
    }
    some.push_back(all[all.size() - 16384]); // exactly 32766, 32768 and 65536 characters left
    some.push_back(all[all.size() - 16385]);
    some.push_back(all[all.size() - 32769]);
    std::sort(some.begin(), some.end());
    for (const int16_t margin : {int16_t{10}, int16_t{70}, int16_t{32767}, int16_t{-32768}}) {
        expect_same_answers(body, family, some, 1, margin);
    }
}

// Reads a body and queries at each line end, as a reader does. Returns the number of reads.
unsigned reads_of(const std::string &body, const Family &family)
{
    Bench bench(body);
    bench.file.keep_log = false;
    bench.saved().rightMargin = 60;
    for (const std::size_t position : positions_after_line_ends(body, family)) {
        while (bench.tell() < position) {
            VwCharGet(bench.stream);
        }
        uint16_t hard = 1;
        family.determine_ender(bench.stream, 1, &hard, bench.instance);
    }
    return bench.file.reads;
}

TEST_P(WordLookahead, ReadsProseOnceAlthoughWordsLieAcrossTheBuffersEnd)
{
    const Family &family = *GetParam();
    std::mt19937 random(3);
    std::string body;
    for (std::size_t line_length = 0; body.size() < 400000;) {
        const std::string word(1 + random() % 9, 'a');
        line_length += word.size() + 1;
        body += word + (line_length < 60 ? ' ' : family.line_ends[0]);
        line_length = line_length < 60 ? line_length : 0;
    }
    // The buffer is refilled before a word that is likely to run past its end.
    const std::size_t least_used = VW_STREAM_BUFFER_SIZE - vs_pfs::common_word_length;
    EXPECT_LE(reads_of(body, family), body.size() / least_used + 1);
}

TEST_P(WordLookahead, CostsThreeReadsOfEachBlockHoweverLongTheWord)
{
    const Family &family = *GetParam();
    const std::string body = endless_word(family, 200000);
    const unsigned reads = reads_of(body, family);
    const unsigned once = static_cast<unsigned>(body.size() / VW_STREAM_BUFFER_SIZE);
    // One for the scan; and one for the reader and one for subtracting what it has read.
    EXPECT_GT(reads, once);
    EXPECT_LE(reads, 3 * once + 10);
}

TEST_P(WordLookahead, QueriedAgainAtTheSamePositionItReadsNothing)
{
    const Family &family = *GetParam();
    Bench bench(endless_word(family, 10000));
    bench.saved().rightMargin = 60;
    EXPECT_FALSE(module_says_hard(bench, family, 3, 1));
    const unsigned reads = bench.file.reads;
    EXPECT_GT(reads, 10U);
    EXPECT_FALSE(module_says_hard(bench, family, 3, 1));
    EXPECT_EQ(bench.file.reads, reads);
}

TEST_P(WordLookahead, ForgetsItsScanWhenADocumentIsOpened)
{
    const Family &family = *GetParam();
    Bench bench(endless_word(family, 10));
    bench.saved().rightMargin = 60;
    EXPECT_TRUE(module_says_hard(bench, family, 3, 1));
    EXPECT_NE(bench.instance->lookahead.stream, nullptr);
    bench.open();
    EXPECT_EQ(bench.instance->lookahead.stream, nullptr);
}

INSTANTIATE_TEST_SUITE_P(Families, WordLookahead, ::testing::Values(&write_family, &choice_family),
                         [](const auto &family) { return std::string(family.param->name); });

// A file that delivers different bytes than before has no right result, but the call must return,
// with the stream at its position.
TEST(WordLookaheadFaults, ComesBackWhenTheFileChangesUnderIt)
{
    Bench bench(endless_word(write_family, 2000));
    bench.saved().rightMargin = 60;
    module_says_hard(bench, write_family, 3, 1);
    bench.file.bytes.assign(6000, ' ');
    VwCharSeek(bench.stream, 5000, 0); // so that the changed bytes are read
    VwCharGet(bench.stream);
    module_says_hard(bench, write_family, 3000, 1);
    bench.file.bytes.clear();
    VwCharSeek(bench.stream, 100, 0);
    VwCharGet(bench.stream);
    module_says_hard(bench, write_family, 3003, 1);
}

// The remembered word now ends before the position of the query: the result is that of a fresh
// scan.
TEST(WordLookaheadFaults, ScansAgainWhereTheRememberedWordIsGone)
{
    Bench bench(endless_word(write_family, 2000));
    bench.saved().rightMargin = 60;
    EXPECT_FALSE(module_says_hard(bench, write_family, 3, 1));
    bench.file.bytes = std::string(5000, '\x0E') + std::string(1000, 'a');
    VwCharSeek(bench.stream, 5500, 0); // so that the changed bytes are read
    VwCharGet(bench.stream);
    EXPECT_TRUE(module_says_hard(bench, write_family, 3000, 1));
    bench.file.bytes.assign(6000, 'a');
    VwCharSeek(bench.stream, 5900, 0);
    VwCharGet(bench.stream);
    EXPECT_FALSE(module_says_hard(bench, write_family, 3003, 1));
}

// The remembered scan is followed from its own start, the fresh one starts at the position.
TEST(WordLookaheadFaults, ScansAgainFromThePositionOfTheQuery)
{
    Bench bench(endless_word(write_family, 2000));
    bench.saved().rightMargin = 60;
    EXPECT_FALSE(module_says_hard(bench, write_family, 3, 1));
    bench.file.bytes = std::string(2900, '\x0E') + std::string(3100, 'a');
    VwCharSeek(bench.stream, 5500, 0); // so that the changed bytes are read
    VwCharGet(bench.stream);
    EXPECT_FALSE(module_says_hard(bench, write_family, 3000, 1));
}

} // namespace
} // namespace tests

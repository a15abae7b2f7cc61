// Runs of plain text: which bytes belong to one, and what a host sees and may change between two of
// its characters. tests/model checks that a run reports what its characters would one by one, as
// does tests/robustness with buffers of a few bytes.
#include "tests/module/bench.h"
#include "vs_pfs/line_readers/line_text.h"

#include <gtest/gtest.h>

namespace {

using namespace tests;
using namespace vs_pfs;

constexpr int longest_run = 45; // several words of eight bytes, and a rest

// A bench whose whole text is in the buffer.
class Buffered : public Bench {
public:
    explicit Buffered(std::string text) : Bench(std::move(text))
    {
        VwCharGet(stream);
        VwCharUnget(stream);
    }
};

std::string letters(int count)
{
    return std::string(static_cast<std::size_t>(count), 'a');
}

TEST(PlainText, BytesFromTheSpaceToSevenF)
{
    for (int byte = 0; byte < 256; ++byte) {
        const bool expected = byte >= 0x20 && byte <= 0x7F && byte != '*';
        EXPECT_EQ(is_plain(static_cast<uint8_t>(byte)), expected) << byte;
    }
}

TEST(PlainText, CountsUpToAnyOtherByteAtAnyPosition)
{
    for (int byte = 0; byte < 256; ++byte) {
        for (int position = 0; position < longest_run; ++position) {
            std::string text = letters(longest_run);
            text[static_cast<std::size_t>(position)] = static_cast<char>(byte);
            const Buffered bench(text);
            const bool plain = is_plain(static_cast<uint8_t>(byte));
            EXPECT_EQ(count_plain(bench.stream, space), plain ? longest_run : position)
                << byte << " at " << position;
            EXPECT_EQ(count_plain(bench.stream, space + 1),
                      plain && byte != space ? longest_run : position)
                << byte << " at " << position;
        }
    }
}

TEST(PlainText, CountsToTheEndOfTheBuffer)
{
    for (int length = 1; length <= longest_run; ++length) {
        const Buffered bench(letters(length));
        EXPECT_EQ(count_plain(bench.stream, space), length);
    }
}

// Long runs are scanned in blocks of 64 bytes. 0x20 and 0x7F are next to bytes that are not plain.
TEST(PlainText, RunsEndBeforeAnyOtherByteAtAnyPosition)
{
    for (const char byte : {'\0', '\r', '\x1F', '*', '\x80', '\xFF'}) {
        for (std::size_t position = 1; position < 200; ++position) {
            std::string text;
            while (text.size() < 220) {
                text += text.size() % 3 == 0 ? ' ' : '\x7F';
            }
            text[position] = byte;
            text[position + 1] = byte;
            Buffered bench(text);
            int16_t column = 0;
            put_plain_text(bench.stream, bench.instance, column);
            EXPECT_EQ(column, static_cast<int>(position)) << static_cast<int>(byte);
            EXPECT_EQ(bench.tell(), position);
            EXPECT_EQ(bench.take().size(), position);
        }
    }
}

TEST(PlainText, CountsNothingPastTheData)
{
    Bench bench("a");
    EXPECT_EQ(count_plain(bench.stream, space), 0) << "nothing is buffered yet";
    while (VwCharGet(bench.stream) != end_of_data) {
    }
    EXPECT_LT(bench.stream->remaining, 0);
    EXPECT_EQ(count_plain(bench.stream, space), 0);
}

TEST(PlainText, StopsBeforeAnotherByteAndMovesTheColumn)
{
    Buffered bench("one two\rthree");
    int16_t column = 10;
    EXPECT_EQ(put_plain_text(bench.stream, bench.instance, column), 'o');
    EXPECT_EQ(bench.take(), calls("'one two'"));
    EXPECT_EQ(column, 17);
    EXPECT_EQ(bench.tell(), 7U);
    EXPECT_EQ(put_plain_text(bench.stream, bench.instance, column), 0);
    EXPECT_EQ(column, 17);
}

TEST(PlainText, AnUnregisteredRoutineIsPassedByAtOnce)
{
    Buffered bench("one two\r");
    bench.unregister(VW_SO_CHARACTER);
    int16_t column = 0;
    EXPECT_EQ(put_plain_text(bench.stream, bench.instance, column), 'o');
    EXPECT_EQ(bench.take(), Calls());
    EXPECT_EQ(column, 7);
    EXPECT_EQ(bench.tell(), 7U);
}

// A host that watches and changes its own registration while a run is reported.
struct Watcher {
    VwInstance *instance;
    VwCharStream *stream;
    std::string first;               // through the first routine
    std::string second;              // through the other
    std::vector<uint32_t> positions; // at each of its characters
    std::vector<uint32_t> users;     // the second user words
    char last_of_first = 'c';        // with it the routine changes
    VwRoutine next_routine = nullptr;
};
Watcher *watcher;

int32_t watch_second(int32_t character, uint32_t, uint32_t)
{
    watcher->second += static_cast<char>(character);
    return 0;
}

int32_t watch_first(int32_t character, uint32_t, uint32_t user2)
{
    watcher->first += static_cast<char>(character);
    watcher->positions.push_back(VwCharTell(watcher->stream));
    watcher->users.push_back(user2);
    VwSetUser(0, user2 + 1, watcher->instance);
    if (character == watcher->last_of_first) {
        VwSetSoRtn(VW_SO_CHARACTER, watcher->next_routine, watcher->instance);
    }
    return 0;
}

class WatchedRun : public ::testing::Test {
protected:
    WatchedRun()
    {
        watcher = &watched;
        VwSetSoRtn(VW_SO_CHARACTER, reinterpret_cast<VwRoutine>(&watch_first), bench.instance);
        VwSetUser(0, 7, bench.instance);
    }
    // Reports all of "abcdef", in as many runs as that takes.
    void put_all()
    {
        while (put_plain_text(bench.stream, bench.instance, column) != 0) {
        }
    }

    Buffered bench{"abcdef\r"};
    Watcher watched{bench.instance, bench.stream, {}, {}, {}, {}, 'c', nullptr};
    int16_t column = 0;
};

TEST_F(WatchedRun, EachCharacterIsReportedAtItsOwnPosition)
{
    watched.last_of_first = 0;
    put_all();
    EXPECT_EQ(watched.first, "abcdef");
    EXPECT_EQ(watched.positions, (std::vector<uint32_t>{1, 2, 3, 4, 5, 6}));
}

TEST_F(WatchedRun, UserWordsTakeEffectWithTheNextCharacter)
{
    watched.last_of_first = 0;
    put_all();
    EXPECT_EQ(watched.users, (std::vector<uint32_t>{7, 8, 9, 10, 11, 12}));
}

TEST_F(WatchedRun, AnotherRoutineTakesEffectWithTheNextCharacter)
{
    watched.next_routine = reinterpret_cast<VwRoutine>(&watch_second);
    put_all();
    EXPECT_EQ(watched.first, "abc");
    EXPECT_EQ(watched.second, "def");
    EXPECT_EQ(column, 6);
}

TEST_F(WatchedRun, TakingTheRoutineAwayTakesEffectWithTheNextCharacter)
{
    put_all();
    EXPECT_EQ(watched.first, "abc");
    EXPECT_EQ(column, 6);
    EXPECT_EQ(bench.tell(), 6U);
}

} // namespace

// What lanes and the clerk tell each other: lines come in the order of the files, in whatever
// order these are done; nobody waits for more than is needed, and nothing is done after the end.
#include "batch/ledger.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace tests {

namespace {

using namespace std::chrono_literals;
using pfsdoc::ErrorKind;
using pfsdoc::batch::FileStatus;
using pfsdoc::batch::Ledger;

const pfsdoc::Error full_disk{ErrorKind::output, "the disk is full", "make room"};

class Ledgers : public testing::Test {
protected:
    Ledger::Entry &enter()
    {
        EXPECT_TRUE(ledger.wait_for_room());
        return ledger.enter();
    }
    std::string lines()
    {
        return ledger.take_lines(tally);
    }
    // An output that has a name of its own already.
    static Ledger::WholeOutput whole(Ledger::Entry &entry, const std::string &line)
    {
        return {&entry,
                {},
                FileStatus::converted,
                line,
                pfsdoc::batch::PendingOutput(pfsdoc::batch::OpenFile(), "", "")};
    }

    Ledger ledger;
    pfsdoc::batch::Tally tally;
};

TEST_F(Ledgers, HaveTheLinesInOrder)
{
    Ledger::Entry &a = enter();
    Ledger::Entry &b = enter();
    Ledger::Entry &c = enter();
    EXPECT_EQ(lines(), "");
    ledger.close(b, FileStatus::damaged, "b");
    EXPECT_EQ(lines(), "") << "a is not done";
    ledger.close(a, FileStatus::converted, "a");
    EXPECT_EQ(lines(), "ab");
    EXPECT_EQ(lines(), "") << "each line comes once";
    ledger.close(c, FileStatus::crashed, "c");
    Ledger::Entry &d = enter();
    EXPECT_EQ(lines(), "c");
    ledger.close(d, FileStatus::converted, "d");
    EXPECT_EQ(lines(), "d");
    EXPECT_EQ(tally.words(), "4 files: 2 converted, 1 damaged, 1 crashed");
}

TEST_F(Ledgers, HaveNoLineBeforeTheOutputHasItsName)
{
    ledger.begin_lane();
    Ledger::Entry &a = enter();
    ledger.gather(whole(a, "a"));
    EXPECT_EQ(lines(), "");
    EXPECT_TRUE(ledger.take_gathered().empty()) << "there may be more in a moment";
    ledger.end_lane();
    const auto outputs = ledger.take_gathered();
    ASSERT_EQ(outputs.size(), 1U);
    EXPECT_TRUE(ledger.take_gathered().empty()) << "each output comes once";
    ledger.place(*outputs[0].entry, outputs[0].status, outputs[0].line);
    EXPECT_EQ(lines(), "a");
}

TEST_F(Ledgers, HaveManyOutputsPlacedTogether)
{
    ledger.begin_lane();
    for (std::size_t i = 1; i < Ledger::placed_at_once; ++i) {
        ledger.gather(whole(enter(), "x"));
    }
    EXPECT_TRUE(ledger.take_gathered().empty());
    ledger.gather(whole(enter(), "x"));
    EXPECT_TRUE(ledger.wait(1h)) << "the clerk was not called";
    EXPECT_EQ(ledger.take_gathered().size(), Ledger::placed_at_once);
}

TEST_F(Ledgers, HaveFewOutputsPlacedInTime)
{
    ledger.begin_lane();
    ledger.gather(whole(enter(), "x"));
    std::this_thread::sleep_for(1100ms);
    EXPECT_EQ(ledger.take_gathered().size(), 1U);
}

// A file that takes long holds up the others in the end; and then nothing else does.
TEST_F(Ledgers, HaveSoMuchRoomAndNoMore)
{
    ledger.begin_lane();
    Ledger::Entry &slow = enter();
    Ledger::Entry &gathered = enter();
    for (std::size_t entered = 2; entered < Ledger::window; ++entered) {
        ledger.close(enter(), FileStatus::converted, "x");
    }
    std::atomic<bool> has_room = false;
    std::thread lane([&] { has_room = ledger.wait_for_room(); });
    EXPECT_TRUE(ledger.wait(1h)) << "the clerk is called by who waits for room";
    ledger.gather(whole(gathered, "g"));
    const auto outputs = ledger.take_gathered();
    ASSERT_EQ(outputs.size(), 1U) << "it holds up the lane that waits";
    ledger.place(gathered, FileStatus::converted, "g");
    EXPECT_EQ(lines(), "");
    EXPECT_FALSE(has_room);
    ledger.close(slow, FileStatus::timeout, "s");
    EXPECT_TRUE(ledger.wait(1h)) << "the clerk is called by who makes room";
    EXPECT_EQ(lines().substr(0, 3), "sgx");
    lane.join();
    EXPECT_TRUE(has_room);
    EXPECT_EQ(tally.files(), Ledger::window);
}

TEST_F(Ledgers, EndWithTheInputs)
{
    ledger.begin_lane();
    ledger.begin_lane();
    ledger.close(enter(), FileStatus::converted, "a");
    ledger.end_inputs();
    EXPECT_FALSE(ledger.wait_for_room());
    ledger.end_lane();
    EXPECT_TRUE(ledger.wait(1h)) << "there is another lane";
    ledger.end_lane();
    EXPECT_FALSE(ledger.wait(1h));
    EXPECT_EQ(lines(), "a");
    EXPECT_FALSE(ledger.fault());
}

// Whatever ends the run ends the workers, too, and that is no fault of their files.
TEST_F(Ledgers, TakeNoMoreWhenTheRunIsToEnd)
{
    ledger.begin_lane();
    Ledger::Entry &a = enter();
    Ledger::Entry &b = enter();
    Ledger::Entry &c = enter();
    ledger.close(a, FileStatus::converted, "a");
    ledger.stop(full_disk);
    ledger.stop({ErrorKind::interrupted, "later", ""});
    EXPECT_TRUE(ledger.wait(1h)) << "the clerk was not called";
    ASSERT_TRUE(ledger.fault());
    EXPECT_EQ(ledger.fault()->what, full_disk.what) << "the first reason counts";
    EXPECT_FALSE(ledger.wait_for_room());
    ledger.gather(whole(b, "b"));
    ledger.close(c, FileStatus::crashed, "c");
    ledger.end_lane();
    const auto outputs = ledger.take_gathered();
    ASSERT_EQ(outputs.size(), 1U) << "what is whole is kept";
    ledger.place(b, FileStatus::converted, "b");
    EXPECT_EQ(lines(), "ab");
}

TEST_F(Ledgers, LetNobodyWaitWhenTheRunIsToEnd)
{
    ledger.begin_lane();
    for (std::size_t entered = 0; entered < Ledger::window; ++entered) {
        enter();
    }
    std::thread lane([&] { EXPECT_FALSE(ledger.wait_for_room()); });
    EXPECT_TRUE(ledger.wait(1h));
    ledger.stop(full_disk);
    lane.join();
}

// As a run has them: lanes that take, do and enter, and a clerk that writes.
TEST_F(Ledgers, AreForManyThreads)
{
    constexpr int lane_count = 4;
    constexpr std::size_t file_count = 5000;
    std::mutex inputs;
    std::size_t taken = 0;
    std::vector<std::thread> lanes;
    for (int i = 0; i < lane_count; ++i) {
        ledger.begin_lane();
        lanes.emplace_back([&] {
            for (;;) {
                std::unique_lock lock(inputs);
                if (!ledger.wait_for_room() || taken == file_count) {
                    break;
                }
                const std::size_t number = taken++;
                Ledger::Entry &entry = ledger.enter();
                lock.unlock();
                const std::string line = std::to_string(number) + "\n";
                if (number % 3 == 0) {
                    ledger.close(entry, FileStatus::damaged, line);
                } else {
                    ledger.gather(whole(entry, line));
                }
            }
            ledger.end_lane();
        });
    }
    std::string written;
    for (bool goes_on = true; goes_on;) {
        goes_on = ledger.wait(10ms);
        for (const Ledger::WholeOutput &output : ledger.take_gathered()) {
            ledger.place(*output.entry, output.status, output.line);
        }
        written += lines();
    }
    for (std::thread &lane : lanes) {
        lane.join();
    }
    std::string expected;
    for (std::size_t number = 0; number < file_count; ++number) {
        expected += std::to_string(number) + "\n";
    }
    EXPECT_EQ(written, expected);
}

} // namespace

} // namespace tests

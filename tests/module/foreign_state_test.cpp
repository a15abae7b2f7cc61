// Saved states that no reading produced. The text may become nonsense; the document is still read
// to its end, within bounds.
#include "tests/module/bench.h"
#include "tests/module/rich_documents.h"

#include <gtest/gtest.h>

#include <cstring>
#include <random>

namespace {

using namespace tests;
using namespace vs_pfs;

constexpr unsigned most_reads = 400;

class ForeignState : public ::testing::TestWithParam<NamedDocument> {
protected:
    ForeignState() : host(GetParam().bytes)
    {
        EXPECT_EQ(host.open(), 0);
        host.checker.expect_foreign_state();
        start = host.place();
    }

    // Reads from the body's start with the state to the end.
    void read_with(const std::vector<uint8_t> &state)
    {
        for (const bool stop : {false, true}) {
            Place place = start;
            place.state = state;
            host.go_to(place);
            stop ? host.stop_at_all() : host.stop_at_none();
            const unsigned reads_before = host.reads;
            while (!host.document_ended && host.reads - reads_before < most_reads) {
                host.read();
            }
            ASSERT_TRUE(host.document_ended);
        }
    }
    std::vector<uint8_t> state_with(uint16_t hf_pending, uint8_t hf_reader_flag)
    {
        SavedState saved;
        std::memcpy(&saved, start.state.data(), sizeof saved);
        saved.hfPending = hf_pending;
        saved.hfReaderFlag = hf_reader_flag;
        std::vector<uint8_t> state(sizeof saved);
        std::memcpy(state.data(), &saved, sizeof saved);
        return state;
    }

    RecordingHost host;
    Place start;
};

TEST_P(ForeignState, OfOneByteThroughout)
{
    for (const uint8_t filler :
         std::initializer_list<uint8_t>{0x00, 0xFF, 0x7F, 0x80, 0x01, 0x55, 0xAA}) {
        SCOPED_TRACE(static_cast<int>(filler));
        read_with(std::vector<uint8_t>(VW_SAVED_STATE_SIZE, filler));
    }
}

TEST_P(ForeignState, OfRandomBytes)
{
    for (unsigned seed = 0; seed < 150; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        std::vector<uint8_t> state(VW_SAVED_STATE_SIZE);
        for (uint8_t &byte : state) {
            byte = static_cast<uint8_t>(random());
        }
        read_with(state);
    }
}

TEST_P(ForeignState, WithOneFieldOutOfRange)
{
    for (std::size_t offset = 0; offset < 24; ++offset) {
        for (const uint8_t value : std::initializer_list<uint8_t>{0x00, 0x01, 0x7F, 0x80, 0xFF}) {
            std::vector<uint8_t> state = start.state;
            state[offset] = value;
            read_with(state);
        }
    }
}

TEST_P(ForeignState, WithHeaderLinesPendingThatDoNotExist)
{
    // All values of the low byte, which holds every known bit, and a spread of the others.
    for (uint32_t pending = 0; pending < 0x10000; pending += pending < 0x100 ? 1 : 251) {
        SCOPED_TRACE(pending);
        for (const uint8_t flag : std::initializer_list<uint8_t>{0, 1}) {
            read_with(state_with(static_cast<uint16_t>(pending), flag));
        }
    }
}

INSTANTIATE_TEST_SUITE_P(EveryKind, ForeignState, ::testing::ValuesIn(rich_documents()),
                         [](const auto &document) { return document.param.name; });

TEST(ForeignPendingLines, EndInABoundedNumberOfCallsWhateverTheValue)
{
    Bench bench(write_document(2, bytes("0E")));
    ASSERT_TRUE(bench.opens());
    bench.checker.expect_foreign_state();
    for (uint32_t pending = 0; pending < 0x10000; ++pending) {
        bench.saved().hfPending = static_cast<uint16_t>(pending);
        const Calls calls = bench.read();
        ASSERT_LT(calls.size(), 80U) << pending;
        ASSERT_EQ(calls.back(), (Call{VW_SO_BREAK, 2, {2, 0}})) << pending;
        ASSERT_EQ(bench.saved().hfPending, 0) << pending;
    }
}

} // namespace

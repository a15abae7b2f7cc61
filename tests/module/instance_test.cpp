// The instance record: what is saved and restored, and what is not.
#include "tests/module/bench.h"

#include <gtest/gtest.h>

#include <cstring>

namespace {

using namespace tests;
using namespace vs_pfs;

const std::string three_paragraphs = bytes("0D 'One' 0D 0D 'Two' 0D 0D 'Three' 0D 0E");

TEST(SavedStateLayout, HoldsTheFieldsInTheirOrder)
{
    EXPECT_EQ(offsetof(SavedState, seekPos), 0U);
    EXPECT_EQ(offsetof(SavedState, leftMargin), 4U);
    EXPECT_EQ(offsetof(SavedState, rightMargin), 6U);
    EXPECT_EQ(offsetof(SavedState, pwReaderWord), 8U);
    EXPECT_EQ(offsetof(SavedState, hfPending), 10U);
    EXPECT_EQ(offsetof(SavedState, tabCount), 12U);
    EXPECT_EQ(offsetof(SavedState, attrState), 14U);
    EXPECT_EQ(offsetof(SavedState, fontValue), 20U);
    EXPECT_LT(offsetof(SavedState, fontValue), offsetof(SavedState, tabPos));
    EXPECT_LT(offsetof(SavedState, tabPos), offsetof(SavedState, tabKind));
    EXPECT_EQ(sizeof(SavedState), 328U);
    EXPECT_EQ(sizeof(FilterState::hfTextPos), 4U * 4U);
    EXPECT_EQ(sizeof(FilterState::hfLength), 4U * 2U);
    EXPECT_EQ(sizeof(FilterState::hfMargins), 4U * 2U);
    EXPECT_EQ(sizeof(FilterState), 380U);
}

TEST(GetData, BeginsWithTheBodysOffsetAndHoldsTheTabStops)
{
    // Bit-form ruler: 0x05 in its third byte marks columns 16 and 18.
    RecordingHost host(choice_document('3', bytes("0E"), {{366 + 2, "\x05"}}));
    ASSERT_EQ(host.open(1058), 0);
    SavedState saved;
    VwGetData(&saved, host.instance);
    EXPECT_EQ(saved.seekPos, 512U);
    EXPECT_EQ(saved.tabCount, 2);
    EXPECT_EQ(saved.tabPos[0], 16);
    EXPECT_EQ(saved.tabPos[1], 18);
    EXPECT_EQ(saved.tabPos[2], 0xFFFF);
}

TEST(GetData, WritesItsBytesAndNoOthers)
{
    RecordingHost host(write_document(2, "body"));
    ASSERT_EQ(host.open(), 0);
    std::string buffer(VW_SAVED_STATE_SIZE + 3, '\x5A');
    VwGetData(buffer.data() + 1, host.instance);
    EXPECT_EQ(buffer.front(), '\x5A');
    EXPECT_EQ(buffer.substr(VW_SAVED_STATE_SIZE + 1), "\x5A\x5A");
    EXPECT_EQ(std::memcmp(buffer.data() + 1, &host.instance->state, VW_SAVED_STATE_SIZE), 0);
}

TEST(SetData, TouchesNothingBeyondTheSavedState)
{
    RecordingHost host(write_document(2, "body"));
    ASSERT_EQ(host.open(), 0);
    const VwInstance before = *host.instance;
    std::string foreign(VW_SAVED_STATE_SIZE + 1, '\xA7');
    VwSetData(foreign.data() + 1, host.instance);
    EXPECT_EQ(std::memcmp(&host.instance->state, foreign.data() + 1, VW_SAVED_STATE_SIZE), 0);
    EXPECT_EQ(host.instance->state.formatType, before.state.formatType);
    EXPECT_TRUE(host.instance->state.stream == before.state.stream);
    EXPECT_EQ(std::memcmp(host.instance->routines, before.routines, sizeof before.routines), 0);
    EXPECT_EQ(host.instance->user1, before.user1);
    EXPECT_EQ(host.instance->user2, before.user2);
    const auto *after = reinterpret_cast<const char *>(&host.instance->state);
    EXPECT_EQ(std::memcmp(after + VW_SAVED_STATE_SIZE,
                          reinterpret_cast<const char *>(&before.state) + VW_SAVED_STATE_SIZE,
                          sizeof before.state - VW_SAVED_STATE_SIZE),
              0);
}

TEST(SetData, GivesBackWhatGetDataGave)
{
    RecordingHost host(write_document(2, "body"));
    ASSERT_EQ(host.open(), 0);
    const Place place = host.place();
    std::memset(&host.instance->state.saved, 0x33, sizeof(SavedState));
    VwSetData(place.state.data(), host.instance);
    EXPECT_EQ(std::memcmp(&host.instance->state, place.state.data(), place.state.size()), 0);
}

TEST(UnregisteredBreakRoutine, EndsEachReadAtTheFirstParagraphEnd)
{
    RecordingHost host(write_document(2, three_paragraphs));
    ASSERT_EQ(host.open(), 0);
    host.unregister(VW_SO_BREAK);
    EXPECT_TRUE(matches(after_announcements(host.read()), "'One'"));
    EXPECT_TRUE(matches(after_announcements(host.read()), ""));
    EXPECT_TRUE(matches(after_announcements(host.read()), "'Two'"));
    EXPECT_TRUE(matches(after_announcements(host.read()), ""));
    EXPECT_TRUE(matches(after_announcements(host.read()), "'Three'"));
}

TEST(Resuming, ContinuesFromASavedPositionInTheSameInstance)
{
    RecordingHost host(write_document(2, three_paragraphs));
    ASSERT_EQ(host.open(), 0);
    host.stop_at_all();
    host.read();
    const Place place = host.place();
    const Calls rest = host.read_all();
    host.go_to(place);
    EXPECT_EQ(text_of(host.read_all()), text_of(rest));
}

TEST(Resuming, ContinuesFromASavedPositionInASecondInstance)
{
    const std::string document = write_document(2, three_paragraphs);
    RecordingHost host(document);
    ASSERT_EQ(host.open(), 0);
    host.stop_at_all();
    host.read();
    const Place place = host.place();
    RecordingHost second(document);
    ASSERT_EQ(second.open(), 0);
    second.stop_at_all();
    second.go_to(place);
    EXPECT_EQ(text_of(second.read_all()), text_of(host.read_all()));
}

TEST(Instances, AreReadSideBySide)
{
    RecordingHost one(write_document(2, three_paragraphs));
    RecordingHost other(choice_document('2', bytes("'A' 0C 'B' 0C 0E")));
    ASSERT_EQ(one.open(), 0);
    ASSERT_EQ(other.open(), 0);
    one.stop_at_all();
    other.stop_at_all();
    EXPECT_TRUE(matches(after_announcements(one.read()), "'One' | 13 1 0"));
    EXPECT_TRUE(matches(after_announcements(other.read()), "'A' | 46 1 240 0 0 | 13 1 0"));
    EXPECT_TRUE(matches(after_announcements(one.read()), "13 1 0"));
    EXPECT_TRUE(matches(after_announcements(other.read()), "'B' | 46 1 240 0 0 | 13 1 0"));
}

// One document must not affect the next one that the instance opens, even if its stream has the
// same address.
TEST(Instances, AreOpenedAgainWithoutATrace)
{
    const std::string hostile =
        write_document(3, bytes("0D 'a'x62 0D 80 0D 80 0D 80 0D 'bbbb' 0E"));
    const std::string plain = write_document(3, bytes("0D 'a'x62 0D 'b' 0D 'a'x62 0D 'b' 0D 0E"));
    RecordingHost fresh(plain);
    ASSERT_EQ(fresh.open(), 0);
    RecordingHost used(hostile);
    ASSERT_EQ(used.open(), 0);
    used.read();
    used.file.bytes = plain;
    VwCharSeek(used.stream, 1 << 20, 0); // so that nothing stays buffered
    ASSERT_EQ(used.open(), 0);
    EXPECT_EQ(text_of(used.read()), text_of(fresh.read()));
}

} // namespace

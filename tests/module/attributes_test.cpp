// The attribute set: how it is built, announced, and turned off.
#include "tests/module/bench.h"

#include "vs_pfs/formatting.h"

#include <gtest/gtest.h>

namespace {

using namespace tests;
using namespace vs_pfs;

int set_from(uint8_t first, uint8_t second, uint8_t form, uint8_t before = 0)
{
    uint8_t target = before;
    EXPECT_EQ(SetAttr(first, second, form, &target, nullptr), 0);
    return target;
}

TEST(SetAttr, PlainFormTakesFiveBitsOfTheFirstByte)
{
    for (int first = 0; first < 256; ++first) {
        EXPECT_EQ(set_from(static_cast<uint8_t>(first), 0xFF, attr_form_plain), first & 0x1F);
    }
}

TEST(SetAttr, PairFormTakesThreeBitsOfTheFirstByte)
{
    for (int first = 0; first < 256; ++first) {
        EXPECT_EQ(set_from(static_cast<uint8_t>(first), 0, attr_form_pair), first & 0x07);
    }
}

TEST(SetAttr, PairFormCrossesTwoBitsOfTheSecondByte)
{
    for (int second = 0; second < 256; ++second) {
        const int expected = ((second & 0x02) != 0 ? 0x10 : 0) | ((second & 0x04) != 0 ? 0x08 : 0);
        EXPECT_EQ(set_from(0, static_cast<uint8_t>(second), attr_form_pair), expected);
    }
}

TEST(SetAttr, OneFirstByteIsReadDifferentlyInTheTwoForms)
{
    EXPECT_EQ(set_from(0x18, 0, attr_form_plain), 0x18);
    EXPECT_EQ(set_from(0x18, 0, attr_form_pair), 0);
}

TEST(SetAttr, ClearsNothing)
{
    EXPECT_EQ(set_from(0, 0, attr_form_plain, 0xFF), 0xFF);
    EXPECT_EQ(set_from(0x01, 0x02, attr_form_pair, 0xE4), 0xF5);
}

// What check_attributes reports of a change from one set to another.
Calls change(uint8_t from, uint8_t to)
{
    Bench bench("");
    bench.saved().attrState = from;
    EXPECT_EQ(check_attributes(to, bench.instance), 0);
    EXPECT_EQ(bench.saved().attrState & 0x1F, to & 0x1F);
    return bench.take();
}

TEST(CheckAttributes, ReportsNothingWhereNothingChanges)
{
    for (int set = 0; set < 0x20; ++set) {
        EXPECT_TRUE(matches(change(static_cast<uint8_t>(set), static_cast<uint8_t>(set)), ""));
    }
}

TEST(CheckAttributes, EachBitHasItsCode)
{
    const std::array<std::pair<uint8_t, const char *>, 5> codes{
        {{0x01, "4 4"}, {0x02, "4 2"}, {0x04, "4 3"}, {0x08, "4 11"}, {0x10, "4 10"}}};
    for (const auto &[bit, code] : codes) {
        EXPECT_TRUE(matches(change(0, bit), std::string(code) + " 1"));
        EXPECT_TRUE(matches(change(bit, 0), std::string(code) + " 0"));
    }
}

TEST(CheckAttributes, ReportsInItsFixedOrder)
{
    EXPECT_TRUE(matches(change(0, 0x1F), "4 4 1 | 4 3 1 | 4 2 1 | 4 10 1 | 4 11 1"));
    EXPECT_TRUE(matches(change(0x1F, 0), "4 4 0 | 4 3 0 | 4 2 0 | 4 10 0 | 4 11 0"));
}

TEST(CheckAttributes, AnEndMayComeBeforeABeginning)
{
    EXPECT_TRUE(matches(change(0x01, 0x04), "4 4 0 | 4 3 1"));
    EXPECT_TRUE(matches(change(0x0A, 0x15), "4 4 1 | 4 3 1 | 4 2 0 | 4 10 1 | 4 11 0"));
}

TEST(CheckAttributes, CodeTenComesBeforeCodeEleven)
{
    EXPECT_TRUE(matches(change(0, static_cast<uint8_t>(set_from(0, 0x06, attr_form_pair))),
                        "4 10 1 | 4 11 1"));
}

TEST(CheckAttributes, TheOtherBitsAreNeverReported)
{
    EXPECT_TRUE(matches(change(0, 0xE0), ""));
    EXPECT_TRUE(matches(change(0xE0, 0), ""));
}

const VwInstance *watched_instance = nullptr;
std::vector<int> states_seen;

extern "C" int32_t note_attribute_state(int32_t, int32_t, uint32_t, uint32_t)
{
    states_seen.push_back(watched_instance->state.saved.attrState);
    return 0;
}

TEST(CheckAttributes, ChangesTheStateBeforeEachCall)
{
    Bench bench("");
    VwSetSoRtn(VW_SO_ATTRIBUTE, reinterpret_cast<VwRoutine>(note_attribute_state), bench.instance);
    bench.saved().attrState = 0x0B;
    watched_instance = bench.instance;
    states_seen.clear();
    check_attributes(0x14, bench.instance);
    EXPECT_EQ(states_seen, (std::vector<int>{0x0A, 0x0E, 0x0C, 0x1C, 0x14}));
}

TEST(PutAttributes, ReportsAllFiveEvenIfNoneIsOn)
{
    Bench bench("");
    EXPECT_EQ(PutAttributes(bench.instance), 0);
    EXPECT_TRUE(matches(bench.take(), "4 2 0 | 4 4 0 | 4 3 0 | 4 11 0 | 4 10 0"));
}

TEST(PutAttributes, ReportsEachBitByItsCode)
{
    const std::array<std::pair<uint8_t, const char *>, 6> reported{{
        {0x02, "4 2 1 | 4 4 0 | 4 3 0 | 4 11 0 | 4 10 0"},
        {0x01, "4 2 0 | 4 4 1 | 4 3 0 | 4 11 0 | 4 10 0"},
        {0x04, "4 2 0 | 4 4 0 | 4 3 1 | 4 11 0 | 4 10 0"},
        {0x08, "4 2 0 | 4 4 0 | 4 3 0 | 4 11 1 | 4 10 0"},
        {0x10, "4 2 0 | 4 4 0 | 4 3 0 | 4 11 0 | 4 10 1"},
        {0xFF, "4 2 1 | 4 4 1 | 4 3 1 | 4 11 1 | 4 10 1"},
    }};
    for (const auto &[state, calls] : reported) {
        Bench bench("");
        bench.saved().attrState = state;
        PutAttributes(bench.instance);
        EXPECT_TRUE(matches(bench.take(), calls));
        EXPECT_EQ(bench.saved().attrState, state);
    }
}

Calls turned_off(uint8_t state)
{
    Bench bench("");
    bench.saved().hfAttrState = state;
    bench.saved().attrState = 0x07;
    EXPECT_EQ(TurnOffAttr(bench.instance), 0);
    EXPECT_EQ(bench.saved().hfAttrState, state);
    EXPECT_EQ(bench.saved().attrState, 0x07);
    return bench.take();
}

TEST(TurnOffAttr, EndsThreeAttributesAtMost)
{
    EXPECT_TRUE(matches(turned_off(0xFF), "4 2 0 | 4 4 0 | 4 3 0"));
    EXPECT_TRUE(matches(turned_off(0xF8), ""));
    EXPECT_TRUE(matches(turned_off(0x00), ""));
}

TEST(TurnOffAttr, EndsThoseThatAreOn)
{
    EXPECT_TRUE(matches(turned_off(0x01), "4 4 0"));
    EXPECT_TRUE(matches(turned_off(0x02), "4 2 0"));
    EXPECT_TRUE(matches(turned_off(0x04), "4 3 0"));
    EXPECT_TRUE(matches(turned_off(0x05), "4 4 0 | 4 3 0"));
}

TEST(Attributes, AnAttributeByteOfZeroTurnsAllOff)
{
    RecordingHost host(write_document(2, bytes("C1 15 C2 00 0E")));
    ASSERT_EQ(host.open(), 0);
    EXPECT_TRUE(matches(after_announcements(host.read()),
                        "4 4 1 | 4 3 1 | 4 10 1 | 'A' | 4 4 0 | 4 3 0 | 4 10 0 | 'B' | 13 2 0"));
}

TEST(Attributes, ARunCostsACallAtEachEnd)
{
    RecordingHost host(write_document(2, bytes("C1 02 C2 02 C3 02 'd' 0E")));
    ASSERT_EQ(host.open(), 0);
    EXPECT_TRUE(matches(after_announcements(host.read()), "4 2 1 | 'ABC' | 4 2 0 | 'd' | 13 2 0"));
}

TEST(Attributes, TheNextReadReportsThemAgain)
{
    RecordingHost host(write_document(2, bytes("0D C1 12 0D 0D 'b' 0E")));
    ASSERT_EQ(host.open(), 0);
    host.stop_at(1);
    EXPECT_TRUE(matches(after_announcements(host.read()), "4 2 1 | 4 10 1 | 'A' | 13 1 0"));
    EXPECT_TRUE(matches(host.read(), no_tab_stops +
                                         "4 2 1 | 4 4 0 | 4 3 0 | 4 11 0 | 4 10 1 | 11 0 9216 |" +
                                         line_defaults + "13 1 0 | 4 2 0 | 4 10 0 | 'b' | 13 2 0"));
}

// A host must not restore a saved state from within a routine. One that does gets nonsense, but
// only once.
struct Undoing {
    VwInstance *instance;
    std::string codes;
};
Undoing *undoing;

int32_t undo_all(int32_t code, int32_t, uint32_t, uint32_t)
{
    undoing->codes += std::to_string(code) + " ";
    undoing->instance->state.saved.attrState = 0;
    return 0;
}

TEST(Attributes, ARoutineThatUndoesTheChangeGetsEachOnce)
{
    Bench bench("");
    Undoing undone = {bench.instance, ""};
    undoing = &undone;
    VwSetSoRtn(VW_SO_ATTRIBUTE, reinterpret_cast<VwRoutine>(&undo_all), bench.instance);
    EXPECT_EQ(check_attributes(attr_all, bench.instance), 0);
    EXPECT_EQ(undone.codes, "4 3 2 10 11 ");
}

} // namespace

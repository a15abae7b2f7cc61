// The table of entry points, the information queries, registration, and the entry points that do
// little or nothing.
#include "tests/module/bench.h"

#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <numeric>

namespace {

using namespace tests;
using namespace vs_pfs;

template <typename Function> VwRoutine routine(Function *function)
{
    return reinterpret_cast<VwRoutine>(function);
}

extern "C" void host_filler() {}
extern "C" int32_t one_routine(int32_t a, uint32_t, uint32_t)
{
    return a;
}
extern "C" int32_t another_routine(int32_t a, uint32_t, uint32_t)
{
    return a + 1;
}

using Table = std::array<VwRoutine, VW_ENTRY_SLOTS>;

Table table_for(uint32_t interface_version)
{
    Table table;
    table.fill(host_filler);
    VwGetRtns(table.data(), interface_version);
    return table;
}

TEST(EntryPointTable, HoldsTheEntryPointsInTheirOrder)
{
    const Table table = table_for(19);
    EXPECT_EQ(table[0], routine(VwStreamOpen));
    EXPECT_EQ(table[1], routine(VwStreamSection));
    EXPECT_EQ(table[2], routine(VwStreamRead));
    EXPECT_EQ(table[3], routine(VwStreamTell));
    EXPECT_EQ(table[4], routine(VwStreamSeek));
    EXPECT_EQ(table[5], routine(VwGetInfo));
    EXPECT_EQ(table[6], routine(VwGetData));
    EXPECT_EQ(table[7], routine(VwSetData));
    EXPECT_EQ(table[8], routine(VwLocalUp));
    EXPECT_EQ(table[9], routine(VwLocalDown));
    EXPECT_EQ(table[10], routine(VwAllocProc));
    EXPECT_EQ(table[11], routine(VwFreeProc));
    EXPECT_EQ(table[12], routine(VwSetUser));
    EXPECT_EQ(table[13], routine(VwSetSoRtn));
    EXPECT_EQ(table[14], routine(VwStreamClose));
    EXPECT_EQ(table[17], routine(VwStreamReadRecord));
    EXPECT_EQ(table[18], routine(VwDoSpecial));
}

TEST(EntryPointTable, LeavesTheLastSlotAloneForAnOlderHost)
{
    EXPECT_EQ(table_for(18)[18], routine(host_filler));
    EXPECT_EQ(table_for(0)[18], routine(host_filler));
}

TEST(EntryPointTable, FillsTheLastSlotForTheNewestVersionNumber)
{
    EXPECT_EQ(table_for(65535)[18], routine(VwDoSpecial));
}

TEST(EntryPointTable, ReadsTheVersionAsAnUnsignedSixteenBitValue)
{
    EXPECT_EQ(table_for(0x10012)[18], routine(host_filler));
    EXPECT_EQ(table_for(0x10013)[18], routine(VwDoSpecial));
    EXPECT_EQ(table_for(0x8000)[18], routine(VwDoSpecial));
}

TEST(EntryPointTable, SlotsFifteenAndSixteenAreNullForEveryVersion)
{
    for (const uint32_t version : {18U, 19U, 65535U}) {
        EXPECT_EQ(table_for(version)[15], nullptr);
        EXPECT_EQ(table_for(version)[16], nullptr);
    }
}

// The bytes that a query writes: the buffer has an odd address and is filled first, so that
// alignment and length are visible.
struct Answer {
    int32_t result;
    std::string bytes;
    bool wrote_beyond;
};

Answer ask(uint32_t query, std::size_t size)
{
    std::array<char, 64> buffer;
    buffer.fill('\x5A');
    Answer answer{VwGetInfo(buffer.data() + 1, query, nullptr), {}, false};
    answer.bytes.assign(buffer.data() + 1, size);
    for (std::size_t i = size + 1; i < buffer.size(); ++i) {
        answer.wrote_beyond = answer.wrote_beyond || buffer[i] != '\x5A';
    }
    return answer;
}

std::string native_word(uint16_t value)
{
    std::string bytes(sizeof value, '\0');
    std::memcpy(bytes.data(), &value, sizeof value);
    return bytes;
}

void expect_word(uint32_t query, uint16_t value)
{
    const Answer answer = ask(query, 2);
    EXPECT_EQ(answer.result, 1);
    EXPECT_EQ(answer.bytes, native_word(value)) << "query " << query;
    EXPECT_FALSE(answer.wrote_beyond) << "query " << query;
}

TEST(GetInfo, AnswersTheSizes)
{
    expect_word(VW_INFO_SAVED_STATE_SIZE, 328);
    expect_word(VW_INFO_FILTER_STATE_SIZE, 380);
    expect_word(VW_INFO_INIT_SIZE, 208);
    expect_word(VW_INFO_SIZE_4, 400);
    expect_word(VW_INFO_SIZE_5, 440);
    expect_word(VW_INFO_FILE_KINDS, 7);
    expect_word(VW_INFO_ZERO_10, 0);
    expect_word(VW_INFO_ZERO_11, 0);
}

TEST(GetInfo, ListsTheFileIdsInTableOrder)
{
    std::string ids;
    for (const uint16_t id :
         std::initializer_list<uint16_t>{1012, 1013, 1014, 1015, 1016, 1017, 1058}) {
        ids += native_word(id);
    }
    const Answer answer = ask(VW_INFO_FILE_IDS, 14);
    EXPECT_EQ(answer.result, 1);
    EXPECT_EQ(answer.bytes, ids);
    EXPECT_FALSE(answer.wrote_beyond);
}

TEST(GetInfo, AnswersTheBuildTexts)
{
    using namespace std::string_literals;
    const Answer date = ask(VW_INFO_BUILD_DATE, 12);
    EXPECT_EQ(date.bytes, "Oct 12 1995\0"s);
    EXPECT_FALSE(date.wrote_beyond);
    const Answer time = ask(VW_INFO_BUILD_TIME, 9);
    EXPECT_EQ(time.bytes, "16:59:28\0"s);
    EXPECT_FALSE(time.wrote_beyond);
}

TEST(GetInfo, AnswersTheMarkerAsOneWord)
{
    const Answer answer = ask(VW_INFO_MARKER, 4);
    uint32_t marker = 0;
    std::memcpy(&marker, answer.bytes.data(), sizeof marker);
    EXPECT_EQ(answer.result, 1);
    EXPECT_EQ(marker, 0x12345678U);
    EXPECT_FALSE(answer.wrote_beyond);
}

TEST(GetInfo, WritesNothingForAnUnknownQuery)
{
    for (const uint32_t query : {0U, 13U, 255U, 0x8001U, 0xFFFFU}) {
        const Answer answer = ask(query, 0);
        EXPECT_EQ(answer.result, 0) << query;
        EXPECT_FALSE(answer.wrote_beyond) << query;
    }
}

TEST(GetInfo, ReadsTheQueryAsASixteenBitValue)
{
    EXPECT_EQ(ask(0x10001, 2).bytes, native_word(328));
    EXPECT_EQ(ask(0x10000, 0).result, 0);
}

// What a slot holds, by slot number from 1.
VwRoutine slot(const VwInstance *instance, std::size_t number)
{
    return instance->routines[number - 1];
}

class SetSoRtn : public ::testing::Test {
protected:
    SetSoRtn()
    {
        for (VwRoutine &held : bench.instance->routines) {
            held = routine(SODummy);
        }
    }
    void set(int32_t id)
    {
        VwSetSoRtn(id, routine(one_routine), bench.instance);
    }
    // The slot, from 1, that holds one_routine; 0 if none does.
    std::size_t found() const
    {
        for (std::size_t number = 1; number <= VW_OUTPUT_ROUTINES; ++number) {
            if (slot(bench.instance, number) == routine(one_routine)) {
                return number;
            }
        }
        return 0;
    }

    Bench bench{""};
};

TEST_F(SetSoRtn, IdsFourteenToSixteenAreRotated)
{
    set(14);
    EXPECT_EQ(found(), 16U);
    VwSetSoRtn(14, nullptr, bench.instance);
    set(15);
    EXPECT_EQ(found(), 14U);
    VwSetSoRtn(15, nullptr, bench.instance);
    set(16);
    EXPECT_EQ(found(), 15U);
}

TEST_F(SetSoRtn, EveryOtherIdHasTheSlotOfItsNumber)
{
    for (int32_t id = 1; id <= 65; ++id) {
        if (id < 14 || id > 16) {
            set(id);
            EXPECT_EQ(found(), static_cast<std::size_t>(id));
            VwSetSoRtn(id, nullptr, bench.instance);
        }
    }
}

TEST_F(SetSoRtn, IdsOutsideTheTableAreIgnored)
{
    const VwInstance before = *bench.instance;
    for (const int32_t id : {0, 66, -1, 100, 32767, -32768}) {
        set(id);
    }
    EXPECT_EQ(std::memcmp(&before, bench.instance, sizeof before), 0);
}

TEST_F(SetSoRtn, IdSixtyFiveFillsTheLastSlot)
{
    set(65);
    EXPECT_EQ(slot(bench.instance, 65), routine(one_routine));
}

TEST_F(SetSoRtn, TheIdIsASignedSixteenBitValue)
{
    set(0x10005);
    EXPECT_EQ(found(), 5U);
    VwSetSoRtn(5, nullptr, bench.instance);
    set(0x8001);
    EXPECT_EQ(found(), 0U);
}

TEST_F(SetSoRtn, ANullRoutineBecomesTheDummy)
{
    set(1);
    VwSetSoRtn(1, nullptr, bench.instance);
    EXPECT_EQ(slot(bench.instance, 1), routine(SODummy));
}

TEST_F(SetSoRtn, TheLaterRoutineOfAnIdStays)
{
    set(1);
    VwSetSoRtn(1, routine(another_routine), bench.instance);
    EXPECT_EQ(slot(bench.instance, 1), routine(another_routine));
}

TEST(LocalUp, SetsEverySlotToTheDummy)
{
    MemoryBlockFile file("x");
    VwInstance *instance = VwAllocProc();
    VwCharStream *stream = nullptr;
    std::memset(instance->routines, 0, sizeof instance->routines);
    VwLocalUp(&file, &stream, instance);
    for (std::size_t number = 1; number <= VW_OUTPUT_ROUTINES; ++number) {
        EXPECT_EQ(slot(instance, number), routine(SODummy)) << number;
    }
    VwBlockFile *wrapped = nullptr;
    VwLocalDown(stream, &wrapped, instance);
    VwFreeProc(instance);
}

TEST(LocalUp, UndoesWhatWasRegisteredBeforeIt)
{
    MemoryBlockFile file("x");
    VwInstance *instance = VwAllocProc();
    VwCharStream *stream = nullptr;
    VwSetSoRtn(1, routine(one_routine), instance);
    VwLocalUp(&file, &stream, instance);
    EXPECT_EQ(slot(instance, 1), routine(SODummy));
    VwBlockFile *wrapped = nullptr;
    VwLocalDown(stream, &wrapped, instance);
    VwFreeProc(instance);
}

TEST(LocalUp, WrapsTheBlockFileWithoutReadingIt)
{
    MemoryBlockFile file("x");
    VwInstance *instance = VwAllocProc();
    VwCharStream *stream = nullptr;
    VwLocalUp(&file, &stream, instance);
    ASSERT_NE(stream, nullptr);
    EXPECT_EQ(stream->blockFile, &file);
    EXPECT_EQ(file.take_log(), "");
    VwBlockFile *wrapped = nullptr;
    VwLocalDown(stream, &wrapped, instance);
    VwFreeProc(instance);
}

TEST(LocalDown, HandsTheBlockFileBackOpen)
{
    MemoryBlockFile file("x");
    VwInstance *instance = VwAllocProc();
    VwCharStream *stream = nullptr;
    VwLocalUp(&file, &stream, instance);
    VwBlockFile *wrapped = nullptr;
    VwLocalDown(stream, &wrapped, nullptr);
    EXPECT_EQ(wrapped, &file);
    EXPECT_EQ(file.closes, 0U);
    VwFreeProc(instance);
}

TEST(FreeProc, IgnoresNull)
{
    VwFreeProc(nullptr);
    VwInstance *instance = VwAllocProc();
    EXPECT_NE(instance, nullptr);
    VwFreeProc(instance);
}

TEST(SetUser, StoresBothWords)
{
    Bench bench("");
    VwSetUser(0x89ABCDEF, 0xFFFFFFFF, bench.instance);
    EXPECT_EQ(bench.instance->user1, 0x89ABCDEFU);
    EXPECT_EQ(bench.instance->user2, 0xFFFFFFFFU);
}

TEST(Dummy, ReturnsItsFirstArgument)
{
    for (const int32_t value : {0, 1, -1, INT32_MAX, INT32_MIN}) {
        EXPECT_EQ(SODummy(value), value);
    }
}

TEST(Alloc, GivesBytesThatAreAllZero)
{
    auto *block = static_cast<unsigned char *>(SUAlloc(4096));
    ASSERT_NE(block, nullptr);
    EXPECT_EQ(std::accumulate(block, block + 4096, 0U), 0U);
    std::free(block);
}

TEST(IdleEntryPoints, ChangeNothing)
{
    Bench bench(write_document(2, "body"));
    ASSERT_TRUE(bench.opens());
    const VwInstance instance_before = *bench.instance;
    const VwCharStream stream_before = *bench.stream;
    std::array<char, 16> buffer;
    buffer.fill('\x5A');
    bench.file.take_log();
    VwStreamClose(bench.stream, bench.instance);
    VwStreamReadRecord(bench.stream, buffer.data(), bench.instance);
    VwDoSpecial(buffer.data(), buffer.data(), buffer.data(), buffer.data(), buffer.data(),
                bench.instance);
    VwGetSectionData(buffer.data(), bench.instance);
    VwSetSectionData(buffer.data(), bench.instance);
    EXPECT_EQ(std::memcmp(&instance_before, bench.instance, sizeof instance_before), 0);
    EXPECT_EQ(std::memcmp(&stream_before, bench.stream, sizeof stream_before), 0);
    EXPECT_EQ(std::string(buffer.data(), buffer.size()), std::string(16, '\x5A'));
    EXPECT_EQ(bench.file.take_log(), "");
    EXPECT_TRUE(bench.take().empty());
}

} // namespace

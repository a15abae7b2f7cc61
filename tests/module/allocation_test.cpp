// Allocation: none while reading, and what happens when memory runs out. The linker redirects all
// allocating calls in this program here.
#include "tests/module/bench.h"
#include "tests/module/rich_documents.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <new>

namespace {

// Only allocations between two marks are counted or refused. Volatile, since a compiler that sees
// through the module knows that the library's malloc does not read these.
volatile bool counting = false;
volatile bool refusing = false;
volatile unsigned allocations = 0;
volatile unsigned mallocs = 0; // of these, by malloc
volatile bool soiling = false; // malloc returns memory that has been used

bool refuse_one()
{
    allocations = allocations + (counting ? 1 : 0);
    return refusing;
}

} // namespace

// The operators new as the linker knows them: SIZE_LETTER stands for size_t in their names.
void *real_new(std::size_t size) __asm__("__real__Znw" SIZE_LETTER);
void *real_new_array(std::size_t size) __asm__("__real__Zna" SIZE_LETTER);
void *real_new(std::size_t size,
               const std::nothrow_t &tag) __asm__("__real__Znw" SIZE_LETTER "RKSt9nothrow_t");
void *real_new_array(std::size_t size,
                     const std::nothrow_t &tag) __asm__("__real__Zna" SIZE_LETTER "RKSt9nothrow_t");

void *wrap_new(std::size_t size) __asm__("__wrap__Znw" SIZE_LETTER);
void *wrap_new_array(std::size_t size) __asm__("__wrap__Zna" SIZE_LETTER);
void *wrap_new(std::size_t size,
               const std::nothrow_t &tag) __asm__("__wrap__Znw" SIZE_LETTER "RKSt9nothrow_t");
void *wrap_new_array(std::size_t size,
                     const std::nothrow_t &tag) __asm__("__wrap__Zna" SIZE_LETTER "RKSt9nothrow_t");

void *wrap_new(std::size_t size)
{
    refuse_one();
    return real_new(size);
}
void *wrap_new_array(std::size_t size)
{
    refuse_one();
    return real_new_array(size);
}
void *wrap_new(std::size_t size, const std::nothrow_t &tag)
{
    return refuse_one() ? nullptr : real_new(size, tag);
}
void *wrap_new_array(std::size_t size, const std::nothrow_t &tag)
{
    return refuse_one() ? nullptr : real_new_array(size, tag);
}

extern "C" {

void *__real_malloc(std::size_t size);
void *__real_calloc(std::size_t count, std::size_t size);
void *__real_realloc(void *block, std::size_t size);

void *__wrap_malloc(std::size_t size);
void *__wrap_calloc(std::size_t count, std::size_t size);
void *__wrap_realloc(void *block, std::size_t size);

void *__wrap_malloc(std::size_t size)
{
    mallocs = mallocs + (counting ? 1 : 0);
    void *block = refuse_one() ? nullptr : __real_malloc(size);
    if (soiling && block != nullptr) {
        std::memset(block, 0xA5, size);
    }
    return block;
}
void *__wrap_calloc(std::size_t count, std::size_t size)
{
    return refuse_one() ? nullptr : __real_calloc(count, size);
}
void *__wrap_realloc(void *block, std::size_t size)
{
    return refuse_one() ? nullptr : __real_realloc(block, size);
}

} // extern "C"

namespace {

using namespace tests;

// Refuses memory until the end of the scope, however the test leaves it.
struct NoMemory {
    NoMemory()
    {
        refusing = true;
    }
    ~NoMemory()
    {
        refusing = false;
    }
    NoMemory(const NoMemory &) = delete;
    NoMemory &operator=(const NoMemory &) = delete;
};

bool ended = false;

extern "C" int32_t go_on_at_breaks(int32_t code, int32_t, uint32_t, uint32_t)
{
    ended = ended || code == VW_BREAK_END_OF_DOCUMENT;
    return 0;
}

TEST(Allocation, IsSeenByThisTest)
{
    counting = true;
    allocations = 0;
    VwInstance *volatile instance = VwAllocProc(); // or a compiler does without it
    VwFreeProc(instance);
    counting = false;
    EXPECT_EQ(allocations, 1U);
}

TEST(Allocation, TakesTheStreamFromWhereTheInstanceComes)
{
    MemoryBlockFile file("abc");
    VwCharStream *stream = nullptr;
    allocations = 0;
    mallocs = 0;
    counting = true;
    VwInstance *instance = VwAllocProc();
    VwLocalUp(&file, &stream, instance);
    counting = false;
    EXPECT_EQ(allocations, 2U);
    EXPECT_EQ(mallocs, 2U);
    VwBlockFile *wrapped = nullptr;
    VwLocalDown(stream, &wrapped, instance);
    VwFreeProc(instance);
}

TEST(Allocation, LeavesNothingOfUsedMemoryInAStream)
{
    MemoryBlockFile file("abc");
    soiling = true;
    VwCharStream *stream = VwBlockToChar(&file);
    soiling = false;
    EXPECT_EQ(VwCharTell(stream), 0U);
    EXPECT_EQ(stream->bufferLength, 0U);
    EXPECT_EQ(stream->cursor, stream->buffer);
    EXPECT_TRUE(std::all_of(std::begin(stream->buffer), std::end(stream->buffer),
                            [](uint8_t byte) { return byte == 0; }));
    VwCharToBlock(stream);
}

TEST(Allocation, DoesNotHappenWhileADocumentIsOpenedAndRead)
{
    for (const NamedDocument &document : rich_documents()) {
        MemoryBlockFile file(document.bytes);
        file.keep_log = false;
        VwInstance *instance = VwAllocProc();
        VwCharStream *stream = nullptr;
        VwLocalUp(&file, &stream, instance);
        VwSetSoRtn(VW_SO_BREAK, reinterpret_cast<VwRoutine>(go_on_at_breaks), instance);
        ended = false;
        allocations = 0;
        counting = true;
        const int32_t opened = VwStreamOpen(stream, 1013, nullptr, nullptr, instance);
        VwStreamSection(stream, instance);
        VwStreamRead(stream, instance);
        counting = false;
        EXPECT_EQ(opened, 0) << document.name;
        EXPECT_TRUE(ended) << document.name;
        EXPECT_EQ(allocations, 0U) << document.name;
        VwBlockFile *wrapped = nullptr;
        VwLocalDown(stream, &wrapped, instance);
        VwFreeProc(instance);
    }
}

TEST(NoMemory, GivesNoInstance)
{
    const NoMemory no_memory;
    EXPECT_EQ(VwAllocProc(), nullptr);
}

TEST(NoMemory, GivesNoBlock)
{
    const NoMemory no_memory;
    EXPECT_EQ(SUAlloc(16), nullptr);
}

TEST(NoMemory, GivesNoStreamAndLeavesTheFileOpen)
{
    MemoryBlockFile file("abc");
    const NoMemory no_memory;
    EXPECT_EQ(VwBlockToChar(&file), nullptr);
    EXPECT_EQ(file.closes, 0U);
}

TEST(NoMemory, GivesNoStreamButDummiesInEverySlot)
{
    MemoryBlockFile file("abc");
    VwInstance *instance = VwAllocProc();
    VwCharStream *stream = reinterpret_cast<VwCharStream *>(&file);
    for (VwRoutine &slot : instance->routines) {
        slot = nullptr;
    }
    {
        const NoMemory no_memory;
        VwLocalUp(&file, &stream, instance);
    }
    EXPECT_EQ(stream, nullptr);
    for (const VwRoutine slot : instance->routines) {
        EXPECT_EQ(slot, reinterpret_cast<VwRoutine>(SODummy));
    }
    VwFreeProc(instance);
}

TEST(NoMemory, AFileThatOpenedButWasNotWrappedStaysOpen)
{
    MemoryBlockFile file("abc");
    MemoryBlockFile other("other");
    VwCharStream *stream = VwBlockToChar(&file);
    open_record() = {};
    open_record().answer = [&](const OpenRequest &) {
        refusing = true; // from here on, so that the test's own records are kept
        return &other;
    };
    VwCharStream *opened = VwCharBlockOpen(stream, "LETTER", 0);
    refusing = false;
    EXPECT_EQ(reinterpret_cast<intptr_t>(opened), -1);
    EXPECT_EQ(other.closes, 0U);
    open_record() = {};
    VwCharToBlock(stream);
}

} // namespace

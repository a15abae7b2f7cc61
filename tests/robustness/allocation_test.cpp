// Memory that is not to be had, in a program of its own: it is linked so that malloc, calloc
// and operator new come by here first.
#include "memory_block_file.h"
#include "raw_documents.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace {

bool memory_is_short = false;
bool counting = false;
unsigned allocations = 0;

bool refuse()
{
    allocations += counting ? 1 : 0;
    return memory_is_short;
}

} // namespace

extern "C" {

void *__real_malloc(std::size_t size);
void *__real_calloc(std::size_t count, std::size_t size);
void *__real__Znwm(std::size_t size);

void *__wrap_malloc(std::size_t size);
void *__wrap_calloc(std::size_t count, std::size_t size);
void *__wrap__Znwm(std::size_t size);

void *__wrap_malloc(std::size_t size)
{
    return refuse() ? nullptr : __real_malloc(size);
}

void *__wrap_calloc(std::size_t count, std::size_t size)
{
    return refuse() ? nullptr : __real_calloc(count, size);
}

// Counted only: there is no answer for "no" but to throw.
void *__wrap__Znwm(std::size_t size)
{
    allocations += counting ? 1 : 0;
    return __real__Znwm(size);
}

} // extern "C"

namespace tests {
namespace {

class Shortage {
public:
    Shortage()
    {
        memory_is_short = true;
    }
    ~Shortage()
    {
        memory_is_short = false;
    }
};

template <typename T> T *failed_pointer()
{
    return reinterpret_cast<T *>(static_cast<intptr_t>(-1));
}

TEST(Allocation, OfAnInstanceThatFailsGivesNull)
{
    const Shortage shortage;
    EXPECT_EQ(VwAllocProc(), nullptr);
    VwFreeProc(nullptr);
}

TEST(Allocation, OfAStreamThatFailsGivesNull)
{
    MemoryBlockFile file("text");
    const Shortage shortage;
    EXPECT_EQ(VwBlockToChar(&file), nullptr);
    EXPECT_EQ(file.closes, 0U);
}

TEST(Allocation, OfABlockThatFailsGivesNull)
{
    const Shortage shortage;
    EXPECT_EQ(SUAlloc(1), nullptr);
}

// The routines are set all the same, so that the instance can be used with another stream.
TEST(Allocation, ThatFailsInLocalUpStoresNull)
{
    MemoryBlockFile file(choice_document('1', "text\x0E"));
    VwInstance *instance = VwAllocProc();
    VwCharStream *stream = reinterpret_cast<VwCharStream *>(&file); // not null
    {
        const Shortage shortage;
        VwLocalUp(&file, &stream, instance);
    }
    EXPECT_EQ(stream, nullptr);
    stream = VwBlockToChar(&file);
    ASSERT_EQ(VwStreamOpen(stream, 1017, nullptr, nullptr, instance), 0);
    EXPECT_EQ(VwStreamRead(stream, instance), 0);
    EXPECT_EQ(VwCharTell(stream), choice_body_offset + 5);
    VwCharToBlock(stream);
    VwFreeProc(instance);
}

// The file was opened and belongs to nobody: it must not be closed behind the host's back.
TEST(Allocation, ThatFailsForAnOpenedFileLeavesItOpen)
{
    MemoryBlockFile file("text");
    MemoryBlockFile related("other");
    VwCharStream *stream = VwBlockToChar(&file);
    open_record().answer = [&](const OpenRequest &) {
        memory_is_short = true; // for what comes after the opening
        return &related;
    };
    VwCharStream *opened = VwCharBlockOpen(stream, "OTHER", 0);
    memory_is_short = false;
    EXPECT_EQ(opened, failed_pointer<VwCharStream>());
    EXPECT_EQ(related.closes, 0U);
    open_record() = {};
    VwCharToBlock(stream);
}

class Reading : public ::testing::TestWithParam<std::string> {};

// Whatever the document: one instance, one stream, nothing more.
TEST_P(Reading, AllocatesNothing)
{
    MemoryBlockFile file(GetParam());
    file.keep_log = false;
    VwInstance *instance = VwAllocProc();
    VwCharStream *stream = nullptr;
    VwLocalUp(&file, &stream, instance);
    memory_is_short = counting = true;
    allocations = 0;
    const int32_t opened = VwStreamOpen(stream, 1012, nullptr, nullptr, instance);
    while (VwCharTell(stream) <= file.bytes.size()) { // each read ends at a paragraph end
        VwStreamRead(stream, instance);
    }
    memory_is_short = counting = false;
    EXPECT_EQ(opened, 0);
    EXPECT_EQ(allocations, 0U);
    VwBlockFile *wrapped = nullptr;
    VwLocalDown(stream, &wrapped, instance);
    VwFreeProc(instance);
}

const std::string text = "one two\rthree\r*N*\r\x01\x02\x03*PRINTER 27*\r\xC1\x0F four\r";

INSTANTIATE_TEST_SUITE_P(Documents, Reading,
                         ::testing::Values(write_document(1, text), write_document(3, text),
                                           write_document(4, text), write_document(5, text),
                                           choice_document('1', text), choice_document('3', text)));

} // namespace
} // namespace tests

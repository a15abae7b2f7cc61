// What the public header has for hosts: the file id by a file's first bytes, the same as the module
// finds, and a pointer in two user words. examples/host_data.c uses both.
#include "tests/module/bench.h"
#include "tests/module/header_languages.h"
#include "tests/support/memory_block_file.h"

#include "vs_pfs/document_headers.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace {

using namespace tests;
using namespace vs_pfs;

int32_t found_id(const std::string &file, std::size_t size)
{
    return c99_file_id_of(file.data(), static_cast<uint32_t>(size));
}

// The id of the kind that VwStreamOpen finds.
int32_t opened_id(const std::string &file)
{
    Bench bench(file);
    if (PfsGetVersion(bench.instance) != 0) {
        return 0;
    }
    constexpr int32_t ids[] = {0, 1012, 1013, 1016, 1014, 1015};
    const int type = bench.state().formatType;
    if (type == format_first_choice) {
        return bench.state().fcVersion == choice_generation_3 ? 1058 : 1017;
    }
    return ids[type];
}

void expect_same_id(const std::string &file)
{
    EXPECT_EQ(found_id(file, file.size()), opened_id(file));
    EXPECT_EQ(found_id(file, std::min<std::size_t>(file.size(), VW_KIND_BYTES)), opened_id(file));
}

std::string signed_file(const std::string &signature, char variant)
{
    return blank_document(700, {{641, signature}, {649, {variant}}});
}

TEST(FileIdOf, IsTheIdOfTheKindThatIsOpened)
{
    const std::pair<std::string, int32_t> signatures[] = {
        {"WRD PC", 1012}, {"TYPE 2", 1012}, {"TYPE 3", 1014}, {"TYPE 4", 1015},
        {"IBM   ", 1016}, {"TYPE 1", 0},    {"TYPE 5", 0},    {"IBM  x", 0}};
    for (const auto &[signature, id] : signatures) {
        EXPECT_EQ(found_id(signed_file(signature, '1'), VW_KIND_BYTES), id);
        for (int variant = 0; variant < 256; ++variant) {
            expect_same_id(signed_file(signature, static_cast<char>(variant)));
        }
    }
    for (int generation = 0; generation < 256; ++generation) {
        expect_same_id(choice_document(static_cast<char>(generation), ""));
    }
    EXPECT_EQ(found_id(signed_file("TYPE 2", '2'), VW_KIND_BYTES), 1013);
    EXPECT_EQ(found_id(choice_document('3', ""), 19), 1058);
    EXPECT_EQ(found_id(choice_document('2', ""), 19), 1017);
}

TEST(FileIdOf, IsTheSameForFilesOfAnySize)
{
    std::string both = signed_file("TYPE 2", '1');
    const std::string choice = choice_document('3', "");
    both.replace(0, 30, choice, 0, 30);
    for (const std::string &whole :
         {signed_file("TYPE 2", '1'), signed_file("TYPE 3", ' '), choice, both, std::string()}) {
        for (std::size_t size = 0; size <= whole.size(); ++size) {
            expect_same_id(whole.substr(0, size));
        }
    }
}

TEST(FileIdOf, IsTheSameForChangedBytes)
{
    std::mt19937 random(1986);
    for (int trial = 0; trial < 20000; ++trial) {
        std::string file = trial % 2 == 0 ? signed_file("TYPE 3", '1') : choice_document('3', "x");
        file[(trial % 2 == 0 ? 641 : 9) + random() % 10] = static_cast<char>(random());
        expect_same_id(file);
    }
}

TEST(UserWords, HoldAPointer)
{
    int own = 0;
    for (const void *pointer : {static_cast<const void *>(&own), static_cast<const void *>(nullptr),
                                reinterpret_cast<const void *>(UINTPTR_MAX),
                                reinterpret_cast<const void *>(0x12345678)}) {
        uint32_t words[2] = {1, 2};
        VwPointerToWords(pointer, words);
        EXPECT_EQ(VwPointerOfWords(words[0], words[1]), pointer);
        EXPECT_EQ(c99_pointer_again(pointer), pointer);
    }
}

TEST(UserWords, ReachTheRoutineAsThePointer)
{
    MemoryBlockFile file(write_document(2, "\rx\r\x0E"));
    VwInstance *instance = VwAllocProc();
    VwCharStream *stream = nullptr;
    VwLocalUp(&file, &stream, instance);
    int characters = 0;
    uint32_t words[2];
    VwPointerToWords(&characters, words);
    VwSetUser(words[0], words[1], instance);
    const VwOutput1 count = [](int32_t, uint32_t user1, uint32_t user2) {
        return ++*static_cast<int *>(VwPointerOfWords(user1, user2));
    };
    VwSetSoRtn(VW_SO_CHARACTER, reinterpret_cast<VwRoutine>(count), instance);
    EXPECT_EQ(VwStreamOpen(stream, 1013, nullptr, nullptr, instance), 0);
    for (int reads = 0; reads < 4; ++reads) { // each ends at a paragraph, for want of a routine 13
        VwStreamRead(stream, instance);
    }
    EXPECT_EQ(characters, 1);
    VwCharToBlock(stream);
    VwFreeProc(instance);
}

} // namespace

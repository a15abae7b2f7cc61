// The helpers over the host's file operations, and opening a file beside an open one.
#include "tests/support/memory_block_file.h"
#include "vs_pfs.h"

#include <gtest/gtest.h>

namespace {

using namespace tests;

template <typename T> bool is_minus_one(T *pointer)
{
    return reinterpret_cast<intptr_t>(pointer) == -1;
}

class BlockFile : public ::testing::Test {
protected:
    BlockFile()
    {
        open_record() = {};
    }
    ~BlockFile() override
    {
        open_record() = {};
    }

    MemoryBlockFile file{"abcdef"};
};

TEST_F(BlockFile, ReadStoresHowManyBytesCame)
{
    std::string buffer(8, '.');
    uint16_t count = 99;
    EXPECT_EQ(VwBlockRead(&file, buffer.data(), 4, &count), 0);
    EXPECT_EQ(count, 4);
    EXPECT_EQ(buffer, "abcd....");
    EXPECT_EQ(VwBlockRead(&file, buffer.data(), 4, &count), 0);
    EXPECT_EQ(count, 2);
    EXPECT_EQ(buffer, "efcd....");
}

TEST_F(BlockFile, ReadTakesASixteenBitCount)
{
    std::string buffer(8, '.');
    uint16_t count = 99;
    EXPECT_EQ(VwBlockRead(&file, buffer.data(), 0x10003, &count), 0);
    EXPECT_EQ(buffer, "abc.....");
    EXPECT_EQ(VwBlockRead(&file, buffer.data(), 0x1FF02, &count), 0);
    EXPECT_EQ(file.take_log(), "read 3, read 65282");
}

TEST_F(BlockFile, ReadStoresTheLowSixteenBits)
{
    std::string buffer(8, '.');
    uint16_t count = 99;
    file.claimed_excess = 0x1FFF0;
    EXPECT_EQ(VwBlockRead(&file, buffer.data(), 3, &count), 0);
    EXPECT_EQ(count, 0xFFF3);
}

TEST_F(BlockFile, ReadReportsAFailure)
{
    std::string buffer(8, '.');
    uint16_t count = 99;
    file.fail_reads = true;
    EXPECT_EQ(VwBlockRead(&file, buffer.data(), 3, &count), -1);
}

TEST_F(BlockFile, AReadThatStoresNoCountReadNothing)
{
    std::string buffer(8, '.');
    uint16_t count = 99;
    file.read = [](VwBlockFile *, void *, uint32_t, uint32_t *) { return int32_t{1}; };
    EXPECT_EQ(VwBlockRead(&file, buffer.data(), 3, &count), -1);
    EXPECT_EQ(count, 0);
}

TEST_F(BlockFile, SeekPassesOriginAndOffset)
{
    EXPECT_EQ(VwBlockSeek(&file, 4, 0), 0);
    EXPECT_EQ(VwBlockSeek(&file, -2, 2), 0);
    EXPECT_EQ(VwBlockSeek(&file, -2, 0x10002), 0);
    EXPECT_EQ(file.take_log(), "seek 0 4, seek 2 -2, seek 2 -2");
    EXPECT_EQ(file.position, 4U);
    EXPECT_EQ(VwBlockSeek(&file, 4, 0x1FF02), 0);
    EXPECT_EQ(file.take_log(), "seek 65282 4");
    file.fail_seeks = true;
    EXPECT_EQ(VwBlockSeek(&file, 4, 0), -1);
}

TEST_F(BlockFile, TellReturnsThePosition)
{
    file.position = 5;
    EXPECT_EQ(VwBlockTell(&file), 5);
    file.fail_tells = true;
    EXPECT_EQ(VwBlockTell(&file), -1);
    file.tell = [](VwBlockFile *, uint32_t *) { return int32_t{0}; };
    EXPECT_EQ(VwBlockTell(&file), 0) << "of a file that stores none";
}

TEST_F(BlockFile, CloseSucceedsWhateverTheFileReturns)
{
    EXPECT_EQ(VwBlockClose(&file), 0);
    file.close_result = 5;
    EXPECT_EQ(VwBlockClose(&file), 0);
    EXPECT_EQ(file.closes, 2U);
}

TEST_F(BlockFile, OpenRefusesAnEmptyPathWithoutAskingTheHost)
{
    EXPECT_TRUE(is_minus_one(VwBlockOpen(&file, "", 0)));
    EXPECT_TRUE(open_record().requests.empty());
}

TEST_F(BlockFile, OpenTriesThePathFirst)
{
    MemoryBlockFile other("other");
    open_record().answer = [&](const OpenRequest &) { return &other; };
    EXPECT_EQ(VwBlockOpen(&file, "A/B", 77), &other);
    ASSERT_EQ(open_record().requests.size(), 1U);
    EXPECT_EQ(open_record().requests[0].code, 1U);
    EXPECT_EQ(open_record().requests[0].name, "A/B");
    EXPECT_EQ(open_record().requests[0].one, 1U);
}

// The bare name that is requested beside the open file if the path is refused; "(none)" if it is
// not requested.
std::string bare_name(MemoryBlockFile &file, const std::string &path)
{
    open_record() = {};
    EXPECT_TRUE(is_minus_one(VwBlockOpen(&file, path.c_str(), 0)));
    const std::vector<OpenRequest> &requests = open_record().requests;
    EXPECT_GE(requests.size(), 1U);
    if (requests.size() < 2) {
        return "(none)";
    }
    EXPECT_EQ(requests.size(), 2U);
    EXPECT_EQ(requests[1].code, 9U);
    EXPECT_EQ(requests[1].existing, &file);
    EXPECT_EQ(requests[1].one, 1U);
    return requests[1].name;
}

TEST_F(BlockFile, OpenFindsTheBareNameAfterTheLastSeparator)
{
    EXPECT_EQ(bare_name(file, "C:\\DOCS\\LETTER.DOC"), "LETTER.DOC");
    EXPECT_EQ(bare_name(file, "A:LETTER"), "LETTER");
    EXPECT_EQ(bare_name(file, "dir/other\\LETTER"), "LETTER");
    EXPECT_EQ(bare_name(file, "//LETTER"), "LETTER");
}

TEST_F(BlockFile, OpenDoesNotSplitAPathWithoutSeparators)
{
    EXPECT_EQ(bare_name(file, "LETTER.DOC"), "LETTER.DOC");
    EXPECT_EQ(bare_name(file, "L"), "L");
}

TEST_F(BlockFile, OpenKeepsASeparatorThatIsTheFirstCharacter)
{
    EXPECT_EQ(bare_name(file, "/LETTER"), "/LETTER");
    EXPECT_EQ(bare_name(file, ":"), ":");
}

TEST_F(BlockFile, OpenOfAPathThatEndsInASeparatorAsksForAnEmptyName)
{
    EXPECT_EQ(bare_name(file, "C:"), "");
    EXPECT_EQ(bare_name(file, "dir/"), "");
}

TEST_F(BlockFile, OpenTakesANameOfTwoHundredFiftyFiveCharacters)
{
    const std::string name(255, 'n');
    EXPECT_EQ(bare_name(file, "C:" + name), name);
}

TEST_F(BlockFile, OpenRefusesANameOfTwoHundredFiftySixCharacters)
{
    EXPECT_EQ(bare_name(file, "C:" + std::string(256, 'n')), "(none)");
    EXPECT_EQ(bare_name(file, std::string(5000, 'n')), "(none)");
}

TEST_F(BlockFile, OpenReturnsTheFileBeside)
{
    MemoryBlockFile other("other");
    open_record().answer = [&](const OpenRequest &request) {
        return request.code == VW_OPEN_BESIDE ? &other : nullptr;
    };
    EXPECT_EQ(VwBlockOpen(&file, "C:LETTER", 0), &other);
}

TEST_F(BlockFile, CharBlockOpenWrapsTheNewFile)
{
    MemoryBlockFile other("other");
    open_record().answer = [&](const OpenRequest &) { return &other; };
    VwCharStream *stream = VwBlockToChar(&file);
    VwCharStream *opened = VwCharBlockOpen(stream, "LETTER", 0);
    ASSERT_FALSE(is_minus_one(opened));
    EXPECT_EQ(VwCharGet(opened), 'o');
    EXPECT_EQ(VwCharGet(stream), 'a');
    EXPECT_EQ(VwCharBlockClose(opened), 0);
    EXPECT_EQ(other.closes, 1U);
    EXPECT_EQ(VwCharToBlock(stream), &file);
    EXPECT_EQ(file.closes, 0U);
}

TEST_F(BlockFile, CharBlockOpenPassesTheRefusalOn)
{
    VwCharStream *stream = VwBlockToChar(&file);
    EXPECT_TRUE(is_minus_one(VwCharBlockOpen(stream, "LETTER", 0)));
    EXPECT_EQ(open_record().requests.size(), 2U);
    EXPECT_EQ(open_record().requests[1].existing, &file);
    VwCharToBlock(stream);
}

} // namespace

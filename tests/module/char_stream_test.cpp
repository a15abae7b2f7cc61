// The character stream: delivering, taking back, refilling, positioning.
#include "vs_pfs/char_stream.h"

#include "tests/support/memory_block_file.h"
#include "tests/support/notation.h"

#include <gtest/gtest.h>

namespace {

using namespace tests;
using namespace vs_pfs;

// A file of `size` bytes, each of which depends on its position.
std::string numbered(std::size_t size)
{
    std::string bytes;
    for (std::size_t i = 0; i < size; ++i) {
        bytes += static_cast<char>(i * 7 % 251);
    }
    return bytes;
}

int32_t byte_at(std::size_t position)
{
    return static_cast<int32_t>(position * 7 % 251);
}

class CharStream : public ::testing::Test {
protected:
    ~CharStream() override
    {
        release();
    }

    void wrap(std::string content)
    {
        release();
        file = std::make_unique<MemoryBlockFile>(std::move(content));
        stream = VwBlockToChar(file.get());
    }
    void release()
    {
        if (stream != nullptr) {
            EXPECT_EQ(VwCharToBlock(stream), file.get());
            stream = nullptr;
        }
    }
    int32_t get()
    {
        return VwCharGet(stream);
    }
    void skip(std::size_t count)
    {
        for (; count > 0; --count) {
            get();
        }
    }

    std::unique_ptr<MemoryBlockFile> file;
    VwCharStream *stream = nullptr;
};

TEST_F(CharStream, StartsEmptyAtPositionZero)
{
    wrap("abc");
    ASSERT_NE(stream, nullptr);
    EXPECT_EQ(stream->remaining, 0);
    EXPECT_EQ(stream->bufferLength, 0U);
    EXPECT_EQ(stream->bufferBase, 0U);
    EXPECT_EQ(stream->blockFile, file.get());
    EXPECT_EQ(VwCharTell(stream), 0U);
    EXPECT_EQ(file->take_log(), "");
}

TEST_F(CharStream, DeliversPositionZeroFirstWhateverTheFilesPosition)
{
    wrap(numbered(6000));
    file->position = 5000;
    EXPECT_EQ(get(), byte_at(0));
    EXPECT_EQ(file->take_log(), "tell, seek 0 0, read 2048");
}

TEST_F(CharStream, DoesNotSeekIfTheFilesPositionIsRight)
{
    wrap("abc");
    EXPECT_EQ(get(), 'a');
    EXPECT_EQ(file->take_log(), "tell, read 2048");
}

TEST_F(CharStream, KeepsItsInvariantWhileBytesAreBuffered)
{
    wrap(numbered(3000));
    for (std::size_t i = 0; i + 1 < 3000; ++i) {
        ASSERT_EQ(get(), byte_at(i));
        ASSERT_EQ(VwCharTell(stream), i + 1);
        if (stream->remaining > 0) {
            ASSERT_EQ(stream->cursor, stream->buffer + (stream->bufferLength -
                                                        static_cast<uint32_t>(stream->remaining)));
        }
    }
}

TEST_F(CharStream, AnEmptyFileEndsAtOnceAndReportsOneFurther)
{
    wrap("");
    EXPECT_EQ(get(), -1);
    EXPECT_EQ(VwCharTell(stream), 1U);
}

TEST_F(CharStream, AFileOfOneBufferEndsAfterIt)
{
    wrap(numbered(2048));
    skip(2047);
    EXPECT_EQ(file->reads, 1U);
    EXPECT_EQ(get(), byte_at(2047));
    EXPECT_EQ(file->reads, 1U);
    EXPECT_EQ(get(), -1);
    EXPECT_EQ(file->reads, 2U);
}

TEST_F(CharStream, AByteOfAllBitsIsNotTheEnd)
{
    wrap("\xFF\xFE");
    EXPECT_EQ(get(), 255);
    EXPECT_EQ(get(), 254);
    EXPECT_EQ(get(), -1);
}

TEST_F(CharStream, DeliversTheSameBytesHoweverFewTheHostHandsOut)
{
    for (const uint32_t most : {1U, 2U, 3U, 4U, 5U, 2047U, 2048U, UINT32_MAX}) {
        wrap(numbered(4500));
        file->most_per_read = most;
        for (std::size_t i = 0; i < 4500; ++i) {
            ASSERT_EQ(get(), byte_at(i)) << most;
        }
        EXPECT_EQ(get(), -1);
    }
}

TEST_F(CharStream, EachReadPastTheEndRetriesAndReportsOneFurther)
{
    wrap("abc");
    skip(3);
    for (uint32_t n = 1; n <= 5; ++n) {
        EXPECT_EQ(get(), -1);
        EXPECT_EQ(VwCharTell(stream), 3 + n);
        EXPECT_EQ(file->reads, 1 + n);
    }
}

TEST_F(CharStream, DeliversWhatTheFileGainedAfterItsEndWasMet)
{
    wrap("a");
    skip(2);
    file->bytes += "b";
    EXPECT_EQ(get(), 'b');
    EXPECT_EQ(VwCharTell(stream), 2U);
}

TEST_F(CharStream, RemainingIsHeldAtTheBottomOfItsRange)
{
    wrap("abc");
    for (int n = 0; n < 100000; ++n) {
        ASSERT_LE(stream->remaining, n < 3 ? 3 : 0);
        ASSERT_EQ(get(), n < 3 ? 'a' + n : -1);
    }
    EXPECT_EQ(stream->remaining, INT16_MIN);
    EXPECT_EQ(get(), -1);
    EXPECT_EQ(VwCharSeek(stream, 1, 0), 0);
    EXPECT_EQ(get(), 'b');
}

TEST_F(CharStream, AFailedReadIsTheEndOfTheData)
{
    wrap("abc");
    file->fail_reads = true;
    EXPECT_EQ(get(), -1);
    EXPECT_EQ(stream->bufferLength, 0U);
    file->fail_reads = false;
    EXPECT_EQ(get(), 'a');
}

TEST_F(CharStream, NothingCanBeTakenBackBeforeTheFirstByte)
{
    wrap("abc");
    VwCharUnget(stream);
    EXPECT_EQ(VwCharTell(stream), 0U);
    EXPECT_EQ(get(), 'a');
}

TEST_F(CharStream, AReadThatStoresNoCountIsTheEndOfTheData)
{
    wrap("abc");
    file->read = [](VwBlockFile *, void *, uint32_t, uint32_t *) { return int32_t{0}; };
    EXPECT_EQ(get(), -1);
    EXPECT_EQ(stream->bufferLength, 0U);
}

TEST_F(CharStream, AReadThatClaimsTooMuchIsTheEndOfTheData)
{
    wrap(numbered(2048));
    file->claimed_excess = 1;
    EXPECT_EQ(get(), -1);
    EXPECT_EQ(stream->bufferLength, 0U);
    wrap("abc");
    file->claimed_excess = UINT32_MAX - 3;
    EXPECT_EQ(get(), -1);
}

TEST_F(CharStream, ADeliveredByteCanBeTakenBack)
{
    wrap("abc");
    EXPECT_EQ(get(), 'a');
    EXPECT_EQ(get(), 'b');
    VwCharUnget(stream);
    EXPECT_EQ(VwCharTell(stream), 1U);
    EXPECT_EQ(get(), 'b');
    EXPECT_EQ(get(), 'c');
}

TEST_F(CharStream, TheFirstByteOfABufferCanBeTakenBack)
{
    wrap(numbered(3000));
    skip(2049);
    VwCharUnget(stream);
    EXPECT_EQ(VwCharTell(stream), 2048U);
    EXPECT_EQ(get(), byte_at(2048));
    EXPECT_EQ(get(), byte_at(2049));
}

TEST_F(CharStream, TheLastByteOfABufferCanBeTakenBack)
{
    wrap(numbered(3000));
    skip(2048);
    VwCharUnget(stream);
    EXPECT_EQ(get(), byte_at(2047));
    EXPECT_EQ(get(), byte_at(2048));
}

TEST_F(CharStream, TakingBackAtTheStartOfTheBufferDoesNothing)
{
    wrap("abc");
    get();
    VwCharUnget(stream);
    VwCharUnget(stream);
    EXPECT_EQ(stream->remaining, 3);
    EXPECT_EQ(get(), 'a');
}

TEST_F(CharStream, SeekingWithinTheBufferCostsNoOperation)
{
    wrap("abc");
    EXPECT_EQ(get(), 'a');
    EXPECT_EQ(get(), 'b');
    file->take_log();
    EXPECT_EQ(VwCharSeek(stream, VwCharTell(stream) - 1, seek_absolute), 0);
    EXPECT_EQ(get(), 'b');
    EXPECT_EQ(VwCharSeek(stream, static_cast<uint32_t>(-2), seek_relative), 0);
    EXPECT_EQ(get(), 'a');
    EXPECT_EQ(file->take_log(), "");
}

TEST_F(CharStream, JustPastTheBufferIsNotBuffered)
{
    wrap(numbered(3000));
    get();
    file->take_log();
    EXPECT_EQ(VwCharSeek(stream, 2048, seek_absolute), 0);
    EXPECT_EQ(file->take_log(), "seek 0 2048");
    EXPECT_EQ(stream->bufferLength, 0U);
    EXPECT_EQ(stream->remaining, 0);
    EXPECT_EQ(stream->bufferBase, 2048U);
    EXPECT_EQ(VwCharTell(stream), 2048U);
    EXPECT_EQ(get(), byte_at(2048));
}

TEST_F(CharStream, TheLastBufferedByteIsBuffered)
{
    wrap(numbered(3000));
    get();
    file->take_log();
    EXPECT_EQ(VwCharSeek(stream, 2047, seek_absolute), 0);
    EXPECT_EQ(file->take_log(), "");
    EXPECT_EQ(get(), byte_at(2047));
    EXPECT_EQ(get(), byte_at(2048));
}

TEST_F(CharStream, SeeksBeforeTheBuffer)
{
    wrap(numbered(3000));
    skip(2500);
    EXPECT_EQ(VwCharSeek(stream, 2047, seek_absolute), 0);
    EXPECT_EQ(get(), byte_at(2047));
}

TEST_F(CharStream, RelativeToHereByNothingStaysThere)
{
    wrap("abc");
    get();
    EXPECT_EQ(VwCharSeek(stream, 0, seek_relative), 0);
    EXPECT_EQ(VwCharTell(stream), 1U);
    EXPECT_EQ(get(), 'b');
    wrap("abc");
    EXPECT_EQ(VwCharSeek(stream, 0, seek_relative), 0);
    EXPECT_EQ(VwCharTell(stream), 0U);
    EXPECT_EQ(get(), 'a');
}

TEST_F(CharStream, RelativeToTheEndByNothingIsTheEnd)
{
    wrap("abc");
    get();
    file->take_log();
    EXPECT_EQ(VwCharSeek(stream, 0, seek_from_end), 0);
    EXPECT_EQ(file->take_log(), "seek 2 0, tell, seek 0 3");
    EXPECT_EQ(VwCharTell(stream), 3U);
    EXPECT_EQ(get(), -1);
}

TEST_F(CharStream, RelativeToTheEndIntoTheBufferKeepsTheBuffer)
{
    wrap(numbered(2100));
    get();
    file->bytes.resize(2049);
    file->take_log();
    EXPECT_EQ(VwCharSeek(stream, static_cast<uint32_t>(-9), seek_from_end), 0);
    EXPECT_EQ(file->take_log(), "seek 2 -9, tell");
    for (std::size_t i = 2040; i < 2049; ++i) {
        EXPECT_EQ(get(), byte_at(i));
    }
    EXPECT_EQ(file->take_log(), "tell, seek 0 2048, read 2048") << "the file had been moved";
    EXPECT_EQ(get(), -1);
}

TEST_F(CharStream, AnyOtherOriginIsAbsolute)
{
    for (const int32_t origin : {3, -1, 7, 32767, -32768}) {
        wrap("abc");
        skip(2);
        EXPECT_EQ(VwCharSeek(stream, 1, origin), 0);
        EXPECT_EQ(get(), 'b') << origin;
    }
}

TEST_F(CharStream, TheOriginIsASixteenBitValue)
{
    wrap("abc");
    get();
    EXPECT_EQ(VwCharSeek(stream, 1, 0x10001), 0);
    EXPECT_EQ(get(), 'c');
}

TEST_F(CharStream, AFailedSeekLeavesItEmptyAtTheWantedPosition)
{
    wrap(numbered(5000));
    get();
    file->fail_seeks = true;
    EXPECT_EQ(VwCharSeek(stream, 4000, seek_absolute), -1);
    EXPECT_EQ(stream->bufferLength, 0U);
    EXPECT_EQ(stream->remaining, 0);
    EXPECT_EQ(VwCharTell(stream), 4000U);
    file->fail_seeks = false;
    EXPECT_EQ(get(), byte_at(4000)) << "the next read retries there";
}

TEST_F(CharStream, AnEndThatCannotBeFoundLeavesItWhereItWas)
{
    wrap("abcd");
    get();
    file->fail_seeks = true;
    EXPECT_EQ(VwCharSeek(stream, 0, seek_from_end), -1);
    EXPECT_EQ(get(), 'b');
    file->fail_seeks = false;
    file->fail_tells = true;
    EXPECT_EQ(VwCharSeek(stream, 0, seek_from_end), -1);
    EXPECT_EQ(get(), 'c');
    EXPECT_EQ(VwCharTell(stream), 3U);
}

TEST_F(CharStream, PositionsAreUnsigned)
{
    wrap("abc");
    EXPECT_EQ(VwCharSeek(stream, 0x90000000U, seek_absolute), 0);
    EXPECT_EQ(file->position, 0x90000000U);
    EXPECT_EQ(VwCharTell(stream), 0x90000000U);
    EXPECT_EQ(get(), -1);
}

TEST_F(CharStream, ABufferNearTheTopOfThePositionsIsNotTakenForEarlierOnes)
{
    wrap(numbered(100));
    skip(100);
    // Unsigned: 0xFFFFFFFF lies beyond the buffer and not before it.
    file->take_log();
    EXPECT_EQ(VwCharSeek(stream, UINT32_MAX, seek_absolute), 0);
    EXPECT_EQ(file->take_log(), "seek 0 -1");
    EXPECT_EQ(get(), -1);
    EXPECT_EQ(VwCharSeek(stream, 7, seek_absolute), 0);
    EXPECT_EQ(get(), byte_at(7));
}

} // namespace

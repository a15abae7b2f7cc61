// Block files that fail and lie: every operation in reading every sample, once and permanently.
// Whatever the file does, the end of the document is reported once, the checker finds no
// violation, and the stream stays inside its buffer.
#include "tests/robustness/document_files.h"
#include "tests/support/faulty_block_file.h"
#include "tests/support/recording_host.h"

#include <algorithm>
#include <cstddef>
#include <functional>

namespace tests {
namespace {

using Kind = Fault::Kind;

// The most calls for a byte of the text; and those that a read call begins with.
constexpr std::size_t most_calls_per_byte = 8;
constexpr std::size_t most_announcements = 1500;
// A file that delivers one byte at a time is asked for its position before each.
constexpr std::size_t most_operations_per_byte = 4;

void expect_inside_buffer(const VwCharStream &stream)
{
    EXPECT_LE(stream.bufferLength, VW_STREAM_BUFFER_SIZE);
    EXPECT_LE(stream.remaining, static_cast<int32_t>(stream.bufferLength));
    EXPECT_GE(stream.cursor, stream.buffer);
    EXPECT_LE(stream.cursor, stream.buffer + stream.bufferLength);
}

// A plan that also knows the file's position.
using Plan = std::function<Fault(unsigned number, BlockOperation, const MemoryBlockFile &)>;

struct Result {
    Calls calls; // none when the document was not recognised
    unsigned operations = 0;
};

Result read_with(const std::string &document, const Plan &plan, uint32_t most_per_read)
{
    RecordingHost host(document);
    host.file.keep_log = false;
    host.file.most_per_read = most_per_read;
    FaultyBlockFile faulty(host.stream, [&](unsigned number, BlockOperation operation) {
        return plan(number, operation, host.file);
    });
    Result result;
    if (host.open() == 0) {
        result.calls = host.read_all();
        const Call end = {VW_SO_BREAK, 2, {VW_BREAK_END_OF_DOCUMENT, 0}};
        EXPECT_EQ(std::count(result.calls.begin(), result.calls.end(), end), 1);
        EXPECT_LE(result.calls.size(), most_calls_per_byte * document.size() + most_announcements);
    }
    expect_inside_buffer(*host.stream);
    EXPECT_LE(faulty.operations, most_operations_per_byte * document.size() + most_announcements);
    result.operations = faulty.operations;
    return result;
}

Plan no_faults()
{
    return [](unsigned, BlockOperation, const MemoryBlockFile &) { return Fault{}; };
}

Plan once(unsigned at, const Fault &fault)
{
    return [=](unsigned number, BlockOperation, const MemoryBlockFile &) {
        return number == at ? fault : Fault{};
    };
}

Plan from(unsigned first, const Fault &fault)
{
    return [=](unsigned number, BlockOperation, const MemoryBlockFile &) {
        return number >= first ? fault : Fault{};
    };
}

Plan always(BlockOperation operation, const Fault &fault)
{
    return [=](unsigned, BlockOperation which, const MemoryBlockFile &) {
        return which == operation ? fault : Fault{};
    };
}

// The numbers of all operations of one kind in a reading without faults.
std::vector<unsigned> operations_of(const std::string &document, BlockOperation operation,
                                    uint32_t most_per_read)
{
    std::vector<unsigned> numbers;
    read_with(
        document,
        [&](unsigned number, BlockOperation which, const MemoryBlockFile &) {
            if (which == operation) {
                numbers.push_back(number);
            }
            return Fault{};
        },
        most_per_read);
    return numbers;
}

// Whole documents in full reads, and small ones also in small reads, where every line and every
// lookahead has operations of its own.
class Faults : public ::testing::TestWithParam<DocumentFile> {
protected:
    Faults() : document(GetParam().bytes())
    {
        constexpr std::size_t small = 4096;
        pieces = document.size() < small ? std::vector<uint32_t>{UINT32_MAX, 7}
                                         : std::vector<uint32_t>{UINT32_MAX};
    }

    // Runs `test` for each size of the pieces.
    template <typename Test> void in_pieces(Test test)
    {
        for (const uint32_t most_per_read : pieces) {
            SCOPED_TRACE(::testing::Message() << most_per_read << " bytes in a read");
            test(most_per_read);
        }
    }

    std::string document;
    std::vector<uint32_t> pieces;
};

TEST_P(Faults, InAnyOperationEndTheDocument)
{
    in_pieces([this](uint32_t most_per_read) {
        const unsigned operations = read_with(document, no_faults(), most_per_read).operations;
        ASSERT_GT(operations, 0U);
        for (unsigned n = 1; n <= operations; ++n) {
            SCOPED_TRACE(::testing::Message() << "operation " << n);
            for (const Kind kind : {Kind::fails, Kind::fails_afterward}) {
                read_with(document, once(n, {kind}), most_per_read);
                read_with(document, from(n, {kind}), most_per_read);
            }
        }
    });
}

// The stream's next refill corrects the file's position, so nothing is lost.
TEST_P(Faults, InOneSeekChangeNothing)
{
    in_pieces([this](uint32_t most_per_read) {
        const Calls whole = read_with(document, no_faults(), most_per_read).calls;
        for (const unsigned n : operations_of(document, BlockOperation::seek, most_per_read)) {
            for (const Kind kind : {Kind::fails, Kind::fails_afterward}) {
                EXPECT_TRUE(read_with(document, once(n, {kind}), most_per_read).calls == whole)
                    << "operation " << n;
            }
        }
    });
}

TEST_P(Faults, InTheTellOperationsChangeNothing)
{
    const Calls whole = read_with(document, no_faults(), UINT32_MAX).calls;
    const auto expect_whole = [&](const Plan &plan) {
        EXPECT_TRUE(read_with(document, plan, UINT32_MAX).calls == whole);
    };
    expect_whole(always(BlockOperation::tell, {Kind::fails}));
    expect_whole(always(BlockOperation::tell, {Kind::fails_afterward}));
    expect_whole(always(BlockOperation::tell, {Kind::misreports, UINT32_MAX}));
    const auto lie = [&](auto position) {
        expect_whole([=](unsigned number, BlockOperation which, const MemoryBlockFile &file) {
            return which == BlockOperation::tell ? Fault{Kind::misreports, position(number, file)}
                                                 : Fault{};
        });
    };
    lie([](unsigned, const MemoryBlockFile &) { return 0U; });
    lie([](unsigned, const MemoryBlockFile &file) {
        return static_cast<uint32_t>(file.position) + 1;
    });
    lie([](unsigned number, const MemoryBlockFile &) { return number * 2654435761U; });
}

TEST_P(Faults, ReadsOfNoBytesAreTheEndOfTheData)
{
    in_pieces([this](uint32_t most_per_read) {
        for (const unsigned n : operations_of(document, BlockOperation::read, most_per_read)) {
            SCOPED_TRACE(::testing::Message() << "operation " << n);
            const auto empty = read_with(document, once(n, {Kind::no_bytes}), most_per_read);
            const auto failed = read_with(document, once(n, {Kind::fails}), most_per_read);
            EXPECT_TRUE(empty.calls == failed.calls);
        }
        const auto never = always(BlockOperation::read, {Kind::no_bytes});
        EXPECT_TRUE(read_with(document, never, most_per_read).calls.empty());
    });
}

TEST_P(Faults, CountsLargerThanAskedForAreFailures)
{
    for (const unsigned n : operations_of(document, BlockOperation::read, UINT32_MAX)) {
        const auto failed = read_with(document, once(n, {Kind::fails_afterward}), UINT32_MAX);
        for (const uint32_t claimed : {2049U, 4096U, 65535U, 65536U, 0x80000000U, UINT32_MAX}) {
            const auto lied = read_with(document, once(n, {Kind::claims, claimed}), UINT32_MAX);
            EXPECT_TRUE(lied.calls == failed.calls) << "operation " << n << " claims " << claimed;
        }
    }
    const auto never = always(BlockOperation::read, {Kind::claims, UINT32_MAX});
    EXPECT_TRUE(read_with(document, never, UINT32_MAX).calls.empty());
}

INSTANTIATE_TEST_SUITE_P(Samples, Faults, ::testing::ValuesIn(sample_files()),
                         [](const auto &file) { return file.param.name; });

// Millions of reads past the end: the stream's counters saturate, no byte is repeated.
class PastTheEnd : public ::testing::TestWithParam<std::size_t> {};

TEST_P(PastTheEnd, DeliversNothingAMillionTimes)
{
    constexpr uint32_t counted = 32768; // where the stream's count of missing bytes saturates
    constexpr uint32_t times = 1000000;
    MemoryBlockFile file(std::string(GetParam(), 'x'));
    file.keep_log = false;
    VwCharStream *stream = VwBlockToChar(&file);
    ASSERT_NE(stream, nullptr);
    for (std::size_t i = 0; i < GetParam(); ++i) {
        ASSERT_EQ(VwCharGet(stream), 'x');
    }
    for (uint32_t i = 1; i <= times; ++i) {
        ASSERT_EQ(VwCharGet(stream), -1) << i;
        ASSERT_EQ(VwCharTell(stream), GetParam() + std::min(i, counted));
    }
    expect_inside_buffer(*stream);
    EXPECT_EQ(VwCharSeek(stream, 0, 0), 0);
    EXPECT_EQ(VwCharGet(stream), GetParam() == 0 ? -1 : 'x');
    VwCharToBlock(stream);
}

INSTANTIATE_TEST_SUITE_P(Sizes, PastTheEnd, ::testing::Values(0, 1, 2047, 2048, 2049, 5000),
                         ::testing::PrintToStringParamName());

} // namespace
} // namespace tests

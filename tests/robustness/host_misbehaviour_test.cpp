// Hosts whose output routines misbehave: they return odd values and seek the stream that is being
// read. The text may become nonsense; nothing else may happen.
#include "tests/robustness/document_files.h"
#include "tests/support/recording_host.h"

#include <algorithm>
#include <functional>
#include <random>

namespace tests {
namespace {

// What the routines below do, besides having the call recorded. Null outside a test.
std::function<int32_t(const Call &)> conduct;

template <VwOutputId Id> int32_t on_call1(int32_t a, uint32_t, uint32_t)
{
    return conduct({Id, 1, {a}});
}

template <VwOutputId Id> int32_t on_call2(int32_t a, int32_t b, uint32_t, uint32_t)
{
    return conduct({Id, 2, {a, b}});
}

int32_t on_indents(int32_t left, int32_t right, int32_t first, uint32_t, uint32_t)
{
    return conduct({VW_SO_INDENTS, 3, {left, right, first}});
}

int32_t on_line_spacing(int32_t a, int32_t b, int32_t c, int32_t d, uint32_t, uint32_t)
{
    return conduct({VW_SO_LINE_SPACING, 4, {a, b, c, d}});
}

class Misbehaviour : public ::testing::TestWithParam<DocumentFile> {
protected:
    Misbehaviour() : host(GetParam().bytes())
    {
        host.file.keep_log = false;
        EXPECT_EQ(host.open(), 0);
        const auto set = [this](int32_t id, auto routine) {
            VwSetSoRtn(id, reinterpret_cast<VwRoutine>(routine), host.instance);
        };
        set(VW_SO_CHARACTER, on_call1<VW_SO_CHARACTER>);
        set(VW_SO_SPECIAL_CHARACTER, on_call2<VW_SO_SPECIAL_CHARACTER>);
        set(VW_SO_PAGE_BREAK, on_call2<VW_SO_PAGE_BREAK>);
        set(VW_SO_ATTRIBUTE, on_call2<VW_SO_ATTRIBUTE>);
        set(VW_SO_INDENTS, on_indents);
        set(VW_SO_MARGINS, on_call2<VW_SO_MARGINS>);
        set(VW_SO_HEADER_FOOTER, on_call2<VW_SO_HEADER_FOOTER>);
        set(VW_SO_BREAK, on_call2<VW_SO_BREAK>);
        set(VW_SO_LINE_SPACING, on_line_spacing);
    }
    ~Misbehaviour() override
    {
        conduct = nullptr;
    }

    RecordingHost host;
};

Calls read_to_the_end(const std::string &document)
{
    RecordingHost host(document);
    host.file.keep_log = false;
    EXPECT_EQ(host.open(), 0);
    return host.read_all();
}

TEST_P(Misbehaviour, AnswersOtherThanOneGoOn)
{
    const Calls whole = read_to_the_end(GetParam().bytes());
    const Place start = host.place();
    for (const int32_t answer : {0, -1, 2, 7, 256, 0x10000, INT32_MIN, INT32_MAX}) {
        host.go_to(start);
        conduct = [&](const Call &call) {
            host.record(call);
            return answer;
        };
        EXPECT_TRUE(host.read_all() == whole) << answer;
    }
}

TEST_P(Misbehaviour, AnswersThatChangeAllTheTimeReachTheEnd)
{
    std::mt19937 random(1);
    const Place start = host.place();
    for (int round = 0; round < 10; ++round) {
        host.go_to(start);
        conduct = [&](const Call &call) {
            host.record(call);
            return static_cast<int32_t>(random()) >> random() % 32;
        };
        host.read_all();
    }
}

void expect_inside_buffer(const VwCharStream &stream)
{
    EXPECT_LE(stream.bufferLength, VW_STREAM_BUFFER_SIZE);
    EXPECT_LE(stream.remaining, static_cast<int32_t>(stream.bufferLength));
    EXPECT_GE(stream.cursor, stream.buffer);
    EXPECT_LE(stream.cursor, stream.buffer + stream.bufferLength);
}

// Mostly inside the document, sometimes far past its end or at the largest position.
uint32_t position_to_seek(std::mt19937 &random, uint32_t size)
{
    switch (random() % 8) {
    case 0: return static_cast<uint32_t>(random());
    case 1: return static_cast<uint32_t>(UINT32_MAX - random() % 3000);
    default: return static_cast<uint32_t>(random() % (size + 10));
    }
}

TEST_P(Misbehaviour, SeeksFromInsideTheRoutinesStayInTheBuffer)
{
    constexpr unsigned seeks_wanted = 2000;
    constexpr unsigned seeks_in_round = 20; // with more the end would never be reached
    constexpr uint32_t seldom = 16;
    std::mt19937 random(1);
    host.checker.expect_foreign_state();
    const Place start = host.place();
    const auto size = static_cast<uint32_t>(host.file.bytes.size());
    for (unsigned seeks = 0; seeks < seeks_wanted;) {
        host.go_to(start);
        unsigned left = seeks_in_round;
        conduct = [&](const Call &call) {
            host.record(call);
            if (left > 0 && random() % seldom == 0) {
                --left;
                ++seeks;
                const uint32_t position = position_to_seek(random, size);
                EXPECT_EQ(VwStreamSeek(host.stream, &position), 0);
                expect_inside_buffer(*host.stream);
            }
            return static_cast<int32_t>(random() % 2);
        };
        host.read_all();
    }
}

INSTANTIATE_TEST_SUITE_P(Samples, Misbehaviour, ::testing::ValuesIn(sample_files()),
                         [](const auto &file) { return file.param.name; });

} // namespace
} // namespace tests

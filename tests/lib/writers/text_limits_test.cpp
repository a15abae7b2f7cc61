// The text writer's time and memory limits, and its output for hostile documents.
#include "tests/lib/reading/text_of.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace {

using namespace pfsdoc;
using namespace tests;

// --------------------------------------------------------------------------- the writer ---

TEST(Writer, FlushesOnceWhetherOrNotTheEndIsReported)
{
    StringOutput output;
    writers::TextWriter writer(output);
    narrow_page().line("One").end().tell(writer);
    writer.finish();
    EXPECT_EQ(output.text, "One\n");
    writer.finish();
    EXPECT_EQ(output.text, "One\n");

    StringOutput unended;
    writers::TextWriter other(unended);
    narrow_page().line("One").tell(other);
    other.finish();
    EXPECT_EQ(unended.text, "One\n");
}

class WriteSizes final : public Output {
public:
    void write(std::string_view bytes) override
    {
        ++writes;
        total += bytes.size();
        largest = std::max(largest, bytes.size());
    }

    std::size_t writes = 0;
    std::size_t total = 0;
    std::size_t largest = 0;
};

constexpr std::size_t megabyte = 1000000;
constexpr std::size_t most_pieces = 500000; // nearly

void tell_character(EventSink &sink, char byte, std::size_t times)
{
    const Event event = Character{static_cast<unsigned char>(byte)};
    for (std::size_t i = 0; i < times; ++i) {
        sink.on_event(event, 0);
    }
}

TEST(Writer, WritesInChunks)
{
    WriteSizes output;
    writers::TextWriter writer(output);
    for (std::size_t i = 0; i < 100000; ++i) {
        TypedEvents().margins(0, 59).line("A line of some length.").tell(writer);
    }
    writer.finish();
    EXPECT_EQ(output.total, 100000U * 23U);
    EXPECT_LE(output.largest, base::Utf8Output::chunk_size);
    EXPECT_LE(output.writes, 50U);
}

// -------------------------------------------------------------------- hostile documents ---
//
// Each is large enough for anything but linear time to be noticed, and its output is known.

struct Hostile {
    explicit Hostile(const TypedEvents &start, const WriterOptions &options = {})
        : writer(output, options)
    {
        start.tell(writer);
    }
    void finish()
    {
        TypedEvents().paragraph().end().tell(writer);
        writer.finish();
    }

    WriteSizes output;
    writers::TextWriter writer;
};

TEST(HostileDocument, WithAWordThatNeverEnds)
{
    Hostile hostile(TypedEvents().margins(10, 69));
    tell_character(hostile.writer, '\xC4', 8 * megabyte);
    hostile.finish();
    EXPECT_EQ(hostile.output.total, 10 + 24 * megabyte + 1);
    EXPECT_LE(hostile.output.largest, base::Utf8Output::chunk_size);
}

TEST(HostileDocument, WithNothingButSpaces)
{
    Hostile hostile(TypedEvents().margins(10, 69));
    tell_character(hostile.writer, 'a', 1);
    tell_character(hostile.writer, ' ', 8 * megabyte);
    tell_character(hostile.writer, 'b', 1);
    hostile.finish();
    EXPECT_EQ(hostile.output.total, 2U * 12U);
}

TEST(HostileDocument, WithNothingButTabs)
{
    // Seven multiples of eight lie on a line of 60 columns; the eighth tab ends it.
    Hostile hostile(TypedEvents().margins(10, 69));
    tell_character(hostile.writer, '\t', megabyte);
    hostile.finish();
    EXPECT_EQ(hostile.output.total, megabyte / 8);
}

TEST(HostileDocument, WithNothingButDecimalTabs)
{
    TypedEvents start;
    start.margins(0, 59).tabs({}, {10, 20, 30, 40, 50, 55});
    Hostile hostile(start); // six stops and then column 56
    tell_character(hostile.writer, '\t', 8 * 125000);
    hostile.finish();
    EXPECT_EQ(hostile.output.total, 125000U);
}

TEST(HostileDocument, WithADecimalTabBeforeAWordWithoutPointOrEnd)
{
    TypedEvents start;
    start.margins(0, 59).tabs({}, {10}).text("\t");
    Hostile hostile(start);
    tell_character(hostile.writer, '9', 5 * megabyte);
    hostile.finish();
    EXPECT_EQ(hostile.output.total, 5 * megabyte + 1);
}

TEST(HostileDocument, WithTheMostSpacesForItsSize)
{
    // Two columns at the right end of the widest page: a line for each letter.
    Hostile hostile(TypedEvents().margins(254, 255));
    for (std::size_t i = 0; i < 10000; ++i) {
        tell_character(hostile.writer, 'x', 1);
        tell_character(hostile.writer, ' ', 1);
    }
    hostile.finish();
    EXPECT_EQ(hostile.output.total, 10000U * 256U);
}

// No line has more than the limit, whatever is asked for; and spaces are written in parts.
TEST(HostileDocument, WithALineAsWideAsAskedFor)
{
    WriterOptions options;
    options.wrap = 500 * megabyte;
    Hostile hostile(TypedEvents().margins(0, 59).alignment(VW_ALIGN_RIGHT).text("x"), options);
    hostile.finish();
    EXPECT_EQ(hostile.output.total, max_wrap_columns + 1);
}

TEST(HostileDocument, WithTabsOnALineWithoutEnd)
{
    WriterOptions options;
    options.wrap = 0;
    Hostile hostile(TypedEvents().margins(0, 59), options);
    tell_character(hostile.writer, '\t', megabyte);
    tell_character(hostile.writer, 'x', 1);
    hostile.finish();
    EXPECT_EQ(hostile.output.total, 8 * megabyte + 2);
    EXPECT_LE(hostile.output.largest, base::Utf8Output::chunk_size);
}

TEST(HostileDocument, WithACommandThatNeverEnds)
{
    Hostile hostile(TypedEvents().margins(0, 59), with_commands());
    const Event opening = SpecialCharacter{'*', 7};
    const Event byte = SpecialCharacter{'x', 7};
    hostile.writer.on_event(opening, 0);
    for (std::size_t i = 0; i < 10 * megabyte; ++i) {
        hostile.writer.on_event(byte, 0);
    }
    hostile.finish();
    EXPECT_EQ(hostile.output.total, reading::ParagraphCollector::max_command_bytes + 3 + 1);
}

TEST(HostileDocument, WithAnAttributeForEachCharacter)
{
    Hostile hostile(TypedEvents().margins(0, 59));
    for (std::size_t i = 0; i < most_pieces; ++i) {
        hostile.writer.on_event(AttributeChange{2, static_cast<int32_t>(i % 2)}, 0);
        tell_character(hostile.writer, 'x', 1);
    }
    hostile.finish();
    EXPECT_EQ(hostile.output.total, most_pieces + 1);
}

TEST(HostileDocument, WithNothingButPageBreaks)
{
    Hostile hostile(TypedEvents().margins(0, 59).text("x"));
    for (std::size_t i = 0; i < most_pieces; ++i) {
        hostile.writer.on_event(PageBreak{4, 0}, 0);
    }
    hostile.finish();
    EXPECT_EQ(hostile.output.total, 2 + most_pieces + 1);
}

TEST(HostileDocument, WithAnEndlessFooter)
{
    Hostile hostile(TypedEvents().margins(0, 59).footer());
    for (std::size_t i = 0; i < 100000; ++i) {
        TypedEvents().line("footer line").tell(hostile.writer);
    }
    hostile.finish();
    EXPECT_GE(hostile.output.total, page::RunningLines::max_bytes - 20);
    EXPECT_LE(hostile.output.total, page::RunningLines::max_bytes);
}

TEST(HostileDocument, WithEventsOfEveryKindAndAnyValue)
{
    const std::vector<int32_t> values = {INT32_MIN, -1, 0,   1,     2,       6,
                                         7,         42, 144, 10080, 1 << 20, INT32_MAX};
    StringOutput output;
    WriterOptions options = with_commands();
    writers::TextWriter writer(output, options);
    for (const int32_t a : values) {
        for (const int32_t b : values) {
            const auto position = static_cast<uint32_t>(b);
            for (const Event &event : std::initializer_list<Event>{
                     Margins{a, b}, Indents{a, b, b}, TabStopsBegin{},
                     TabStop{static_cast<uint16_t>(a), 0, 0, position}, TabStopsEnd{},
                     Character{'\t'}, Character{a}, SpecialCharacter{b, a}, AttributeChange{a, b},
                     Font{a}, Alignment{a}, Character{'y'}, PageBreak{a, b}, HeaderFooter{a, b},
                     SectionStart{a}, LineSpacing{a, b, a, b}, Character{b},
                     Break{a == VW_BREAK_END_OF_DOCUMENT ? 0 : a, b}}) {
                EXPECT_EQ(writer.on_event(event, position), 0);
            }
        }
    }
    writer.finish();
    ASSERT_FALSE(output.text.empty());
    EXPECT_EQ(output.text.back(), '\n');
    EXPECT_EQ(output.text.find(" \n"), std::string::npos);
    EXPECT_LT(output.text.size(), 1000000U);
}

} // namespace

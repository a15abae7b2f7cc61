// Building spans: what is joined, what is not, and where they are split.
#include "lib/explain/span_builder.h"

#include "tests/lib/explain/explained.h"

namespace {

using namespace tests;
using namespace pfsdoc;

struct Building {
    explicit Building(const std::string &text) : source(source_from(text)), builder(*source, sink)
    {
    }
    std::string finished()
    {
        builder.finish();
        return summary(sink.spans, 0);
    }

    std::unique_ptr<MemorySource> source;
    KeepingSpans sink;
    explaining::SpanBuilder builder;
};

TEST(SpanBuilder, JoinsEqualMeanings)
{
    Building building("abcdef");
    building.builder.claim(SpanKind::unused, 1, "one");
    building.builder.claim(SpanKind::unused, 2, "one");
    building.builder.claim(SpanKind::unused, 1, "two");
    building.builder.claim(SpanKind::padding, 2, "two");
    EXPECT_EQ(building.finished(), "0+3 unused: one\n"
                                   "3+1 unused: two\n"
                                   "4+2 padding: two\n");
    EXPECT_EQ(building.sink.spans[0].bytes, "abc");
}

TEST(SpanBuilder, SeparatesOnRequest)
{
    Building building("abcd");
    building.builder.claim(SpanKind::command, 2, "command");
    building.builder.separate();
    building.builder.claim(SpanKind::command, 2, "command");
    EXPECT_EQ(building.finished(), "0+2 command: command\n"
                                   "2+2 command: command\n");
}

TEST(SpanBuilder, JoinsNothingToASeparateSpan)
{
    Building building("abc");
    building.builder.claim_alone(SpanKind::field, 1, "field");
    building.builder.claim(SpanKind::field, 1, "field");
    building.builder.claim_alone(SpanKind::field, 1, "field");
    EXPECT_EQ(building.finished(), "0+1 field: field\n"
                                   "1+1 field: field\n"
                                   "2+1 field: field\n");
}

TEST(SpanBuilder, JoinsCharactersOfOneLook)
{
    const AttributeSet bold = attribute_bit(2);
    Building building("abcDxExFxyz");
    building.builder.claim_character('a', 0, 0);
    building.builder.claim_character('b', 0, 0);
    building.builder.claim_character('c', 0, 0);
    building.builder.claim_character('d', 1, bold);
    building.builder.claim_character('e', 1, bold);
    building.builder.claim_character('f', 1, 0);
    building.builder.claim_character('z', 1, 0);
    EXPECT_EQ(building.finished(),
              "0+3 text: text\n"
              "3+4 attributed_text: text: bold, each character with its attribute byte\n"
              "7+4 attributed_text: text, each character with its attribute byte\n");
    EXPECT_EQ(building.sink.spans[1].bytes, "DxEx");
    EXPECT_EQ(building.sink.spans[1].characters, "de");
    EXPECT_EQ(building.sink.spans[1].attributes, bold);
    EXPECT_EQ(building.sink.spans[1].attribute_bytes, 1U);
}

TEST(SpanBuilder, NamesAllAttributes)
{
    Building building("abc");
    building.builder.claim_character('a', 2,
                                     attribute_bit(2) | attribute_bit(3) | attribute_bit(4) |
                                         attribute_bit(10) | attribute_bit(11));
    EXPECT_EQ(building.finished(),
              "0+3 attributed_text: text: bold, italic, underline, subscript, superscript, each "
              "character with its two attribute bytes\n");
}

TEST(SpanBuilder, CutsLongStretches)
{
    Building building(std::string(2 * longest_span + 1, 'x'));
    building.builder.claim(SpanKind::padding, static_cast<uint32_t>(2 * longest_span + 1), "fill");
    EXPECT_EQ(building.finished(), "0+4096 padding: fill\n"
                                   "4096+4096 padding: fill\n"
                                   "8192+1 padding: fill\n");
}

TEST(SpanBuilder, CutsNoCharacterFromItsAttributeBytes)
{
    Building building(std::string(3000, 'x'));
    for (int i = 0; i < 1000; ++i) {
        building.builder.claim_character('x', 2, 0);
    }
    Building longer(std::string(6000, 'x'));
    for (int i = 0; i < 2000; ++i) {
        longer.builder.claim_character('x', 2, 0);
    }
    building.builder.finish();
    longer.builder.finish();
    ASSERT_EQ(building.sink.spans.size(), 1U);
    ASSERT_EQ(longer.sink.spans.size(), 2U);
    EXPECT_EQ(longer.sink.spans[0].bytes.size(), 4095U);
    EXPECT_EQ(longer.sink.spans[1].offset, 4095U);
}

TEST(SpanBuilder, ClaimsNothingAfterTheFile)
{
    Building building("abc");
    building.builder.claim(SpanKind::unused, 10, "all of it");
    building.builder.claim(SpanKind::padding, 10, "nothing");
    building.builder.claim_alone(SpanKind::field, 10, "nothing");
    EXPECT_EQ(building.builder.position(), 3U);
    EXPECT_EQ(building.finished(), "0+3 unused: all of it\n");
}

TEST(SpanBuilder, ClaimsUpToAnOffsetOnlyOnce)
{
    Building building("abcdef");
    building.builder.claim_to(4, SpanKind::unused, "start");
    building.builder.claim_to(4, SpanKind::padding, "nothing");
    building.builder.claim_to(2, SpanKind::padding, "nothing");
    EXPECT_EQ(building.finished(), "0+4 unused: start\n");
}

TEST(SpanBuilder, MarksWhatIsDisputed)
{
    Building building("ab");
    building.builder.claim_alone(SpanKind::line_end, 1, "hard");
    building.builder.dispute();
    building.builder.claim_alone(SpanKind::line_end, 1, "soft");
    EXPECT_EQ(building.finished(), "0+1 line_end: hard DISPUTED\n"
                                   "1+1 line_end: soft\n");
}

} // namespace

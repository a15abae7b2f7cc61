// The trace's lines: one for each event, nested, folded, with offsets.
#include "lib/writers/trace.h"

#include "pfsdoc/attribute_names.h"
#include "vs_pfs.h"

#include <gtest/gtest.h>

#include <map>
#include <set>
#include <vector>

namespace {

using namespace pfsdoc;

std::string trace(const std::vector<Event> &events, const writers::TraceOptions &options = {})
{
    StringOutput output;
    writers::TraceWriter writer(output, options);
    uint32_t offset = 100;
    for (const Event &event : events) {
        EXPECT_EQ(writer.on_event(event, offset++), 0);
    }
    writer.finish();
    return output.text;
}

std::vector<Event> characters(std::string_view text)
{
    std::vector<Event> events;
    for (const char c : text) {
        events.emplace_back(Character{static_cast<unsigned char>(c)});
    }
    return events;
}

std::string folded(std::string_view text)
{
    return trace(characters(text), {.fold = true});
}

TEST(TraceText, WritesTheUsualEventsBriefly)
{
    EXPECT_EQ(writers::trace_text(SectionStart{0}), "section 0");
    EXPECT_EQ(writers::trace_text(TabStopsBegin{}), "tabs");
    EXPECT_EQ(writers::trace_text(TabStopsEnd{}), "tabs end");
    EXPECT_EQ(writers::trace_text(TabStop{VW_TAB_LEFT, 0, 0, 2880}), "tab left 2880");
    EXPECT_EQ(writers::trace_text(TabStop{VW_TAB_DECIMAL, '.', 0, 2880}), "tab decimal 2880");
    EXPECT_EQ(writers::trace_text(AttributeChange{4, 1}), "attribute 4 underline on");
    EXPECT_EQ(writers::trace_text(AttributeChange{11, 0}), "attribute 11 superscript off");
    EXPECT_EQ(writers::trace_text(Margins{1296, 9936}), "margins 1296 9936");
    EXPECT_EQ(writers::trace_text(Indents{288, 0, 0}), "indents 288 0 0");
    EXPECT_EQ(writers::trace_text(Alignment{1}), "alignment left");
    EXPECT_EQ(writers::trace_text(Alignment{2}), "alignment right");
    EXPECT_EQ(writers::trace_text(Alignment{3}), "alignment centre");
    EXPECT_EQ(writers::trace_text(Font{24}), "font 24");
    EXPECT_EQ(writers::trace_text(LineSpacing{1, 240, 0, 0}), "spacing 240");
    EXPECT_EQ(writers::trace_text(Character{'A'}), "char 41 A");
    EXPECT_EQ(writers::trace_text(Character{' '}), "char 20");
    EXPECT_EQ(writers::trace_text(Character{0x9B}), "char 9B");
    EXPECT_EQ(writers::trace_text(SpecialCharacter{'*', 7}), "special 2A *");
    EXPECT_EQ(writers::trace_text(PageBreak{4, 0}), "page-break");
    EXPECT_EQ(writers::trace_text(Break{VW_BREAK_PARAGRAPH, 0}), "break paragraph");
    EXPECT_EQ(writers::trace_text(Break{VW_BREAK_END_OF_DOCUMENT, 0}), "break end");
    EXPECT_EQ(writers::trace_text(Break{VW_BREAK_BLOCK_OPEN, 0}), "block open");
    EXPECT_EQ(writers::trace_text(Break{VW_BREAK_BLOCK_CLOSE, 0}), "block close");
    EXPECT_EQ(writers::trace_text(HeaderFooter{1, 3}), "block header");
    EXPECT_EQ(writers::trace_text(HeaderFooter{2, 3}), "block footer");
}

TEST(TraceText, SpellsUnusualArgumentsOut)
{
    EXPECT_EQ(writers::trace_text(Character{-1}), "char value -1");
    EXPECT_EQ(writers::trace_text(Character{256}), "char value 256");
    EXPECT_EQ(writers::trace_text(SpecialCharacter{'*', 5}), "special 2A * type 5");
    EXPECT_EQ(writers::trace_text(SpecialCharacter{-1, 7}), "special value -1");
    EXPECT_EQ(writers::trace_text(PageBreak{4, 1}), "page-break 4 1");
    EXPECT_EQ(writers::trace_text(AttributeChange{7, 1}), "attribute 7 on");
    EXPECT_EQ(writers::trace_text(AttributeChange{2, 5}), "attribute 2 bold 5");
    EXPECT_EQ(writers::trace_text(Alignment{0}), "alignment 0");
    EXPECT_EQ(writers::trace_text(TabStop{VW_TAB_LEFT, '.', 0, 5}),
              "tab kind 1 alignment 46 leader 0 at 5");
    EXPECT_EQ(writers::trace_text(TabStop{3, 0, 9, 5}), "tab kind 3 alignment 0 leader 9 at 5");
    EXPECT_EQ(writers::trace_text(HeaderFooter{1, 2}), "block kind 1 2");
    EXPECT_EQ(writers::trace_text(HeaderFooter{3, 3}), "block kind 3 3");
    EXPECT_EQ(writers::trace_text(Break{1, 1}), "break 1 1");
    EXPECT_EQ(writers::trace_text(Break{9, 0}), "break 9 0");
    EXPECT_EQ(writers::trace_text(LineSpacing{2, 240, 0, 0}), "spacing 2 240 0 0");
    EXPECT_EQ(writers::trace_text(LineSpacing{1, 240, 0, 7}), "spacing 1 240 0 7");
}

// Every argument can be read back only if no two events share a line.
TEST(TraceText, IsDifferentForDifferentEvents)
{
    std::vector<Event> events = {TabStopsBegin{}, TabStopsEnd{}};
    for (int32_t a = -2; a <= 260; ++a) {
        events.insert(events.end(), {Character{a}, Font{a}, Alignment{a}, SectionStart{a}});
        for (const int32_t b : {-1, 0, 1, 3, 7, 240}) {
            events.insert(events.end(),
                          {SpecialCharacter{a, b}, PageBreak{a, b}, AttributeChange{a, b},
                           Margins{a, b}, HeaderFooter{a, b}, Break{a, b}, Indents{a, b, 0},
                           Indents{b, 0, a}, LineSpacing{a, b, 0, 1}, LineSpacing{1, a, b, 0}});
        }
        const auto half = static_cast<uint16_t>(a);
        events.insert(events.end(), {TabStop{half, 0, 0, 144}, TabStop{4, half, 0, 145},
                                     TabStop{1, 0, half, 146}});
    }
    std::map<std::string, Event> told;
    for (const Event &event : events) {
        const auto [entry, is_new] = told.try_emplace(writers::trace_text(event), event);
        EXPECT_TRUE(is_new || entry->second == event) << entry->first;
    }
    EXPECT_GT(told.size(), 10000U);
}

TEST(TraceText, NamesEachAttributeOnce)
{
    std::set<std::string_view> names;
    for (const AttributeName &entry : attribute_names) {
        EXPECT_TRUE(names.insert(entry.name).second);
        EXPECT_EQ(attribute_name(static_cast<int32_t>(entry.code)), entry.name);
    }
    EXPECT_EQ(attribute_name(0), "");
}

TEST(Trace, NestsTabStops)
{
    EXPECT_EQ(trace({TabStopsBegin{}, TabStop{VW_TAB_LEFT, 0, 0, 1}, TabStopsEnd{}, Font{24}}),
              "tabs\n  tab left 1\ntabs end\nfont 24\n");
}

TEST(Trace, NestsHeaderAndFooterLines)
{
    EXPECT_EQ(
        trace({Break{VW_BREAK_BLOCK_OPEN, 0}, HeaderFooter{1, 3}, Character{'a'},
               Break{VW_BREAK_PARAGRAPH, 0}, Break{VW_BREAK_BLOCK_CLOSE, 0},
               Break{VW_BREAK_END_OF_DOCUMENT, 0}}),
        "block open\n  block header\n  char 61 a\n  break paragraph\nblock close\nbreak end\n");
}

TEST(Trace, SurvivesCloseWithoutOpen)
{
    EXPECT_EQ(trace({TabStopsEnd{}, Break{VW_BREAK_BLOCK_CLOSE, 0}, Font{1}}),
              "tabs end\nblock close\nfont 1\n");
}

TEST(Trace, OffsetsAreTheFirstColumn)
{
    EXPECT_EQ(
        trace({TabStopsBegin{}, TabStop{VW_TAB_LEFT, 0, 0, 1}, TabStopsEnd{}}, {.offsets = true}),
        "     100 tabs\n     101   tab left 1\n     102 tabs end\n");
}

TEST(Trace, FoldJoinsCharacters)
{
    EXPECT_EQ(folded("Dear Sir,"), "text \"Dear Sir,\"\n");
}

TEST(Trace, FoldEscapesWhatCannotBeShown)
{
    EXPECT_EQ(folded("say \"x\\y\"\r\x9B\x7F~"), "text \"say \\\"x\\\\y\\\"\\x0D\\x9B\\x7F~\"\n");
}

TEST(Trace, FoldKeepsCharactersAndSpecialsApart)
{
    EXPECT_EQ(
        trace({Character{'a'}, SpecialCharacter{'*', 7}, SpecialCharacter{'N', 7}, Character{'b'}},
              {.fold = true}),
        "text \"a\"\nspecial \"*N\"\ntext \"b\"\n");
}

TEST(Trace, FoldStopsAtAnyOtherEvent)
{
    EXPECT_EQ(trace({Character{'a'}, AttributeChange{2, 1}, Character{'b'}, Character{'c'},
                     Break{VW_BREAK_PARAGRAPH, 0}},
                    {.fold = true}),
              "text \"a\"\nattribute 2 bold on\ntext \"bc\"\nbreak paragraph\n");
}

TEST(Trace, FoldLeavesOutWhatNoByteCanExpress)
{
    EXPECT_EQ(trace({Character{'a'}, Character{-1}, SpecialCharacter{'b', 1}}, {.fold = true}),
              "text \"a\"\nchar value -1\nspecial 62 b type 1\n");
}

TEST(Trace, FoldKeepsTheOffsetOfTheFirst)
{
    EXPECT_EQ(
        trace({Font{1}, Character{'a'}, Character{'b'}, Font{2}}, {.offsets = true, .fold = true}),
        "     100 font 1\n     101 text \"ab\"\n     103 font 2\n");
}

TEST(Trace, FoldIndentsLikeTheRest)
{
    EXPECT_EQ(trace({Break{VW_BREAK_BLOCK_OPEN, 0}, Character{'a'}, Break{VW_BREAK_BLOCK_CLOSE, 0}},
                    {.fold = true}),
              "block open\n  text \"a\"\nblock close\n");
}

} // namespace

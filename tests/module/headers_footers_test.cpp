// Header and footer lines: their order, their blocks, and the ends that a stop leaves pending.
#include "tests/module/bench.h"

#include "vs_pfs/formatting.h"
#include "vs_pfs/line_readers.h"

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <vector>

namespace {

using namespace tests;
using namespace vs_pfs;

constexpr int header_1 = 0;
constexpr int header_2 = 1;
constexpr int footer_1 = 2;
constexpr int footer_2 = 3;

class HeadersFooters : public ::testing::Test {
protected:
    // Opens a document with these lines, left-aligned and plain.
    Bench &document(const std::map<int, std::string> &lines)
    {
        Patches patches{{822, word(1) + word(1)}};
        for (const auto &[line, text] : lines) {
            patches.push_back(write_header_line(line, text));
        }
        bench = std::make_unique<Bench>(write_document(2, "body", patches));
        EXPECT_TRUE(bench->opens());
        return *bench;
    }
    // One call, with its result after what it reported.
    Calls report(int32_t expected_result)
    {
        const uint32_t position = bench->tell();
        EXPECT_EQ(ProcHeaderFooter(bench->instance), expected_result);
        EXPECT_EQ(bench->tell(), position);
        return bench->take();
    }
    int pending()
    {
        return bench->saved().hfPending;
    }

    std::unique_ptr<Bench> bench;
};

TEST_F(HeadersFooters, OneHeaderLineIsOneBlock)
{
    document({{header_1, "Top"}});
    bench->state().headerAttrs = 0x07;
    EXPECT_TRUE(matches(report(1), "13 6 0 | 12 1 3 | 4 2 1 | 4 4 1 | 4 3 1 | 'Top' | 13 1 0 | "
                                   "4 2 0 | 4 4 0 | 4 3 0 | 13 7 0"));
    EXPECT_EQ(pending(), 0);
    EXPECT_EQ(bench->saved().hfReaderFlag, 0);
}

TEST_F(HeadersFooters, TwoHeaderLinesShareTheirBlock)
{
    document({{header_1, "One"}, {header_2, "Two"}});
    bench->state().headerAttrs = 0x01;
    EXPECT_TRUE(matches(report(1), "13 6 0 | 12 1 3 | 4 4 1 | 'One' | 13 1 0"));
    EXPECT_EQ(pending(), 0x04);
    EXPECT_EQ(bench->saved().hfReaderFlag, 1);
    EXPECT_TRUE(matches(report(1), "4 4 1 | 'Two' | 13 1 0 | 4 4 0 | 13 7 0"));
    EXPECT_EQ(pending(), 0);
    EXPECT_EQ(bench->saved().hfReaderFlag, 0);
}

TEST_F(HeadersFooters, HeaderLineTwoAloneOpensTheBlock)
{
    document({{header_2, "Two"}});
    EXPECT_TRUE(matches(report(1), "13 6 0 | 12 1 3 | 'Two' | 13 1 0 | 13 7 0"));
    EXPECT_EQ(pending(), 0);
}

TEST_F(HeadersFooters, OneFooterLineIsOneBlock)
{
    document({{footer_1, "Foot"}});
    bench->state().footerAttrs = 0x02;
    bench->state().headerAttrs = 0x05;
    EXPECT_TRUE(matches(report(1), "13 6 0 | 12 2 3 | 4 2 1 | 'Foot' | 13 1 0 | 4 2 0 | 13 7 0"));
    EXPECT_EQ(pending(), 0);
}

TEST_F(HeadersFooters, HeadersComeBeforeFooters)
{
    document({{header_1, "H"}, {footer_1, "F"}});
    EXPECT_TRUE(matches(report(1), "13 6 0 | 12 1 3 | 'H' | 13 1 0 | 13 7 0"));
    EXPECT_EQ(pending(), 0x08);
    EXPECT_TRUE(matches(report(1), "13 6 0 | 12 2 3 | 'F' | 13 1 0 | 13 7 0"));
    EXPECT_EQ(pending(), 0);
}

TEST_F(HeadersFooters, FooterLineTwoBringsTwoEmptyHeaderLines)
{
    document({{footer_2, "Last"}});
    EXPECT_TRUE(matches(report(1), "13 6 0 | 12 1 3 | 13 1 0"));
    EXPECT_EQ(pending(), 0x14);
    EXPECT_TRUE(matches(report(1), "13 1 0 | 13 7 0"));
    EXPECT_EQ(pending(), 0x10);
    EXPECT_TRUE(matches(report(1), "13 6 0 | 12 2 3 | 'Last' | 13 1 0 | 13 7 0"));
    EXPECT_EQ(pending(), 0);
}

TEST_F(HeadersFooters, TheEmptyHeaderLinesHaveAttributesAndAlignment)
{
    document({{footer_2, "Last"}});
    bench->state().headerAttrs = 0x02;
    bench->state().headerAlign = 2;
    EXPECT_TRUE(matches(report(1), "13 6 0 | 12 1 3 | 4 2 1 | 6 2 | 13 1 0"));
    EXPECT_TRUE(matches(report(1), "4 2 1 | 6 2 | 13 1 0 | 4 2 0 | 13 7 0"));
}

TEST_F(HeadersFooters, AllFourLines)
{
    document({{header_1, "A"}, {header_2, "B"}, {footer_1, "C"}, {footer_2, "D"}});
    EXPECT_EQ(pending(), 0x1E);
    EXPECT_TRUE(matches(report(1), "13 6 0 | 12 1 3 | 'A' | 13 1 0"));
    EXPECT_EQ(pending(), 0x1C);
    EXPECT_TRUE(matches(report(1), "'B' | 13 1 0 | 13 7 0"));
    EXPECT_EQ(pending(), 0x18);
    EXPECT_TRUE(matches(report(1), "13 6 0 | 12 2 3 | 'C' | 13 1 0"));
    EXPECT_EQ(pending(), 0x10);
    EXPECT_TRUE(matches(report(1), "'D' | 13 1 0 | 13 7 0"));
    EXPECT_EQ(pending(), 0);
}

TEST_F(HeadersFooters, AStopAtTheLastLineEndLeavesTheBlockEndPending)
{
    document({{header_1, "Top"}});
    bench->state().headerAttrs = 0x03;
    bench->stop_at_all();
    EXPECT_TRUE(matches(report(0), "13 6 0 | 12 1 3 | 4 2 1 | 4 4 1 | 'Top' | 13 1 0"));
    EXPECT_EQ(pending(), 0x01);
    EXPECT_TRUE(matches(report(1), "4 2 0 | 4 4 0 | 13 7 0"));
    EXPECT_EQ(pending(), 0);
}

TEST_F(HeadersFooters, AStopWithinABlockLeavesItOpen)
{
    document({{header_1, "One"}, {header_2, "Two"}});
    bench->stop_at_all();
    EXPECT_TRUE(matches(report(0), "13 6 0 | 12 1 3 | 'One' | 13 1 0"));
    EXPECT_EQ(pending(), 0x04);
    EXPECT_TRUE(matches(report(0), "'Two' | 13 1 0"));
    EXPECT_EQ(pending(), 0x01);
    EXPECT_TRUE(matches(report(1), "13 7 0"));
}

TEST_F(HeadersFooters, AStopInTheFooter)
{
    document({{header_1, "A"}, {header_2, "B"}, {footer_1, "C"}, {footer_2, "D"}});
    bench->stop_at_all();
    report(0);
    report(0);
    EXPECT_EQ(pending(), 0x19) << "the owed end goes before the footer";
    EXPECT_TRUE(matches(report(1), "13 7 0"));
    EXPECT_TRUE(matches(report(0), "13 6 0 | 12 2 3 | 'C' | 13 1 0"));
    EXPECT_EQ(pending(), 0x10);
    EXPECT_TRUE(matches(report(0), "'D' | 13 1 0"));
    EXPECT_EQ(pending(), 0x01);
    EXPECT_TRUE(matches(report(1), "13 7 0"));
    EXPECT_EQ(pending(), 0);
}

TEST_F(HeadersFooters, ThePendingEndKeepsThePosition)
{
    document({{header_1, "Top"}});
    bench->checker.expect_foreign_state();
    bench->saved().seekPos = 7;
    bench->saved().hfPending = 0x01;
    report(1);
    EXPECT_EQ(bench->saved().seekPos, 7U);
}

TEST_F(HeadersFooters, ALineRemembersTheBodyPosition)
{
    document({{header_1, "Top"}});
    VwCharSeek(bench->stream, 1027, 0);
    report(1);
    EXPECT_EQ(bench->saved().seekPos, 1027U);
    EXPECT_EQ(bench->tell(), 1027U);
}

TEST_F(HeadersFooters, AnAlignmentOfZeroIsCentred)
{
    document({{header_1, "H"}});
    bench->state().headerAlign = 0;
    EXPECT_TRUE(matches(report(1), "13 6 0 | 12 1 3 | 6 3 | 'H' | 13 1 0 | 13 7 0"));
}

TEST_F(HeadersFooters, AnAlignmentOfOneIsNotReported)
{
    document({{header_1, "H"}});
    EXPECT_TRUE(matches(report(1), "13 6 0 | 12 1 3 | 'H' | 13 1 0 | 13 7 0"));
}

TEST_F(HeadersFooters, AnAlignmentOfTwoIsRight)
{
    document({{footer_1, "F"}});
    bench->state().footerAlign = 2;
    EXPECT_TRUE(matches(report(1), "13 6 0 | 12 2 3 | 6 2 | 'F' | 13 1 0 | 13 7 0"));
}

TEST_F(HeadersFooters, TheReaderResetsTheAlignmentFirst)
{
    document({{header_1, "H"}});
    bench->state().headerAlign = 0;
    EXPECT_TRUE(matches(bench->read(), no_tab_stops + attributes_off +
                                           "11 0 9216 | 7 0 0 0 | 6 1 | 13 6 0 | "
                                           "12 1 3 | 6 3 | 'H' | 13 1 0 | 13 7 0 |" +
                                           line_defaults + "'body' | 13 2 0"));
}

TEST_F(HeadersFooters, OfTheAttributesOnlyThreeAreReported)
{
    document({{header_1, "H"}});
    bench->state().headerAttrs = 0xFA;
    EXPECT_TRUE(matches(report(1), "13 6 0 | 12 1 3 | 4 2 1 | 'H' | 13 1 0 | 4 2 0 | 13 7 0"));
    EXPECT_EQ(bench->saved().hfAttrState, 0xFA);
}

TEST_F(HeadersFooters, TheTextIsNotDecoded)
{
    document({{header_1, bytes("'*N*' C1 05 0D 0E FF 00 20")}});
    EXPECT_TRUE(matches(report(1), "13 6 0 | 12 1 3 | '*N*' | 1 193 | 1 5 | 1 13 | 1 14 | 1 255 | "
                                   "1 0 | ' ' | 13 1 0 | 13 7 0"));
}

TEST_F(HeadersFooters, ALineMayBeAsLongAsItsLengthByte)
{
    document({});
    bench->saved().hfPending = 0x02;
    bench->state().hfLength[0] = 255;
    EXPECT_EQ(report(1).size(), 255U + 4U);
}

TEST_F(HeadersFooters, MissingBytesAreCharactersOfMinusOne)
{
    document({{header_1, "abc"}});
    bench->state().hfTextPos[0] = static_cast<uint32_t>(bench->file.bytes.size() - 1);
    EXPECT_TRUE(matches(report(1), "13 6 0 | 12 1 3 | 'y' | 1 -1 | 1 -1 | 13 1 0 | 13 7 0"));
}

TEST_F(HeadersFooters, ANegativeLengthReportsNoText)
{
    for (const uint16_t length : std::initializer_list<uint16_t>{0xFFFF, 0x8000}) {
        document({});
        bench->saved().hfPending = 0x02;
        bench->state().hfLength[0] = length;
        EXPECT_TRUE(matches(report(1), "13 6 0 | 12 1 3 | 13 1 0 | 13 7 0"));
    }
}

TEST_F(HeadersFooters, TheyAreReportedOncePerDocument)
{
    RecordingHost host(write_document(2, bytes("0D 'a' 0D 0D 'b' 0E"),
                                      {{822, word(1) + word(1)}, write_header_line(0, "Top")}));
    ASSERT_EQ(host.open(), 0);
    host.stop_at(3);
    EXPECT_TRUE(matches(host.read(), no_tab_stops + attributes_off +
                                         "11 0 9216 | 7 0 0 0 | 6 1 | 13 6 0 | 12 1 3 | 'Top' | "
                                         "13 1 0 | 13 7 0 |" +
                                         line_defaults + "'a' | 13 1 0 | 13 1 0"));
    EXPECT_TRUE(matches(host.read(), no_tab_stops + attributes_off + "11 0 9216 |" + line_defaults +
                                         "'b' | 13 2 0"));
}

TEST_F(HeadersFooters, AStopEndsTheReadAndTheNextGoesOn)
{
    RecordingHost host(choice_document(
        '2', bytes("'a' 0E"),
        {{356, "LL"}, choice_header_line(footer_1, "One"), choice_header_line(footer_2, "Two")}));
    ASSERT_EQ(host.open(), 0);
    host.stop_at_all();
    const std::string start = no_tab_stops + attributes_off + "11 0 8640 | 7 0 0 0 | 6 1 |";
    EXPECT_TRUE(matches(host.read(), start + "13 6 0 | 12 1 3 | 13 1 0"));
    EXPECT_TRUE(matches(host.read(), start + "13 1 0"));
    EXPECT_TRUE(
        matches(host.read(), start + "13 7 0 | 7 0 0 0 | 6 1 | 13 6 0 | 12 2 3 | 'One' | 13 1 0"));
    EXPECT_TRUE(matches(host.read(), start + "'Two' | 13 1 0"));
    EXPECT_TRUE(matches(host.read(), start + "13 7 0 |" + line_defaults + "'a' | 13 2 0"));
}

TEST_F(HeadersFooters, AStopSurvivesSaveAndRestore)
{
    const std::string document = choice_document('3', bytes("00 'a' 0E"),
                                                 {{356, "CR"},
                                                  {363, "BU"},
                                                  choice_header_line(header_1, "One"),
                                                  choice_header_line(header_2, "Two"),
                                                  choice_header_line(footer_1, "F")});
    RecordingHost whole(document);
    ASSERT_EQ(whole.open(), 0);
    whole.stop_at_all();
    RecordingHost pieces(document);
    ASSERT_EQ(pieces.open(), 0);
    while (!whole.document_ended) {
        const Place place = pieces.place();
        RecordingHost next(document);
        ASSERT_EQ(next.open(), 0);
        next.stop_at_all();
        next.go_to(place);
        const Calls expected = whole.read();
        EXPECT_EQ(text_of(next.read()), text_of(expected));
        pieces.go_to(next.place());
    }
    EXPECT_EQ(whole.reads, 4U);
}

// A reader is given the stream and makes it the instance's, since the texts are elsewhere in it.
TEST(HeadersFootersStream, IsTheOneThatTheReaderIsGiven)
{
    for (const auto reader :
         {read_pfs_line, read_pfs_12_line, read_choice_line, read_choice3_line}) {
        Bench bench(bytes("0E 'Top'"));
        bench.state().stream = nullptr;
        bench.state().hfTextPos[header_1] = 1;
        bench.state().hfLength[header_1] = 3;
        bench.saved().hfPending = hf_header_1;
        EXPECT_EQ(reader(bench.stream, bench.instance), 0);
        EXPECT_TRUE(matches(after_announcements(bench.take()), "13 2 0"));
        EXPECT_TRUE(bench.state().stream == bench.stream);
    }
}

// The state as saved by a routine while a block is being opened.
VwInstance *asked = nullptr;
std::vector<int> reader_flags;

void note_reader_flag()
{
    SavedState saved;
    VwGetData(&saved, asked);
    reader_flags.push_back(saved.hfReaderFlag);
}

extern "C" int32_t note_at_break(int32_t code, int32_t, uint32_t, uint32_t)
{
    if (code == VW_BREAK_BLOCK_OPEN) {
        note_reader_flag();
    }
    return 0;
}

extern "C" int32_t note_at_block_kind(int32_t, int32_t, uint32_t, uint32_t)
{
    note_reader_flag();
    return 0;
}

TEST_F(HeadersFooters, ABlockIsMarkedOpenBeforeItIsReported)
{
    for (const int first_line : {header_1, footer_1}) {
        document({{first_line, "One"}});
        asked = bench->instance;
        reader_flags.clear();
        VwSetSoRtn(VW_SO_BREAK, reinterpret_cast<VwRoutine>(note_at_break), asked);
        VwSetSoRtn(VW_SO_HEADER_FOOTER, reinterpret_cast<VwRoutine>(note_at_block_kind), asked);
        ProcHeaderFooter(asked);
        EXPECT_EQ(reader_flags, (std::vector<int>{1, 1})) << "line " << first_line;
    }
}

TEST_F(HeadersFooters, ASecondLineThatOpensItsBlockDoesNotMarkIt)
{
    for (const int second_line : {header_2, footer_2}) {
        document({{second_line, "Two"}});
        bench->saved().hfPending = second_line == header_2 ? hf_header_2 : 0x10;
        asked = bench->instance;
        reader_flags.clear();
        VwSetSoRtn(VW_SO_BREAK, reinterpret_cast<VwRoutine>(note_at_break), asked);
        VwSetSoRtn(VW_SO_HEADER_FOOTER, reinterpret_cast<VwRoutine>(note_at_block_kind), asked);
        ProcHeaderFooter(asked);
        EXPECT_EQ(reader_flags, (std::vector<int>{0, 0})) << "line " << second_line;
    }
}

} // namespace

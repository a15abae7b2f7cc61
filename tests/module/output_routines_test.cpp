// Calls out to the host: arguments, user words, the dummy routine, and what must hold of the
// calls of any document.
#include "tests/module/bench.h"
#include "tests/module/rich_documents.h"

#include <gtest/gtest.h>

namespace {

using namespace tests;
using namespace vs_pfs;

template <typename Put> Calls put(Put put_call)
{
    Bench bench("");
    put_call(bench);
    return bench.take();
}

TEST(OutputCalls, CarryTheirOwnArguments)
{
    EXPECT_TRUE(matches(put([](Bench &b) { put_character(b.instance, 255); }), "1 255"));
    EXPECT_TRUE(matches(put([](Bench &b) { put_special_character(b.instance, 32); }), "2 32 7"));
    EXPECT_TRUE(matches(put([](Bench &b) { put_page_break(b.instance); }), "3 4 0"));
    EXPECT_TRUE(matches(put([](Bench &b) { put_attribute(b.instance, 11, true); }), "4 11 1"));
    EXPECT_TRUE(matches(put([](Bench &b) { put_attribute(b.instance, 2, false); }), "4 2 0"));
    EXPECT_TRUE(matches(put([](Bench &b) { put_font(b.instance); }), "5 24"));
    EXPECT_TRUE(matches(put([](Bench &b) { put_alignment(b.instance, VW_ALIGN_CENTRE); }), "6 3"));
    EXPECT_TRUE(matches(put([](Bench &b) { put_indents(b.instance, 3, 5); }), "7 432 0 720"));
    EXPECT_TRUE(matches(put([](Bench &b) {
                            put_tab_stops_begin(b.instance);
                            put_tab_stop(b.instance, {4, 46, 0, 0, 288});
                            put_tab_stops_end(b.instance);
                        }),
                        "8 | 10 4 46 0 288 | 9"));
    EXPECT_TRUE(matches(put([](Bench &b) {
                            b.saved().leftMargin = 0xFFFE;
                            b.saved().rightMargin = 70;
                            put_margins(b.instance);
                        }),
                        "11 -288 10080"));
    EXPECT_TRUE(matches(put([](Bench &b) {
                            put_break(b.instance, VW_BREAK_BLOCK_OPEN);
                            put_header_footer_kind(b.instance, footer_block);
                        }),
                        "13 6 0 | 12 2 3"));
    EXPECT_TRUE(matches(put([](Bench &b) { put_section_start(b.instance); }), "26 0"));
    EXPECT_TRUE(matches(put([](Bench &b) { put_line_spacing(b.instance, 480); }), "46 1 480 0 0"));
}

TEST(OutputCalls, GoThroughTheSlotOfTheirId)
{
    EXPECT_EQ(output_slot(14), 15);
    EXPECT_EQ(output_slot(15), 13);
    EXPECT_EQ(output_slot(16), 14);
    for (int id = 1; id <= VW_OUTPUT_ROUTINES; ++id) {
        if (id < 14 || id > 16) {
            EXPECT_EQ(output_slot(id), id - 1);
        }
    }
}

TEST(OutputCalls, OfTheDummyAnswerWithTheirFirstArgument)
{
    Bench bench("");
    bench.unregister(VW_SO_BREAK);
    for (const VwBreak code : {VW_BREAK_PARAGRAPH, VW_BREAK_END_OF_DOCUMENT, VW_BREAK_BLOCK_OPEN,
                               VW_BREAK_BLOCK_CLOSE}) {
        EXPECT_EQ(put_break(bench.instance, code), code);
    }
    EXPECT_TRUE(put_paragraph_end(bench.instance));
    EXPECT_TRUE(bench.take().empty());
}

TEST(OutputCalls, OnlyTheAnswerOneEndsARead)
{
    Bench bench("");
    EXPECT_FALSE(put_paragraph_end(bench.instance));
    bench.stop_at_all();
    EXPECT_TRUE(put_paragraph_end(bench.instance));
}

uint32_t first_word;
uint32_t second_word;

extern "C" int32_t note_user_words(int32_t, uint32_t user1, uint32_t user2)
{
    first_word = user1;
    second_word = user2;
    return 0;
}

TEST(OutputCalls, EndWithTheUserWordsUnchanged)
{
    Bench bench("");
    VwSetSoRtn(VW_SO_FONT, reinterpret_cast<VwRoutine>(note_user_words), bench.instance);
    VwSetUser(0xFFFFFFFF, 0x80000001, bench.instance);
    put_font(bench.instance);
    EXPECT_EQ(first_word, 0xFFFFFFFFU);
    EXPECT_EQ(second_word, 0x80000001U);
}

// ------------------------------------------------------------------ any document

class AnyDocument : public ::testing::TestWithParam<NamedDocument> {};

Calls read_whole(const std::string &document)
{
    RecordingHost host(document);
    EXPECT_EQ(host.open(), 0);
    return host.read_all();
}

// Calls without those that a stop may add or omit: announcements, and indents set to none.
Calls without_resets(const Calls &calls)
{
    Calls kept;
    for (const Call &call : calls) {
        const bool reset =
            call.id == VW_SO_INDENTS && call.arguments == std::array<int32_t, 4>{0, 0, 0, 0};
        if (!reset) {
            kept.push_back(call);
        }
    }
    return kept;
}

TEST_P(AnyDocument, CallsNoRoutineThatIsNotDocumented)
{
    RecordingHost host(GetParam().bytes); // registers a failing routine for all others
    ASSERT_EQ(host.open(), 0);
    EXPECT_EQ(host.section(), 0);
    EXPECT_GT(host.read_all().size(), 100U);
}

TEST_P(AnyDocument, IsReadAlikeHoweverFewBytesTheHostHandsOut)
{
    const std::string expected = text_of(read_whole(GetParam().bytes));
    for (const uint32_t most : {1U, 2U, 3U, 4U, 5U, 2048U}) {
        RecordingHost host(GetParam().bytes);
        host.file.most_per_read = most;
        ASSERT_EQ(host.open(), 0);
        EXPECT_EQ(text_of(host.read_all()), expected) << most;
    }
}

TEST_P(AnyDocument, IsReadAlikeWhenStoppedAtEveryParagraphEnd)
{
    RecordingHost host(GetParam().bytes);
    ASSERT_EQ(host.open(), 0);
    host.stop_at_all();
    Calls pieces;
    while (!host.document_ended && host.reads < 1000) {
        const Calls piece = after_announcements(host.read());
        pieces.insert(pieces.end(), piece.begin(), piece.end());
    }
    EXPECT_EQ(text_of(without_resets(pieces)),
              text_of(without_resets(after_announcements(read_whole(GetParam().bytes)))));
}

TEST_P(AnyDocument, IsReadAlikeWhenResumedInAnotherInstanceAtEveryParagraphEnd)
{
    RecordingHost whole(GetParam().bytes);
    ASSERT_EQ(whole.open(), 0);
    whole.stop_at_all();
    Place place = whole.place();
    while (!whole.document_ended && whole.reads < 1000) {
        RecordingHost next(GetParam().bytes);
        ASSERT_EQ(next.open(), 0);
        next.stop_at_all();
        next.go_to(place);
        const std::string resumed = text_of(next.read());
        place = next.place();
        EXPECT_EQ(resumed, text_of(whole.read()));
    }
    EXPECT_GT(whole.reads, 6U);
}

TEST_P(AnyDocument, IsReadToItsEndWithoutAnyRoutine)
{
    RecordingHost host(GetParam().bytes);
    ASSERT_EQ(host.open(), 0);
    for (int32_t id = 1; id <= VW_OUTPUT_ROUTINES; ++id) {
        host.unregister(id);
    }
    RecordingHost stopped(GetParam().bytes);
    ASSERT_EQ(stopped.open(), 0);
    stopped.stop_at_all();
    while (!stopped.document_ended && stopped.reads < 1000) {
        stopped.read();
        EXPECT_TRUE(host.read().empty());
        EXPECT_EQ(VwCharTell(host.stream), VwCharTell(stopped.stream));
    }
}

TEST_P(AnyDocument, EndsOnceHoweverItIsCut)
{
    for (std::size_t size = 0; size < GetParam().bytes.size(); ++size) {
        for (const bool stop : {false, true}) {
            RecordingHost host(GetParam().bytes.substr(0, size));
            if (host.open() != 0) {
                continue;
            }
            if (stop) {
                host.stop_at_all();
            }
            const Calls calls = host.read_all();
            EXPECT_EQ(std::count(calls.begin(), calls.end(), Call{VW_SO_BREAK, 2, {2, 0}}), 1)
                << "cut at " << size;
        }
    }
}

TEST_P(AnyDocument, EndsWithAnyByteChanged)
{
    for (std::size_t i = 0; i < GetParam().bytes.size(); ++i) {
        for (const int flip : {0x80, 0x40, 0x10, 0xFF}) {
            std::string changed = GetParam().bytes;
            changed[i] = static_cast<char>(changed[i] ^ flip);
            RecordingHost host(changed);
            if (host.open() == 0) {
                EXPECT_FALSE(host.read_all().empty());
            }
        }
    }
}

TEST_P(AnyDocument, EndsWhenTheFilesOperationsFail)
{
    for (int operation = 0; operation < 3; ++operation) {
        RecordingHost host(GetParam().bytes);
        ASSERT_EQ(host.open(), 0);
        host.file.most_per_read = 7;
        host.stop_at(4);
        host.read();
        host.file.fail_reads = operation == 0;
        host.file.fail_seeks = operation == 1;
        host.file.fail_tells = operation == 2;
        host.read_all();
    }
}

TEST_P(AnyDocument, KeepsTheStreamsPositionRightAtEveryCall)
{
    // The position never decreases from one body call to the next, and ends after the end byte.
    RecordingHost host(GetParam().bytes);
    ASSERT_EQ(host.open(), 0);
    host.read_all();
    EXPECT_EQ(VwCharTell(host.stream), GetParam().bytes.size());
}

INSTANTIATE_TEST_SUITE_P(OutputCalls, AnyDocument, ::testing::ValuesIn(rich_documents()),
                         [](const auto &document) { return document.param.name; });

} // namespace

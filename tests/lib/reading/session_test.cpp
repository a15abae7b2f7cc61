// A document's events through a session: their types and arguments, offsets, stops,
// exceptions, saved positions, and whole documents read in one call.
#include "lib/reading/session.h"

#include "tests/lib/reading/host_bench.h"

#include <algorithm>
#include <stdexcept>

namespace {

using namespace tests;
using namespace pfsdoc;

template <typename E> bool has(const KeepingSink &sink, const E &event)
{
    for (const E &one : sink.all<E>()) {
        if (one == event) {
            return true;
        }
    }
    return false;
}

TEST(Session, GivesEveryEventItsOwnTypeAndArguments)
{
    constexpr std::size_t ruler_kinds = 16;
    constexpr std::size_t ruler_positions = 172;
    const std::string document = write_document("TYPE 2", '2', bytes("0D '  ' C1 01 '*N*' 0D 0E"),
                                                {write_margins(3, 61),
                                                 write_header_line(0, "h"),
                                                 {ruler_kinds, std::string("\x0F\0\x10\0", 4)},
                                                 {ruler_positions, word(5) + word(9)}});
    const KeepingSink sink = read_at_once(document, DocumentKind::write_b);
    EXPECT_EQ(sink.told.front().event, Event(SectionStart{0}));
    EXPECT_TRUE(has(sink, TabStopsBegin{}));
    EXPECT_EQ(sink.all<TabStop>(), (std::vector<TabStop>{{VW_TAB_LEFT, 0, 0, 5 * 144},
                                                         {VW_TAB_DECIMAL, '.', 0, 9 * 144}}));
    EXPECT_TRUE(has(sink, TabStopsEnd{}));
    EXPECT_TRUE(has(sink, Margins{3 * 144, 61 * 144}));
    EXPECT_TRUE(has(sink, HeaderFooter{1, 3}));
    EXPECT_TRUE(has(sink, Break{VW_BREAK_BLOCK_OPEN, 0}));
    EXPECT_TRUE(has(sink, Alignment{VW_ALIGN_CENTRE}));
    EXPECT_TRUE(has(sink, Font{24}));
    EXPECT_TRUE(has(sink, LineSpacing{1, 240, 0, 0}));
    EXPECT_TRUE(has(sink, AttributeChange{4, 1}));
    EXPECT_EQ(sink.all<Character>(), (std::vector<Character>{{'h'}, {'A'}}));
    EXPECT_TRUE(has(sink, PageBreak{4, 0}));
    EXPECT_EQ(sink.all<SpecialCharacter>(),
              (std::vector<SpecialCharacter>{{'*', 7}, {'N', 7}, {'*', 7}}));
    EXPECT_TRUE(has(sink, Indents{288, 0, 288}));
    EXPECT_EQ(sink.told.back().event, Event(Break{VW_BREAK_END_OF_DOCUMENT, 0}));
}

TEST(Session, RefusesAFileThatIsNotADocument)
{
    DocumentSession session("no document");
    EXPECT_FALSE(session->open(1013));
}

TEST(Session, NamesTheKindOfTheFileId)
{
    DocumentSession session(write_document(2, bytes("0E")));
    EXPECT_TRUE(session->open(1016));
    EXPECT_EQ(session->kind_name(), "IBM Writing Assistant");
}

TEST(Session, ContinuesAtAParagraphThatIsNotAnsweredWithOne)
{
    DocumentSession session(write_document(2, bytes("0D 'a' 0D 'b' 0D 0E")));
    ASSERT_TRUE(session->open(1013));
    KeepingSink sink;
    sink.answer = 2;
    session->read(sink);
    EXPECT_TRUE(session->ended());
    EXPECT_EQ(sink.all<Break>().size(), 3U);
}

TEST(Session, StopsAtAParagraphThatIsAnsweredWithOne)
{
    DocumentSession session(write_document(2, bytes("0D 'a' 0D 'b' 0D 0E")));
    ASSERT_TRUE(session->open(1013));
    KeepingSink sink;
    sink.answer = 1;
    session->read(sink);
    EXPECT_FALSE(session->ended());
    EXPECT_EQ(sink.told.back().event, Event(Break{VW_BREAK_PARAGRAPH, 0}));
    EXPECT_EQ(session->tell(), write_body_offset + 3);
}

TEST(Session, OffsetsAreThoseOfTheByteAfter)
{
    const KeepingSink sink = read_at_once(write_document(2, bytes("0D 'ab' C3 01 0D 0E")),
                                          DocumentKind::write_b, {reading::Offsets::wanted});
    std::vector<uint32_t> offsets;
    for (const Told &told : sink.told) {
        if (std::holds_alternative<Character>(told.event)) {
            offsets.push_back(told.offset - static_cast<uint32_t>(write_body_offset));
        }
    }
    EXPECT_EQ(offsets, (std::vector<uint32_t>{2, 3, 5}));
    EXPECT_EQ(sink.told.back().offset, write_body_offset + 7);
}

// The words after a '*' are read to recognise the command, and read again to be echoed.
TEST(Session, APageBreakHasTheOffsetAfterItsCommand)
{
    const std::string document = choice_document('2', bytes("'*N*' 0E"));
    const auto told =
        read_at_once(document, DocumentKind::first_choice_2, {reading::Offsets::wanted}).told;
    const auto found = std::find_if(told.begin(), told.end(), [](const Told &one) {
        return std::holds_alternative<PageBreak>(one.event);
    });
    ASSERT_NE(found, told.end());
    EXPECT_EQ(found->offset, choice_body_offset + 3);
    EXPECT_EQ(*(found + 1), (Told{SpecialCharacter{'*', 7}, choice_body_offset + 1}));
}

TEST(Session, OffsetsAreZeroUnlessAskedFor)
{
    const KeepingSink sink =
        read_at_once(write_document(2, bytes("0D 'ab' 0D 0E")), DocumentKind::write_b);
    for (const Told &told : sink.told) {
        EXPECT_EQ(told.offset, 0U);
    }
}

// Writes other events as a bar, so that runs of characters are visible.
class TextSink final : public EventSink {
public:
    int32_t on_event(const Event &event, uint32_t) override
    {
        told.append(std::holds_alternative<Character>(event) ? "?" : "|");
        return 0;
    }
    void on_characters(std::string_view bytes) override
    {
        told.append(bytes);
        ++stretches;
        if (failing) {
            throw std::runtime_error("the sink has had enough");
        }
    }
    std::string told;
    unsigned stretches = 0;
    bool failing = false;
};

TextSink text_of_write_b(std::string_view body, reading::Offsets offsets)
{
    DocumentSession session(write_document(2, bytes(body)), offsets);
    EXPECT_TRUE(session->open(1013));
    TextSink sink;
    session->read(sink);
    return sink;
}

TEST(Session, HandsOnTogetherWhatCameTogether)
{
    const TextSink sink =
        text_of_write_b("0D 'ab' C3 01 'd*N*e' 0D 'f' 0D 0E", reading::Offsets::none);
    EXPECT_EQ(sink.told.substr(sink.told.find('a')), "ab|C|d||||e|f||");
    EXPECT_EQ(sink.stretches, 5U);
}

TEST(Session, PassesOnALongTextCompletelyAndInOrder)
{
    std::string text;
    for (int line = 0; line < 2000; ++line) {
        text += std::to_string(line) + ",";
    }
    const TextSink sink = text_of_write_b("0D '" + text + "' 0D 0E", reading::Offsets::none);
    EXPECT_NE(sink.told.find("|" + text + "|"), std::string::npos);
    EXPECT_LT(sink.stretches, text.size() / 100);
}

TEST(Session, ReportsCharactersOneByOneIfOffsetsAreRequested)
{
    const TextSink sink = text_of_write_b("0D 'ab' 0D 0E", reading::Offsets::wanted);
    EXPECT_NE(sink.told.find("|??|"), std::string::npos);
    EXPECT_EQ(sink.stretches, 0U);
}

TEST(Session, DeliversNoTextAfterAnExceptionHoweverLongItIs)
{
    DocumentSession session(write_document(2, bytes("0D 'x'x9000 0D 0D 'b' 0D 0E")));
    ASSERT_TRUE(session->open(1013));
    TextSink sink;
    sink.failing = true;
    EXPECT_THROW(session->read(sink), std::runtime_error);
    EXPECT_EQ(sink.stretches, 1U);
    sink.failing = false;
    sink.told.clear();
    session->read(sink);
    EXPECT_NE(sink.told.find("|b|"), std::string::npos);
    EXPECT_EQ(sink.told.find('x'), std::string::npos);
}

class ThrowingSink final : public EventSink {
public:
    explicit ThrowingSink(unsigned at) : at_(at) {}
    int32_t on_event(const Event &, uint32_t) override
    {
        if (++events == at_) {
            throw std::runtime_error("the sink has had enough");
        }
        return 0;
    }
    unsigned events = 0;

private:
    unsigned at_;
};

TEST(Session, ThrowsTheSinksExceptionAfterTheRead)
{
    const std::string document = write_document(2, bytes("0D 'a' 0D 'b' 0D 0E"));
    for (const unsigned at : {1U, 5U, 13U}) {
        DocumentSession session(document);
        ASSERT_TRUE(session->open(1013));
        ThrowingSink sink(at);
        EXPECT_THROW(session->read(sink), std::runtime_error);
        EXPECT_EQ(sink.events, at) << "nothing may be delivered after the exception";
        EXPECT_EQ(session->tell(), write_body_offset + 3) << "stopped at the first paragraph";
    }
}

TEST(Session, ReadsOnAfterAnException)
{
    DocumentSession session(write_document(2, bytes("0D 'a' 0D 'b' 0D 0E")));
    ASSERT_TRUE(session->open(1013));
    ThrowingSink throwing(1);
    EXPECT_THROW(session->read(throwing), std::runtime_error);
    KeepingSink sink;
    session->read(sink);
    EXPECT_EQ(sink.all<Character>(), std::vector<Character>{{'b'}});
}

TEST(Session, SavesAndRestoresStateAndPosition)
{
    DocumentSession session(write_document(2, bytes("0D 'a' 0D 'b' 0D 0E")));
    ASSERT_TRUE(session->open(1013));
    const auto state = session->save();
    const uint32_t position = session->tell();
    EXPECT_EQ(position, write_body_offset);
    KeepingSink first;
    session->read(first);
    session->restore(state);
    ASSERT_TRUE(session->seek(position));
    EXPECT_EQ(session->save(), state);
    KeepingSink second;
    session->read(second);
    EXPECT_EQ(first.told, second.told);
}

TEST(Session, SeveralOnOneFileDoNotDisturbEachOther)
{
    const std::string document = write_document(2, bytes("0D 'x'x4000 0D 0D 'y'x4000 0D 0E"));
    const auto source = source_from(document);
    reading::BlockFile file(*source);
    auto one = std::move(reading::Session::create(linked_module(), file.get()).value());
    auto other = std::move(reading::Session::create(linked_module(), file.get()).value());
    ASSERT_TRUE(one->open(1013));
    ASSERT_TRUE(other->open(1013));
    KeepingSink ones;
    KeepingSink others;
    ones.answer = 1;
    others.answer = 1;
    while (!one->ended()) {
        one->read(ones);
        other->read(others);
    }
    EXPECT_EQ(ones.all<Character>().size(), 8000U);
    EXPECT_EQ(ones.told, others.told);
}

TEST(Session, ReadsThroughALoadedModuleAsWell)
{
    const Result<Module> loaded = Module::load(VS_PFS_MODULE_FILE);
    ASSERT_TRUE(loaded.ok()) << loaded.error().what;
    for (const KindExample &example : kind_examples()) {
        const std::string document = document_of(example.kind, bytes(example.body));
        const auto source = source_from(document);
        KeepingSink sink;
        const Status fault = reading::read_document(loaded.value(), *source, example.kind, sink);
        ASSERT_TRUE(fault.ok()) << fault.error().what;
        EXPECT_EQ(sink.told, read_at_once(document, example.kind).told);
    }
}

// Fails at a position, as a damaged disk does.
class FailingSource final : public ByteSource {
public:
    FailingSource(std::string bytes, uint32_t fails_at)
        : bytes_(std::move(bytes)), fails_at_(fails_at)
    {
    }
    std::optional<uint32_t> read_at(uint32_t position, std::span<uint8_t> destination) override
    {
        if (position >= fails_at_) {
            failed_ = true;
            return std::nullopt;
        }
        const auto rest = std::string_view(bytes_).substr(
            position, std::min<std::size_t>(destination.size(), fails_at_ - position));
        std::copy(rest.begin(), rest.end(), destination.begin());
        return static_cast<uint32_t>(rest.size());
    }
    uint32_t size() const override
    {
        return static_cast<uint32_t>(bytes_.size());
    }
    Status failure() const override
    {
        return failed_ ? Status(Error{ErrorKind::input, "is damaged", "copy it"}) : Status();
    }

private:
    std::string bytes_;
    uint32_t fails_at_;
    bool failed_ = false;
};

TEST(ReadDocument, ReportsAReadThatFailed)
{
    FailingSource source(write_document(2, bytes("0D 'x'x3000 0D 0E")), 2048);
    KeepingSink sink;
    const Status fault =
        reading::read_document(linked_module(), source, DocumentKind::write_b, sink);
    ASSERT_FALSE(fault.ok());
    EXPECT_EQ(fault.error().what, "is damaged");
    EXPECT_EQ(sink.all<Character>().size(), 2048 - write_body_offset - 1);
}

TEST(ReadDocument, ReportsThatTheModuleDoesNotRecogniseIt)
{
    const auto source = source_from("no document");
    KeepingSink sink;
    for (const reading::Stops stops :
         {reading::Stops::none, reading::Stops::at_breaks, reading::Stops::for_margins}) {
        const Status fault = reading::read_document(linked_module(), *source, DocumentKind::write_b,
                                                    sink, {reading::Offsets::none, stops});
        ASSERT_FALSE(fault.ok());
        EXPECT_EQ(exit_code(fault.error().kind), 70);
    }
    EXPECT_TRUE(sink.told.empty());
}

TEST(ReadDocument, StoppingAtBreaksChangesNothing)
{
    for (const KindExample &example : kind_examples()) {
        const std::string document =
            document_of(example.kind, bytes(example.body), {header_line(example.kind, 1, "head")});
        const auto at_once =
            read_at_once(document, example.kind, {reading::Offsets::wanted, reading::Stops::none});
        const auto stopped = read_at_once(document, example.kind,
                                          {reading::Offsets::wanted, reading::Stops::at_breaks});
        EXPECT_EQ(at_once.told, stopped.told) << display_name(example.kind);
    }
}

// The example's record sets columns 10 and 47 in the paragraph that ends in "moved".
TEST(ReadDocument, ReportsNewMarginsBeforeTheBreakOfTheirParagraph)
{
    const Event new_margins = Margins{10 * VW_TWIPS_PER_COLUMN, 47 * VW_TWIPS_PER_COLUMN};
    const Event paragraph_end = Break{VW_BREAK_PARAGRAPH, 0};
    for (const KindExample &example : kind_examples()) {
        const std::string document =
            document_of(example.kind, bytes(example.body), {header_line(example.kind, 1, "head")});
        auto told = read_at_once(document, example.kind,
                                 {reading::Offsets::wanted, reading::Stops::for_margins})
                        .told;
        const auto found = std::find_if(told.begin(), told.end(),
                                        [&](const Told &one) { return one.event == new_margins; });
        ASSERT_EQ(found != told.end(),
                  reading::indents_reset(example.kind) == reading::IndentsReset::never);
        if (found != told.end()) {
            EXPECT_EQ((found + 1)->event, paragraph_end);
            told.erase(found);
        }
        EXPECT_EQ(told, read_at_once(document, example.kind, {reading::Offsets::wanted}).told);
    }
}

// A sink that requests a stop gets it, and the caller is informed.
TEST(ReadDocument, ReportsThatItEndedEarly)
{
    const auto source = source_from(write_document(2, bytes("0D 'a' 0D 'b' 0D 0E")));
    KeepingSink sink;
    sink.answer = 1;
    const Status fault =
        reading::read_document(linked_module(), *source, DocumentKind::write_b, sink);
    ASSERT_FALSE(fault.ok());
    EXPECT_NE(fault.error().what.find("before the document's end"), std::string::npos);
}

} // namespace

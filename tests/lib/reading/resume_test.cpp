// A document read with a stop at every paragraph break gives what a single read gives: for
// examples that show each rule, for all combinations of header and footer lines, and for
// documents made at random and cut anywhere.
#include "lib/reading/resume.h"

#include "lib/writers/trace.h"
#include "tests/lib/reading/host_bench.h"

#include <random>

namespace {

using namespace tests;
using namespace pfsdoc;

// Counts the reads, by the stops that were requested.
class CountingSink final : public EventSink {
public:
    explicit CountingSink(EventSink &sink) : sink_(sink) {}
    int32_t on_event(const Event &event, uint32_t offset) override
    {
        const int32_t answer = sink_.on_event(event, offset);
        stops += answer == 1 ? 1 : 0;
        return answer;
    }
    unsigned stops = 0;

private:
    EventSink &sink_;
};

std::string lines_of(const std::vector<Told> &told)
{
    StringOutput output;
    writers::TraceWriter writer(output, {true, false});
    for (const Told &one : told) {
        writer.on_event(one.event, one.offset);
    }
    writer.finish();
    return output.text;
}

// Where two streams first differ, with what comes before, and nothing if they do not.
::testing::AssertionResult is_same(const std::vector<Told> &at_once,
                                   const std::vector<Told> &stopped)
{
    if (at_once == stopped) {
        return ::testing::AssertionSuccess();
    }
    return ::testing::AssertionFailure() << "at once:\n"
                                         << lines_of(at_once) << "stopped:\n"
                                         << lines_of(stopped);
}

// Reads with stops in the given number of sessions, each on a file of its own.
std::vector<Told> read_stopping(const std::string &document, DocumentKind kind,
                                std::size_t session_count)
{
    std::vector<std::unique_ptr<DocumentSession>> owners;
    std::vector<reading::Session *> sessions;
    for (std::size_t index = 0; index < session_count; ++index) {
        owners.push_back(std::make_unique<DocumentSession>(document, reading::Offsets::wanted));
        sessions.push_back(owners.back()->session.get());
        EXPECT_TRUE(sessions.back()->open(file_id(kind)));
    }
    KeepingSink sink;
    sessions[0]->section(sink);
    reading::Stitcher stitcher(sink, reading::indents_reset(kind));
    EXPECT_TRUE(reading::read_with_stops(sessions, stitcher));
    return sink.told;
}

void expect_resumable(const std::string &document, DocumentKind kind)
{
    const std::vector<Told> at_once = read_at_once(document, kind, {reading::Offsets::wanted}).told;
    for (const std::size_t session_count : {std::size_t{1}, std::size_t{2}, std::size_t{3}}) {
        ASSERT_TRUE(is_same(at_once, read_stopping(document, kind, session_count)))
            << display_name(kind) << " in " << session_count << " sessions";
    }
}

TEST(Resume, GivesTheSameEventsForEachKind)
{
    for (const KindExample &example : kind_examples()) {
        expect_resumable(document_of(example.kind, bytes(example.body)), example.kind);
    }
}

TEST(Resume, StopsAtEveryParagraphBreak)
{
    for (const KindExample &example : kind_examples()) {
        const std::string document = document_of(example.kind, bytes(example.body));
        DocumentSession session(document);
        ASSERT_TRUE(session->open(file_id(example.kind)));
        KeepingSink sink;
        reading::Stitcher stitcher(sink, reading::indents_reset(example.kind));
        CountingSink counter(stitcher);
        unsigned reads = 0;
        for (; !session->ended(); ++reads) {
            if (reads > 0) {
                stitcher.resume();
            }
            session->read(counter);
        }
        EXPECT_EQ(reads, counter.stops + 1);
        EXPECT_GE(counter.stops, 5U) << display_name(example.kind);
    }
}

TEST(Resume, GivesTheSameEventsForAllHeaderAndFooterLines)
{
    for (const KindExample &example : kind_examples()) {
        for (unsigned lines = 0; lines < 16; ++lines) {
            Patches patches;
            for (int line = 0; line < 4; ++line) {
                if ((lines >> line & 1U) != 0) {
                    patches.push_back(header_line(example.kind, line, "line"));
                }
            }
            expect_resumable(document_of(example.kind, bytes(example.body), patches), example.kind);
        }
    }
}

// Attributes of header lines are turned off before a block is closed: the owed close then
// begins with an attribute and not with the break.
TEST(Resume, GivesTheSameEventsForHeaderLinesWithAttributes)
{
    constexpr std::size_t professional_header_attributes = 828;
    constexpr std::size_t professional_footer_attributes = 830;
    constexpr std::size_t choice_styles = 359;
    for (const KindExample &example : kind_examples()) {
        for (unsigned lines = 1; lines < 16; ++lines) {
            Patches patches = {{professional_header_attributes, "\x07"},
                               {professional_footer_attributes, "\x02"}};
            if (is_choice(example.kind)) {
                patches = {{choice_styles, "UBxxBU"}};
            }
            for (int line = 0; line < 4; ++line) {
                if ((lines >> line & 1U) != 0) {
                    patches.push_back(header_line(example.kind, line, "x"));
                }
            }
            expect_resumable(document_of(example.kind, bytes(example.body), patches), example.kind);
        }
    }
}

// The reset that follows an indented paragraph stands right before an empty one's break and
// must not be taken for that paragraph's own indents.
TEST(Resume, KnowsAResetFromAReport)
{
    const std::string document = write_document(2, bytes("0D '  in' 0D 0D 0D 'x' 0D 0E"));
    const KeepingSink at_once = read_at_once(document, DocumentKind::write_b);
    const std::vector<Indents> expected = {{0, 0, 0}, {288, 0, 288}, {0, 0, 0}};
    EXPECT_EQ(at_once.all<Indents>(), expected);
    expect_resumable(document, DocumentKind::write_b);
}

// A resumed read passed on completely would announce everything again.
TEST(Resume, LeavesTheAnnouncementsOut)
{
    const std::string document =
        document_of(DocumentKind::first_choice_2, bytes("'one' 0C 'two' 0C 'three' 0C 0E"));
    DocumentSession session(document);
    ASSERT_TRUE(session->open(file_id(DocumentKind::first_choice_2)));
    KeepingSink raw;
    raw.answer = 1;
    while (!session->ended()) {
        session->read(raw);
    }
    EXPECT_EQ(raw.all<Font>().size(), 4U);
    EXPECT_EQ(raw.all<AttributeChange>().size(), 20U);

    KeepingSink stitched;
    stitched.told = read_stopping(document, DocumentKind::first_choice_2, 1);
    EXPECT_EQ(stitched.all<Font>().size(), 1U);
    EXPECT_EQ(stitched.all<AttributeChange>().size(), 5U);
    EXPECT_EQ(stitched.all<TabStopsBegin>().size(), 1U);
    EXPECT_EQ(stitched.all<Break>().size(), 4U);
}

// A saved position suffices: the session that is resumed has read something else since.
TEST(Resume, ReturnsToAnEarlierPosition)
{
    const std::string document =
        document_of(DocumentKind::write_a, bytes("0D 'one' 0D 'two' 0D 'three' 0D 0E"));
    DocumentSession session(document);
    ASSERT_TRUE(session->open(file_id(DocumentKind::write_a)));
    KeepingSink first;
    first.answer = 1;
    session->read(first);
    const reading::Checkpoint checkpoint = session->checkpoint();
    KeepingSink once;
    session->read(once);
    EXPECT_TRUE(session->ended());
    ASSERT_TRUE(session->go_to(checkpoint));
    EXPECT_FALSE(session->ended());
    KeepingSink again;
    session->read(again);
    EXPECT_EQ(once.told, again.told);
    EXPECT_EQ(once.all<Character>().size(), std::string_view("twothree").size());
}

// Bodies made of what a kind's reader treats specially.
std::string random_body(std::mt19937 &random, const std::vector<std::string> &pieces)
{
    std::uniform_int_distribution<std::size_t> length(0, 60);
    std::uniform_int_distribution<std::size_t> choice(0, pieces.size() - 1);
    std::string body;
    for (std::size_t left = length(random); left > 0; --left) {
        body += pieces[choice(random)];
    }
    return body;
}

std::vector<std::string> pieces_of(DocumentKind kind)
{
    std::vector<std::string> pieces;
    for (const char *notation :
         {"'word'", "'a'", "' '", "'   '", "'long'x12", "'*NEW PAGE*'", "'*N*'", "'*'", "C1 01",
          "C2 06", "C3 4A 06", "A0 00", "FF FF", "0C", "0D", "0D", "07 05 01 03 20", "0E"}) {
        pieces.push_back(bytes(notation));
    }
    const bool is_professional = reading::indents_reset(kind) == reading::IndentsReset::never;
    for (const char *notation : {"00", "01", "02", "03", "01", "03 '  '"}) {
        if (is_professional) {
            pieces.push_back(bytes(notation));
        }
    }
    for (const char *notation :
         {"0D 40 01", "0D 40 01 '  '", "0D 00", "0D 08", "0D 0C 'xxx[ T  ]' 0D"}) {
        if (kind == DocumentKind::first_choice_3) {
            pieces.push_back(bytes(notation));
        }
    }
    return pieces;
}

Patches random_header_lines(std::mt19937 &random, DocumentKind kind)
{
    Patches patches;
    for (int line = 0; line < 4; ++line) {
        if (random() % 3 == 0) {
            patches.push_back(header_line(kind, line, random() % 4 == 0 ? "" : "text"));
        }
    }
    return patches;
}

TEST(Resume, GivesTheSameEventsForDocumentsMadeAtRandom)
{
    std::mt19937 random(20251016);
    for (const KindExample &example : kind_examples()) {
        const std::vector<std::string> pieces = pieces_of(example.kind);
        for (int count = 0; count < 400; ++count) {
            const Patches patches = random_header_lines(random, example.kind);
            const std::string body = random_body(random, pieces);
            expect_resumable(document_of(example.kind, body, patches), example.kind);
            if (HasFatalFailure()) {
                return;
            }
        }
    }
}

TEST(Resume, GivesTheSameEventsForDocumentsCutAnywhere)
{
    for (const KindExample &example : kind_examples()) {
        const std::string document =
            document_of(example.kind, bytes(example.body), {header_line(example.kind, 3, "foot")});
        for (std::size_t size = 700; size <= document.size(); ++size) {
            expect_resumable(document.substr(0, size), example.kind);
            if (HasFatalFailure()) {
                return;
            }
        }
    }
}

} // namespace

// Reading Professional Write with stops for margins: they are made where a record may have been,
// and what is read is the same as with a stop at every paragraph.
#include "lib/reading/margin_records.h"

#include "tests/lib/reading/host_bench.h"

#include <gtest/gtest.h>

#include <array>
#include <random>

namespace {

using namespace pfsdoc;
using namespace tests;

constexpr uint32_t block_size = 2048;

void read_block(ByteSource &source, uint32_t position)
{
    std::array<uint8_t, block_size> block{};
    source.read_at(position, block);
}

TEST(MarginRecordSource, RemembersTheMarksOfAReadAndTheLastOneBefore)
{
    std::string content(3 * block_size, 'a');
    for (const std::size_t at : {5U, 10U, 2 * block_size + 20}) {
        content[at] = '\x07';
        content[at + 2] = '\x01';
    }
    const auto source = source_from(content);
    reading::MarginRecordSource records(*source);
    EXPECT_FALSE(records.may_have_record_in(0, 3 * block_size));
    read_block(records, 0);
    EXPECT_FALSE(records.may_have_record_in(0, 5));
    EXPECT_TRUE(records.may_have_record_in(0, 6));
    EXPECT_FALSE(records.may_have_record_in(6, 10));
    EXPECT_TRUE(records.may_have_record_in(10, 11));
    EXPECT_FALSE(records.may_have_record_in(11, block_size));
    read_block(records, 2 * block_size);
    EXPECT_TRUE(records.may_have_record_in(10, 2 * block_size));
    EXPECT_FALSE(records.may_have_record_in(11, 2 * block_size + 20));
    EXPECT_TRUE(records.may_have_record_in(11, 2 * block_size + 21));
}

TEST(MarginRecordSource, RemembersNoMarkThatSetsNoMargins)
{
    std::string content(2 * block_size, 'a');
    content[5] = content[10] = content[0] = '\x07';
    const auto source = source_from(content);
    reading::MarginRecordSource records(*source);
    read_block(records, 0);
    EXPECT_FALSE(records.may_have_record_in(0, block_size));
}

TEST(MarginRecordSource, RemembersAMarkWhoseTypeHasNotBeenRead)
{
    std::string content(2 * block_size, 'a');
    content[block_size - 2] = content[block_size - 4] = '\x07';
    const auto source = source_from(content);
    reading::MarginRecordSource records(*source);
    read_block(records, 0);
    EXPECT_FALSE(records.may_have_record_in(0, block_size - 2));
    EXPECT_TRUE(records.may_have_record_in(0, block_size));
}

// Asks for the stops that another sink asks for, and counts them; or for all that there can be.
class StopCounter final : public EventSink {
public:
    explicit StopCounter(EventSink &sink) : sink_(sink) {}
    int32_t on_event(const Event &event, uint32_t offset) override
    {
        const int32_t answer = sink_.on_event(event, offset);
        stops += answer;
        return answer;
    }

    int32_t stops = 0;

private:
    EventSink &sink_;
};

enum class WantedStops { at_all_breaks, for_margins };

struct RecordedReading {
    std::vector<Told> events;
    int32_t stops;
};

RecordedReading read_stopping_at(const std::string &document, WantedStops stopping)
{
    constexpr DocumentKind kind = DocumentKind::professional_write_1;
    const auto source = source_from(document);
    reading::MarginRecordSource records(*source);
    reading::BlockFile file(records);
    const auto opened =
        reading::open_session(linked_module(), file, kind, reading::Offsets::wanted);
    reading::Session &session = *opened.value();
    KeepingSink sink;
    reading::Stitcher stitcher(sink, reading::indents_reset(kind),
                               reading::AnnouncedMargins::passed_on_if_changed);
    reading::MarginStops some(stitcher, records, session);
    StopCounter counter(stopping == WantedStops::for_margins ? static_cast<EventSink &>(some)
                                                             : stitcher);
    session.read(counter);
    while (!session.ended()) {
        stitcher.resume();
        session.read(counter);
    }
    return {sink.told, counter.stops};
}

std::string professional_document(const std::string &body, const Patches &patches = {})
{
    return document_of(DocumentKind::professional_write_1, body, patches);
}

TEST(MarginStops, AreMadeWhereARecordMayHaveBeen)
{
    const std::string line(100, 'x');
    std::string lines;
    for (int i = 0; i < 100; ++i) {
        lines += '\x01' + line;
    }
    const std::string end("\x00\x0E", 2);
    EXPECT_EQ(read_stopping_at(professional_document(lines + end), WantedStops::for_margins).stops,
              0);

    const std::string record = bytes("01 07 05 01 0B 30 'moved'");
    const RecordedReading reading = read_stopping_at(
        professional_document(lines + record + lines + end), WantedStops::for_margins);
    EXPECT_EQ(reading.stops, 1);
}

TEST(MarginStops, ChangeNothingThatIsRead)
{
    const std::array<std::string, 10> pieces = {bytes("01"),
                                                bytes("03"),
                                                bytes("00"),
                                                bytes("07 05 01 0B 30"),
                                                bytes("07 05 01 10 20"),
                                                bytes("C1 07"),
                                                bytes("'text '"),
                                                bytes("'x'x700"),
                                                bytes("07"),
                                                bytes("'*N*'")};
    std::mt19937 random(7);
    int32_t all_stops = 0;
    int32_t stops = 0;
    for (int i = 0; i < 400; ++i) {
        std::string body = bytes("01");
        for (std::size_t count = random() % 80; count > 0; --count) {
            // Records are rare in some of them.
            const std::string &piece = pieces[random() % pieces.size()];
            body += piece.find('\x07') != std::string::npos && i % 3 != 0 && random() % 8 != 0
                        ? pieces[6]
                        : piece;
        }
        Patches patches;
        for (int line = 0; line < 4; ++line) {
            if (random() % 3 == 0) {
                patches.push_back(header_line(DocumentKind::professional_write_1, line, "line"));
            }
        }
        const std::string document = professional_document(body + std::string("\x0E"), patches);
        const RecordedReading expected = read_stopping_at(document, WantedStops::at_all_breaks);
        const RecordedReading found = read_stopping_at(document, WantedStops::for_margins);
        ASSERT_EQ(found.events, expected.events) << i;
        all_stops += expected.stops;
        stops += found.stops;
    }
    EXPECT_LT(stops, all_stops);
    EXPECT_GT(stops, 100);
}

} // namespace

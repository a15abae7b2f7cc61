// What a host may do without changing how the document reads: deliver few bytes
// at a time, stop at every break, register no routine for breaks. And what happens to a
// document that is cut short, at every length.
#include "tests/robustness/document_files.h"
#include "tests/support/recording_host.h"

#include <algorithm>
#include <cstddef>

namespace tests {
namespace {

class Reading : public ::testing::TestWithParam<DocumentFile> {};

Calls read_in_pieces(const std::string &document, uint32_t most_per_read)
{
    RecordingHost host(document);
    host.file.keep_log = false;
    host.file.most_per_read = most_per_read;
    EXPECT_EQ(host.open(), 0);
    return host.read_all();
}

TEST_P(Reading, IsTheSameWithFewBytesInEachHostRead)
{
    const std::string document = GetParam().bytes();
    const Calls whole = read_in_pieces(document, UINT32_MAX);
    for (const uint32_t most : {1U, 2U, 3U, 4U, 5U, 2048U}) {
        EXPECT_TRUE(read_in_pieces(document, most) == whole) << most << " bytes at a time";
    }
}

// A document read with a stop at every paragraph end: each read's calls, and the position
// where it began. The position after the last read ends the list.
struct StoppedReading {
    std::vector<Calls> reads;
    std::vector<Place> places;
};

StoppedReading read_with_stops(const std::string &document)
{
    StoppedReading reading;
    RecordingHost host(document);
    host.file.keep_log = false;
    host.stop_at_all();
    EXPECT_EQ(host.open(), 0);
    while (!host.document_ended) {
        reading.places.push_back(host.place());
        reading.reads.push_back(host.read());
    }
    reading.places.push_back(host.place());
    return reading;
}

TEST_P(Reading, GoesOnInASecondInstanceFromEveryBreak)
{
    const std::string document = GetParam().bytes();
    const StoppedReading reading = read_with_stops(document);
    RecordingHost other(document);
    other.file.keep_log = false;
    other.stop_at_all();
    ASSERT_EQ(other.open(), 0);
    for (std::size_t i = reading.reads.size();
         i-- > 0;) { // from the end, so nothing is carried over
        other.go_to(reading.places[i]);
        ASSERT_TRUE(other.read() == reading.reads[i]) << "read " << i;
        ASSERT_EQ(other.place().position, reading.places[i + 1].position);
    }
}

// SODummy replaces the routine and returns its argument, 1, at every paragraph end.
TEST_P(Reading, EndsAtEveryBreakWithoutARoutineForBreaks)
{
    const StoppedReading stopped = read_with_stops(GetParam().bytes());
    RecordingHost host(GetParam().bytes());
    host.file.keep_log = false;
    ASSERT_EQ(host.open(), 0);
    host.unregister(VW_SO_BREAK);
    host.checker.expect_no_breaks();
    for (std::size_t i = 0; i < stopped.reads.size(); ++i) {
        Calls expected = stopped.reads[i];
        std::erase_if(expected, [](const Call &call) { return call.id == VW_SO_BREAK; });
        ASSERT_TRUE(host.read() == expected) << "read " << i;
        ASSERT_EQ(host.place().position, stopped.places[i + 1].position);
    }
}

// How far the text after a line end may influence it: the next line's first word, or the words of
// a command.
constexpr uint32_t farthest_look = 100;

// How many of the reads are finished, and decided, within the first `length` bytes.
std::size_t reads_within(const StoppedReading &whole, std::size_t length)
{
    std::size_t count = 0;
    while (count < whole.reads.size() &&
           whole.places[count + 1].position + farthest_look <= length) {
        ++count;
    }
    return count;
}

// Reads a cut document from its read number `first` on and compares what the cut cannot have
// changed. read_all checks that the end is reported exactly once.
void expect_cut_reads_alike(const StoppedReading &whole, const std::string &cut, std::size_t first)
{
    RecordingHost host(cut);
    host.file.keep_log = false;
    host.stop_at_all();
    if (host.open() != 0) {
        return; // cut before its signature
    }
    if (first > 0) {
        host.go_to(whole.places[first]);
    }
    for (std::size_t i = first; i < reads_within(whole, cut.size()); ++i) {
        ASSERT_TRUE(host.read() == whole.reads[i]) << "cut at " << cut.size() << ", read " << i;
    }
    if (!host.document_ended) {
        host.read_all();
    }
}

TEST_P(Reading, EndsWhereTheDocumentIsCutAtEveryLength)
{
    const std::string document = GetParam().bytes();
    const StoppedReading whole = read_with_stops(document);
    for (std::size_t length = 0; length < document.size(); ++length) {
        // The reads before the last finished one have been compared at shorter lengths.
        const std::size_t finished = reads_within(whole, length);
        expect_cut_reads_alike(whole, document.substr(0, length), finished > 0 ? finished - 1 : 0);
        if (HasFatalFailure()) {
            return;
        }
    }
}

TEST_P(Reading, EndsWhereTheDocumentIsCutReadFromItsStart)
{
    const std::string document = GetParam().bytes();
    const StoppedReading whole = read_with_stops(document);
    constexpr std::size_t stride = 101; // a prime, so that cuts fall anywhere in a line
    for (std::size_t length = 0; length < document.size(); length += stride) {
        expect_cut_reads_alike(whole, document.substr(0, length), 0);
    }
}

INSTANTIATE_TEST_SUITE_P(Samples, Reading, ::testing::ValuesIn(sample_files()),
                         [](const auto &file) { return file.param.name; });

} // namespace
} // namespace tests

// The documents of tests/documents: each gives the trace that its file says, and is read
// the same however it is delivered, stopped and resumed. support/test_document.h describes their
// form; one is run by its name, as in
//   document_tests --gtest_filter='*swallowed_first_return'
#include "lib/reading/read_document.h"
#include "lib/writers/trace.h"
#include "tests/support/recording_host.h"
#include "tests/support/test_document.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

namespace tests {
namespace {

std::vector<std::string> lines_of(const std::string &text)
{
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

using Lines = std::vector<std::string>;

// The length of the longest run of common lines from each pair of positions: a table of
// (expected.size() + 1) rows.
std::vector<std::vector<std::size_t>> common_lengths(const Lines &expected, const Lines &actual)
{
    std::vector<std::vector<std::size_t>> length(expected.size() + 1,
                                                 std::vector<std::size_t>(actual.size() + 1));
    for (std::size_t i = expected.size(); i-- > 0;) {
        for (std::size_t j = actual.size(); j-- > 0;) {
            length[i][j] = expected[i] == actual[j] ? length[i + 1][j + 1] + 1
                                                    : std::max(length[i + 1][j], length[i][j + 1]);
        }
    }
    return length;
}

// What differs, with the line numbers of both: - is expected and missing, + came instead.
std::string difference(const Lines &expected, const Lines &actual)
{
    const auto length = common_lengths(expected, actual);
    std::ostringstream text;
    std::size_t i = 0;
    std::size_t j = 0;
    while (i < expected.size() || j < actual.size()) {
        if (i < expected.size() && j < actual.size() && expected[i] == actual[j]) {
            ++i;
            ++j;
        } else if (j == actual.size() ||
                   (i < expected.size() && length[i + 1][j] >= length[i][j + 1])) {
            text << "- " << i + 1 << ": " << expected[i] << '\n';
            ++i;
        } else {
            text << "+ " << j + 1 << ": " << actual[j] << '\n';
            ++j;
        }
    }
    return text.str();
}

std::string trace_of(const std::string &bytes, bool stop_at_breaks)
{
    pfsdoc::MemorySource source({bytes.begin(), bytes.end()});
    const auto module = pfsdoc::Module::linked();
    const auto identity = pfsdoc::identify(source);
    if (!module.ok() || !identity.ok()) {
        return "not recognised\n";
    }
    pfsdoc::StringOutput output;
    pfsdoc::writers::TraceOptions trace_options;
    trace_options.fold = true;
    pfsdoc::writers::TraceWriter writer(output, trace_options);
    pfsdoc::reading::ReadOptions read_options;
    read_options.stops =
        stop_at_breaks ? pfsdoc::reading::Stops::at_breaks : pfsdoc::reading::Stops::none;
    const pfsdoc::Status fault = pfsdoc::reading::read_document(
        module.value(), source, identity.value().kind, writer, read_options);
    // Some lack their end on purpose.
    EXPECT_TRUE(fault.ok() || fault.error().kind == pfsdoc::ErrorKind::damaged)
        << fault.error().what;
    writer.finish();
    return output.text;
}

class Document : public ::testing::TestWithParam<std::filesystem::path> {
protected:
    TestDocument document = read_test_document(GetParam());
};

TEST_P(Document, GivesItsTrace)
{
    const std::string actual = trace_of(document.bytes, false);
    EXPECT_TRUE(actual == document.trace) << difference(lines_of(document.trace), lines_of(actual));
}

TEST_P(Document, GivesItsTraceStoppedAndResumedAtEveryBreak)
{
    const std::string actual = trace_of(document.bytes, true);
    EXPECT_TRUE(actual == document.trace) << difference(lines_of(document.trace), lines_of(actual));
}

TEST_P(Document, IsReadAlikeHoweverFewBytesTheHostHandsOut)
{
    RecordingHost whole(document.bytes);
    ASSERT_EQ(whole.open(), 0);
    const std::string expected = text_of(whole.read_all());
    for (const uint32_t most : {1U, 2U, 3U, 4U, 5U, 2048U}) {
        RecordingHost host(document.bytes);
        host.file.most_per_read = most;
        ASSERT_EQ(host.open(), 0);
        EXPECT_EQ(text_of(host.read_all()), expected) << most;
    }
}

TEST_P(Document, EndsOnceHoweverItIsCut)
{
    for (std::size_t size = 0; size < document.bytes.size(); ++size) {
        RecordingHost host(document.bytes.substr(0, size));
        if (host.open() == 0) {
            const Calls calls = host.read_all();
            EXPECT_EQ(std::count(calls.begin(), calls.end(), Call{VW_SO_BREAK, 2, {2, 0}}), 1)
                << "cut at " << size;
        }
    }
}

TEST_P(Document, IsReadAlikeFromEveryParagraphEndInASecondInstance)
{
    RecordingHost whole(document.bytes);
    ASSERT_EQ(whole.open(), 0);
    whole.stop_at_all();
    RecordingHost second(document.bytes);
    ASSERT_EQ(second.open(), 0);
    second.stop_at_all();
    while (!whole.document_ended) {
        const Place place = whole.place();
        const std::string expected = text_of(whole.read());
        second.go_to(place);
        EXPECT_EQ(text_of(second.read()), expected);
    }
}

TEST_P(Document, EndsEachReadAtAParagraphEndWithoutABreakRoutine)
{
    RecordingHost stopped(document.bytes);
    ASSERT_EQ(stopped.open(), 0);
    stopped.stop_at_all();
    RecordingHost unregistered(document.bytes);
    ASSERT_EQ(unregistered.open(), 0);
    unregistered.unregister(VW_SO_BREAK);
    unregistered.checker.expect_no_breaks();
    while (!stopped.document_ended) {
        stopped.read();
        unregistered.read();
        EXPECT_EQ(VwCharTell(unregistered.stream), VwCharTell(stopped.stream));
    }
}

std::string case_name(const ::testing::TestParamInfo<std::filesystem::path> &info)
{
    std::string name = info.param.stem().string();
    std::replace_if(
        name.begin(), name.end(),
        [](char c) { return std::isalnum(static_cast<unsigned char>(c)) == 0; }, '_');
    return name;
}

INSTANTIATE_TEST_SUITE_P(Documents, Document,
                         ::testing::ValuesIn(test_document_paths(DOCUMENTS_DIRECTORY)), case_name);

} // namespace
} // namespace tests

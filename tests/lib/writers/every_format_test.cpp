// What holds for every format, over samples and over completely damaged documents: the same bytes
// each time, well-formed UTF-8, and no control character that could affect a terminal.
#include "lib/base/printable.h"
#include "lib/writers/trace.h"
#include "pfsdoc/document.h"
#include "pfsdoc/writer.h"

#include "tests/model/documents.h"
#include "tests/model/kinds.h"
#include "tests/model/random.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>

namespace {

using pfsdoc::Document;
using pfsdoc::Format;
using pfsdoc::WriterOptions;

struct Case {
    const Format *format;
    WriterOptions options;
    std::string name;
};

// The library's own formats, each with default options and with everything shown.
std::vector<Case> cases()
{
    std::vector<Case> cases;
    for (const Format *format : pfsdoc::formats()) {
        const std::string name(format->name);
        cases.push_back({format, {}, name});
        WriterOptions options;
        options.commands = options.lines = options.offsets = options.raw_lines = true;
        cases.push_back({format, options, name + "_with_everything"});
        options.page_breaks = options.headers = options.commands = options.raw_lines = false;
        options.wrap = 0;
        cases.push_back({format, options, name + "_with_little"});
    }
    return cases;
}

std::string converted(const Case &test, Document &document)
{
    pfsdoc::StringOutput output;
    if (test.format->make_event_writer != nullptr) {
        const auto writer = test.format->make_event_writer(output, test.options);
        const auto fault = document.read_events(*writer);
        EXPECT_TRUE(fault.ok() || fault.error().kind == pfsdoc::ErrorKind::damaged);
        writer->finish();
        return output.text;
    }
    const auto writer =
        test.format->make_writer(output, {document.kind(), "A<b>\"c"}, test.options);
    EXPECT_TRUE(writer.ok());
    const auto fault = document.read(*writer.value());
    EXPECT_TRUE(fault.ok() || fault.error().kind == pfsdoc::ErrorKind::damaged);
    return output.text;
}

// Only line ends, tabs and the form feeds of plain text may occur unescaped.
bool is_clean(const std::string &text)
{
    std::string without;
    for (const char c : text) {
        if (c != '\n' && c != '\t' && c != '\f') {
            without.push_back(c);
        }
    }
    return pfsdoc::base::printable(without) == without;
}

void expect_sound(const Case &test, const std::string &bytes, const std::string &what)
{
    const std::vector<uint8_t> content(bytes.begin(), bytes.end());
    auto first = Document::from_bytes(content);
    auto second = Document::from_bytes(content);
    if (!first.ok()) {
        return; // too damaged to be a document
    }
    const std::string text = converted(test, first.value());
    EXPECT_EQ(text, converted(test, second.value())) << what;
    EXPECT_TRUE(test.format->is_binary || is_clean(text)) << what;
}

class EveryFormat : public ::testing::TestWithParam<Case> {};

TEST_P(EveryFormat, IsSoundForSamplesCutAnywhere)
{
    std::size_t samples = 0;
    for (const auto &entry : std::filesystem::recursive_directory_iterator(SAMPLES_DIRECTORY)) {
        if (entry.path().filename() != "letter.doc") {
            continue;
        }
        std::ifstream file(entry.path(), std::ios::binary);
        const std::string bytes{std::istreambuf_iterator<char>(file), {}};
        constexpr std::size_t step = 61;
        for (std::size_t size = bytes.size(); size > step; size -= step) {
            expect_sound(GetParam(), bytes.substr(0, size), entry.path().string());
        }
        ++samples;
    }
    EXPECT_EQ(samples, 7U);
}

TEST_P(EveryFormat, IsSoundForDocumentsOfRandomBytes)
{
    constexpr uint64_t documents = 200;
    for (uint64_t number = 1; number <= documents; ++number) {
        tests::model::Random random(number);
        const auto kind = tests::model::all_kinds[number % tests::model::all_kinds.size()];
        expect_sound(GetParam(), tests::model::random_document(kind, random),
                     "document " + std::to_string(number));
    }
}

INSTANTIATE_TEST_SUITE_P(Formats, EveryFormat, ::testing::ValuesIn(cases()),
                         [](const auto &test) { return test.param.name; });

} // namespace

// The samples' committed traces and texts, and the letters' pages, byte for byte. The letters'
// traces have one event per line, for readability; the prose's are folded, which loses nothing, as
// folding.sh shows. scripts/update-goldens rewrites them.
#include "lib/reading/paragraph_collector.h"
#include "lib/reading/read_document.h"
#include "lib/writers/text_writer.h"
#include "lib/writers/trace.h"
#include "pfsdoc/writer.h"
#include "tests/robustness/document_files.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace tests {
namespace {

class Golden : public ::testing::TestWithParam<DocumentFile> {};

template <typename Writer, typename Options>
std::string written(const DocumentFile &file, const Options &options, pfsdoc::reading::Stops stops)
{
    const std::string bytes = file.bytes();
    pfsdoc::MemorySource source({bytes.begin(), bytes.end()});
    const auto module = pfsdoc::Module::linked();
    const auto identity = pfsdoc::identify(source);
    pfsdoc::StringOutput output;
    Writer writer(output, options);
    EXPECT_TRUE(pfsdoc::reading::read_document(module.value(), source, identity.value().kind,
                                               writer, {pfsdoc::reading::Offsets::none, stops})
                    .ok());
    writer.finish();
    return output.text;
}

std::string golden(const DocumentFile &file, const char *extension)
{
    auto path = file.path;
    return file_bytes(path.replace_extension(extension));
}

// The line of the first difference, as a person would look for it.
void expect_same_text(const std::string &actual, const std::string &expected)
{
    const auto difference =
        std::mismatch(actual.begin(), actual.end(), expected.begin(), expected.end());
    const auto line = 1 + std::count(actual.begin(), difference.first, '\n');
    EXPECT_TRUE(actual == expected) << "differs from the golden file in line " << line;
}

TEST_P(Golden, TraceIsAsCommitted)
{
    pfsdoc::writers::TraceOptions options;
    options.fold = GetParam().path.stem() == "prose";
    expect_same_text(
        written<pfsdoc::writers::TraceWriter>(GetParam(), options, pfsdoc::reading::Stops::none),
        golden(GetParam(), ".trace"));
}

TEST_P(Golden, TextIsAsCommitted)
{
    expect_same_text(written<pfsdoc::writers::TextWriter>(GetParam(), pfsdoc::WriterOptions{},
                                                          pfsdoc::reading::Stops::for_margins),
                     golden(GetParam(), ".text"));
}

class GoldenLetter : public ::testing::TestWithParam<DocumentFile> {};

// As `pfsdoc convert` writes it.
std::string converted(const DocumentFile &file, const pfsdoc::Format &format)
{
    const std::string bytes = file.bytes();
    pfsdoc::MemorySource source({bytes.begin(), bytes.end()});
    const auto module = pfsdoc::Module::linked();
    const auto identity = pfsdoc::identify(source);
    const pfsdoc::DocumentKind kind = identity.value().kind;
    pfsdoc::StringOutput output;
    const auto writer = format.make_writer(output, {kind, file.path.filename().string()}, {});
    pfsdoc::reading::ParagraphCollector collector(*writer.value(),
                                                  pfsdoc::reading::line_spacing_rule(kind));
    EXPECT_TRUE(pfsdoc::reading::read_document(
                    module.value(), source, kind, collector,
                    {pfsdoc::reading::Offsets::none, pfsdoc::reading::Stops::for_margins})
                    .ok());
    collector.finish();
    return output.text;
}

TEST_P(GoldenLetter, HtmlIsAsCommitted)
{
    const pfsdoc::Format &html = *pfsdoc::find_format("html");
    expect_same_text(converted(GetParam(), html), golden(GetParam(), ".html"));
}

std::vector<DocumentFile> letters()
{
    std::vector<DocumentFile> files = sample_files();
    std::erase_if(files, [](const DocumentFile &file) { return file.path.stem() != "letter"; });
    return files;
}

INSTANTIATE_TEST_SUITE_P(Samples, GoldenLetter, ::testing::ValuesIn(letters()),
                         [](const auto &file) { return file.param.name; });

INSTANTIATE_TEST_SUITE_P(Samples, Golden, ::testing::ValuesIn(sample_files()),
                         [](const auto &file) { return file.param.name; });

} // namespace
} // namespace tests

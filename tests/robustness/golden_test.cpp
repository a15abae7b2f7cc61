// The samples' committed traces and texts, byte for byte. scripts/update-goldens rewrites them.
#include "document_files.h"
#include "read_document.h"
#include "text_writer.h"
#include "trace.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace tests {
namespace {

class Golden : public ::testing::TestWithParam<DocumentFile> {};

template <typename Writer, typename Options>
std::string written(const DocumentFile &file, const Options &options, pfsdoc::Stops stops)
{
    const std::string bytes = file.bytes();
    pfsdoc::MemorySource source({bytes.begin(), bytes.end()});
    const auto module = pfsdoc::Module::linked();
    const auto identity = pfsdoc::identify(source);
    pfsdoc::StringOutput output;
    Writer writer(output, options);
    EXPECT_FALSE(pfsdoc::read_document(module.value(), source, identity.value().kind, writer,
                                       {pfsdoc::Offsets::none, stops}));
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
    expect_same_text(
        written<pfsdoc::TraceWriter>(GetParam(), pfsdoc::TraceOptions{}, pfsdoc::Stops::none),
        golden(GetParam(), ".trace"));
}

TEST_P(Golden, TextIsAsCommitted)
{
    expect_same_text(written<pfsdoc::TextWriter>(GetParam(), pfsdoc::WriterOptions{},
                                                 pfsdoc::Stops::for_margins),
                     golden(GetParam(), ".text"));
}

INSTANTIATE_TEST_SUITE_P(Samples, Golden, ::testing::ValuesIn(sample_files()),
                         [](const auto &file) { return file.param.name; });

} // namespace
} // namespace tests

// The library's promise: a document read with a stop at every break, each time resumed from the
// saved position in another instance, gives exactly the events of a single read.
#include "lib/reading/read_document.h"
#include "lib/writers/trace.h"
#include "tests/robustness/document_files.h"

#include <gtest/gtest.h>

namespace tests {
namespace {

class Resuming : public ::testing::TestWithParam<DocumentFile> {};

std::string trace(const std::string &bytes, pfsdoc::reading::Stops stops)
{
    pfsdoc::MemorySource source({bytes.begin(), bytes.end()});
    const auto module = pfsdoc::Module::linked();
    const auto identity = pfsdoc::identify(source);
    pfsdoc::StringOutput output;
    pfsdoc::writers::TraceWriter writer(output, {.offsets = true});
    const pfsdoc::reading::ReadOptions options = {pfsdoc::reading::Offsets::wanted, stops};
    EXPECT_TRUE(pfsdoc::reading::read_document(module.value(), source, identity.value().kind,
                                               writer, options)
                    .ok());
    writer.finish();
    return output.text;
}

TEST_P(Resuming, AtEveryBreakGivesTheSameEventsAtTheSameOffsets)
{
    const std::string bytes = GetParam().bytes();
    const std::string whole = trace(bytes, pfsdoc::reading::Stops::none);
    EXPECT_NE(whole.find("break end"), std::string::npos);
    EXPECT_TRUE(trace(bytes, pfsdoc::reading::Stops::at_breaks) == whole);
}

INSTANTIATE_TEST_SUITE_P(Samples, Resuming, ::testing::ValuesIn(sample_files()),
                         [](const auto &file) { return file.param.name; });

} // namespace
} // namespace tests

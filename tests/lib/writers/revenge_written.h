// Events in, the calls that a generator of librevenge gets out: for the tests of RevengeWriter.
#pragma once

#include "lib/reading/paragraph_collector.h"
#include "lib/writers/odf/revenge_writer.h"

#include "tests/lib/reading/typed_events.h"

#include <gtest/gtest.h>

#include <librevenge-generators/librevenge-generators.h>

#include <sstream>
#include <string>

namespace tests {

inline constexpr pfsdoc::reading::LineSpacingRule spacing_rule =
    pfsdoc::reading::LineSpacingRule::at_break;

// The document is of PFS: WRITE A, named "LETTER".
inline pfsdoc::DocumentInfo letter()
{
    return {pfsdoc::DocumentKind::write_a, "LETTER"};
}

inline void tell(librevenge::RVNGTextInterface &generator, const TypedEvents &events,
                 const pfsdoc::WriterOptions &options = {},
                 const pfsdoc::writers::GeneratorTraits &traits = {})
{
    pfsdoc::writers::RevengeWriter writer(generator, letter(), options, traits);
    pfsdoc::reading::ParagraphCollector collector(writer, spacing_rule);
    events.tell(collector);
    collector.finish();
}

// The generator prints what it is told, one call a line, indented by what is open.
inline std::string trace_of(const TypedEvents &events, const pfsdoc::WriterOptions &options = {},
                            const pfsdoc::writers::GeneratorTraits &traits = {})
{
    testing::internal::CaptureStdout();
    {
        librevenge::RVNGRawTextGenerator generator(false);
        tell(generator, events, options, traits);
    }
    return testing::internal::GetCapturedStdout();
}

// The same of what stands on the page: without the calls around it and their indentation.
inline std::string page_of(const TypedEvents &events, const pfsdoc::WriterOptions &options = {},
                           const pfsdoc::writers::GeneratorTraits &traits = {})
{
    std::istringstream trace(trace_of(events, options, traits));
    std::string page;
    for (std::string line; std::getline(trace, line);) {
        if (line.starts_with("    ")) {
            page.append(line.substr(4)).append("\n");
        }
    }
    return page;
}

} // namespace tests

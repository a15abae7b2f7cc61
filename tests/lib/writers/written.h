// Events in, a format's whole output out: for the tests of the writers.
#pragma once

#include "lib/reading/paragraph_collector.h"
#include "pfsdoc/writer.h"

#include "tests/lib/reading/typed_events.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <string_view>

namespace tests {

struct Written {
    std::string text;
    std::vector<pfsdoc::LossEntry> losses;
};

// The document is of PFS: WRITE A, named "LETTER".
inline Written written(std::string_view format, const TypedEvents &events,
                       const pfsdoc::WriterOptions &options = {})
{
    pfsdoc::StringOutput output;
    const pfsdoc::DocumentInfo info{pfsdoc::DocumentKind::write_a, "LETTER"};
    auto writer = pfsdoc::find_format(format)->make_writer(output, info, options);
    if (!writer.ok()) {
        ADD_FAILURE() << writer.error().what;
        return {};
    }
    pfsdoc::reading::ParagraphCollector collector(*writer.value());
    events.tell(collector);
    collector.finish();
    return {output.text, writer.value()->losses().entries()};
}

} // namespace tests

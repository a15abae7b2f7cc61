// What the tests of explained documents share: a document's spans, and their invariants.
#pragma once

#include "lib/explain/explain_json.h"
#include "lib/explain/explain_text.h"
#include "pfsdoc/explain.h"
#include "tests/lib/reading/host_bench.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tests {

class KeepingSpans final : public pfsdoc::SpanSink {
public:
    void span(const pfsdoc::Span &span) override
    {
        spans.push_back(span);
    }

    std::vector<pfsdoc::Span> spans;
};

inline pfsdoc::Span span_with(pfsdoc::SpanKind kind, const std::string &bytes,
                              const std::string &words)
{
    pfsdoc::Span span;
    span.offset = 100;
    span.kind = kind;
    span.bytes = bytes;
    span.words = words;
    return span;
}

// Of a document that may be cut; it must be of a known kind.
inline std::vector<pfsdoc::Span> spans_of(const std::string &document)
{
    const auto source = source_from(document);
    const pfsdoc::Result<pfsdoc::Identity> identity = pfsdoc::identify(*source);
    EXPECT_TRUE(identity.ok());
    if (!identity.ok()) {
        return {};
    }
    KeepingSpans sink;
    const pfsdoc::Status fault =
        pfsdoc::explain(linked_module(), *source, identity.value().kind, sink);
    EXPECT_TRUE(fault.ok() || fault.error().kind == pfsdoc::ErrorKind::damaged)
        << fault.error().what;
    return sink.spans;
}

// One line for each span from a position on: its offset, length, kind and words.
inline std::string summary(const std::vector<pfsdoc::Span> &spans, uint32_t from)
{
    std::string text;
    for (const pfsdoc::Span &span : spans) {
        if (span.offset >= from) {
            text.append(std::to_string(span.offset)).append("+");
            text.append(std::to_string(span.bytes.size())).append(" ");
            text.append(pfsdoc::span_kind_name(span.kind)).append(": ").append(span.words);
            text.append(span.disputed ? " DISPUTED\n" : "\n");
        }
    }
    return text;
}

} // namespace tests

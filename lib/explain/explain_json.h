// Spans as JSON objects for programs, one a line. What does not apply to a span is left out.
// Tests: tests/lib/explain/golden_test.cpp, explain_json_test.cpp.
#pragma once

#include "pfsdoc/code_page.h"
#include "pfsdoc/explain.h"
#include "pfsdoc/output.h"

namespace pfsdoc::explaining {

class ExplainJsonWriter final : public SpanSink {
public:
    // Both must outlive it.
    ExplainJsonWriter(Output &output, const CodePage &code_page)
        : output_(output), code_page_(code_page)
    {
    }

    void span(const Span &span) override;

private:
    Output &output_;
    const CodePage &code_page_;
};

} // namespace pfsdoc::explaining

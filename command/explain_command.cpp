// pfsdoc explain: every byte of a document with what it was read as.
#include "command/commands.h"

#include "command/document_job.h"
#include "lib/explain/explain_json.h"
#include "lib/explain/explain_text.h"
#include "pfsdoc/explain.h"
#include "pfsdoc/reading_stopped.h"

#include <cstdlib>
#include <unistd.h>

namespace pfsdoc::cli {

namespace {

// Colours are for people who look at a terminal and have not asked to be spared.
explaining::Colours wanted_colours(const ExplainRequest &request)
{
    if (request.colours) {
        return *request.colours;
    }
    const char *spared = std::getenv("NO_COLOR");
    const bool to_standard_output =
        request.document.output.empty() || request.document.output == "-";
    const bool shown = to_standard_output && ::isatty(STDOUT_FILENO) == 1;
    return shown && (spared == nullptr || *spared == '\0') ? explaining::Colours::on
                                                           : explaining::Colours::off;
}

std::unique_ptr<SpanSink> make_writer(Output &output, const ExplainRequest &request)
{
    if (request.json) {
        return std::make_unique<explaining::ExplainJsonWriter>(output, *request.code_page);
    }
    return std::make_unique<explaining::ExplainTextWriter>(output, *request.code_page,
                                                           wanted_colours(request));
}

// Passes on what it gets as long as the output takes it: what is not wanted need not be read.
class SpanGuard final : public SpanSink {
public:
    SpanGuard(SpanSink &writer, const base::FileOutput &output) : writer_(writer), output_(output)
    {
    }

    void span(const Span &span) override
    {
        if (output_.failed()) {
            throw ReadingStopped(*output_.failure());
        }
        writer_.span(span);
    }

private:
    SpanSink &writer_;
    const base::FileOutput &output_;
};

Status explain_into(base::FileOutput &output, const Input &input, const ExplainRequest &request)
{
    const std::unique_ptr<SpanSink> writer = make_writer(output, request);
    SpanGuard guard(*writer, output);
    try {
        return explain(input.module, *input.source, input.identity.kind, guard);
    } catch (const ReadingStopped &stopped) {
        return stopped.error();
    }
}

Status run(const ExplainRequest &request)
{
    const Result<Input> input = open_input(request.document);
    if (!input.ok()) {
        return input.error();
    }
    const Result<std::unique_ptr<base::FileOutput>> output = make_output(request.document);
    if (!output.ok()) {
        return output.error();
    }
    const Status fault = explain_into(*output.value(), input.value(), request);
    return settle(*output.value(), fault);
}

} // namespace

int run_explain(const ExplainRequest &request)
{
    const Status fault = run(request);
    return fault ? report(subject_of(request.document.file), *fault) : 0;
}

} // namespace pfsdoc::cli

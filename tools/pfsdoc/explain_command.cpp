// pfsdoc explain: every byte of a document with what it was read as.
#include "commands.h"

#include "document_job.h"
#include "explain.h"
#include "explain_writers.h"

#include <cstdlib>
#include <unistd.h>

namespace pfsdoc {

namespace {

// Colours are for people who look at a terminal and have not asked to be spared.
Colours wanted_colours(const ExplainRequest &request)
{
    if (request.colours) {
        return *request.colours;
    }
    const char *spared = std::getenv("NO_COLOR");
    const bool to_standard_output =
        request.document.output.empty() || request.document.output == "-";
    const bool shown = to_standard_output && ::isatty(STDOUT_FILENO) == 1;
    return shown && (spared == nullptr || *spared == '\0') ? Colours::on : Colours::off;
}

std::unique_ptr<SpanSink> make_writer(Output &output, const ExplainRequest &request)
{
    if (request.json) {
        return std::make_unique<ExplainJsonWriter>(output, *request.code_page);
    }
    return std::make_unique<ExplainTextWriter>(output, *request.code_page, wanted_colours(request));
}

Status explain_job(const Job &job, const ExplainRequest &request)
{
    const std::unique_ptr<SpanSink> writer = make_writer(*job.output, request);
    const Status fault = explain(job.module, *job.source, job.identity.kind, *writer);
    if (fault && fault->kind != ErrorKind::damaged) {
        job.output->flush();
        return fault;
    }
    const Status unwritten = job.output->commit();
    return unwritten ? unwritten : fault;
}

} // namespace

int run_explain(const ExplainRequest &request)
{
    const std::string subject = subject_of(request.document.file);
    const Result<Job> job = begin(request.document);
    if (!job.ok()) {
        return report(subject, job.error());
    }
    const Status fault = explain_job(job.value(), request);
    return fault ? report(subject, *fault) : 0;
}

} // namespace pfsdoc

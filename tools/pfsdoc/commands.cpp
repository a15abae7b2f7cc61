#include "commands.h"

#include "document_job.h"
#include "paragraph_collector.h"
#include "printable.h"
#include "read_document.h"

#include <cstdio>
#include <utility>

namespace pfsdoc {

namespace {

// Reads the job's document into a sink, and lets it finish if all went well, or as well as it
// can with a document that is not whole. What has gone to standard output before any other
// error is out; a named file is not made.
template <typename Finish>
Status convert(const Job &job, EventSink &sink, const ReadOptions &options, Finish finish)
{
    const Status fault = read_document(job.module, *job.source, job.identity.kind, sink, options);
    if (fault && fault->kind != ErrorKind::damaged) {
        job.output->flush();
        return fault;
    }
    finish();
    const Status unwritten = job.output->commit();
    return unwritten ? unwritten : fault;
}

Status convert_events(const Job &job, EventWriter &writer, const ReadOptions &options)
{
    return convert(job, writer, options, [&writer] { writer.finish(); });
}

Status convert_blocks(const Job &job, Writer &writer, Offsets offsets)
{
    ParagraphCollector collector(writer, line_spacing_rule(job.identity.kind));
    return convert(job, collector, {offsets, Stops::for_margins},
                   [&collector] { collector.finish(); });
}

// The name that a document is known by: its file's, without the folders.
std::string title_of(const std::string &file)
{
    return file == "-" ? "" : printable(file.substr(file.rfind('/') + 1));
}

void report_losses(const std::string &subject, const Writer &writer)
{
    for (const LossEntry &entry : writer.losses().entries()) {
        std::string line = "pfsdoc: " + subject + ": not in the output: ";
        line.append(std::to_string(entry.count)).append(" ").append(loss_words(entry.loss));
        static_cast<void>(std::fprintf(stderr, "%s\n", printable(line).c_str()));
    }
}

Status convert_with(const Job &job, const ConvertRequest &request)
{
    const Format &format = *request.format;
    const Offsets offsets =
        format.wants_offsets || request.options.offsets ? Offsets::wanted : Offsets::none;
    if (format.make_event_writer != nullptr) {
        const auto writer = format.make_event_writer(*job.output, request.options);
        return convert_events(job, *writer, {offsets, Stops::none});
    }
    const DocumentInfo info{job.identity.kind, title_of(request.document.file)};
    const auto writer = format.make_writer(*job.output, info, request.options);
    if (!writer.ok()) {
        return writer.error();
    }
    const Status fault = convert_blocks(job, *writer.value(), offsets);
    if (request.report && (!fault || fault->kind == ErrorKind::damaged)) {
        report_losses(subject_of(request.document.file), *writer.value());
    }
    return fault;
}

} // namespace

int report(const std::string &subject, const Error &error)
{
    std::string line = "pfsdoc: ";
    line.append(subject).append(subject.empty() ? "" : ": ").append(error.what);
    line.append(error.remedy.empty() ? "" : "; ").append(error.remedy);
    // Where standard error is gone there is nobody to tell that it is.
    static_cast<void>(std::fprintf(stderr, "%s\n", printable(line).c_str()));
    return exit_code(error.kind);
}

int run_trace(const TraceRequest &request)
{
    const Result<Job> job = begin(request.document);
    if (!job.ok()) {
        return report(subject_of(request.document.file), job.error());
    }
    TraceWriter writer(*job.value().output, request.options);
    const Offsets offsets = request.options.offsets ? Offsets::wanted : Offsets::none;
    const Status fault = convert_events(job.value(), writer,
                                        {offsets, request.stop ? Stops::at_breaks : Stops::none});
    return fault ? report(subject_of(request.document.file), *fault) : 0;
}

int run_convert(const ConvertRequest &request)
{
    const Result<Job> job = begin(request.document);
    if (!job.ok()) {
        return report(subject_of(request.document.file), job.error());
    }
    const Status fault = convert_with(job.value(), request);
    return fault ? report(subject_of(request.document.file), *fault) : 0;
}

int run_print(std::string_view text)
{
    const Result<std::unique_ptr<FileOutput>> output = FileOutput::create("");
    if (!output.ok()) {
        return report("", output.error());
    }
    output.value()->write(text);
    const Status fault = output.value()->commit();
    return fault ? report("", *fault) : 0;
}

} // namespace pfsdoc

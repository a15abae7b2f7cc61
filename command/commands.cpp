#include "command/commands.h"

#include "command/document_job.h"
#include "lib/base/printable.h"
#include "lib/reading/read_document.h"
#include "pfsdoc/document.h"
#include "pfsdoc/reading_stopped.h"

#include <cstdio>
#include <unistd.h>
#include <utility>

namespace pfsdoc::cli {

namespace {

// A document to be read, and where its output goes.
struct Job {
    Document document;
    std::unique_ptr<base::FileOutput> output;
};

// Pass on what they get as long as the output takes it: what is not wanted need not be read.
class BlockGuard final : public BlockSink {
public:
    BlockGuard(Writer &writer, const base::FileOutput &output) : writer_(writer), output_(output) {}

    void paragraph(const Paragraph &paragraph) override
    {
        check(output_);
        writer_.paragraph(paragraph);
    }
    void page_break(uint32_t source) override
    {
        check(output_);
        writer_.page_break(source);
    }
    void block_begin(BlockKind kind) override
    {
        writer_.block_begin(kind);
    }
    void block_end() override
    {
        writer_.block_end();
    }
    void end_of_document() override
    {
        writer_.end_of_document();
    }
    static void check(const base::FileOutput &output)
    {
        if (output.failed()) {
            throw ReadingStopped(*output.failure());
        }
    }

private:
    Writer &writer_;
    const base::FileOutput &output_;
};

class EventGuard final : public EventSink {
public:
    EventGuard(EventWriter &writer, const base::FileOutput &output)
        : writer_(writer), output_(output)
    {
    }

    int32_t on_event(const Event &event, uint32_t offset) override
    {
        BlockGuard::check(output_);
        return writer_.on_event(event, offset);
    }

private:
    EventWriter &writer_;
    const base::FileOutput &output_;
};

// The output is made last: nothing that is wrong with the document may touch it.
Result<Job> begin(const DocumentRequest &request, bool source_offsets)
{
    Result<Input> input = open_input(request);
    if (!input.ok()) {
        return input.error();
    }
    Result<Document> document = Document::from_source(std::move(input.value().source),
                                                      {&input.value().module, source_offsets});
    if (!document.ok()) {
        return document.error();
    }
    Result<std::unique_ptr<base::FileOutput>> output = make_output(request);
    if (!output.ok()) {
        return output.error();
    }
    return Job{std::move(document.value()), std::move(output.value())};
}

Status write_events(Job &job, EventWriter &writer, bool in_steps)
{
    EventGuard guard(writer, *job.output);
    const Status fault = job.document.read_events(guard, in_steps);
    if (reading::is_read_to_end(fault)) {
        writer.finish();
    }
    return settle(*job.output, fault);
}

Status write_blocks(Job &job, Writer &writer)
{
    BlockGuard guard(writer, *job.output);
    const Status fault = job.document.read(guard);
    return settle(*job.output, fault);
}

// The name that a document is known by: its file's, without the folders.
std::string title_of(const std::string &file)
{
    return file == "-" ? "" : base::printable(base::base_name(file));
}

void report_losses(const std::string &subject, const Writer &writer)
{
    for (const LossEntry &entry : writer.losses().entries()) {
        std::string line = "pfsdoc: " + subject + ": not in the output: ";
        line.append(loss_words(entry.loss)).append(" (").append(std::to_string(entry.count));
        line.append(", first at byte ").append(std::to_string(entry.first_source)).append(")");
        static_cast<void>(std::fprintf(stderr, "%s\n", base::printable(line).c_str()));
    }
}

Status convert(Job &job, const ConvertRequest &request)
{
    const Format &format = *request.format;
    if (format.make_event_writer != nullptr) {
        const auto writer = format.make_event_writer(*job.output, request.options);
        return write_events(job, *writer, false);
    }
    const DocumentInfo info{job.document.kind(), title_of(request.document.file)};
    const auto writer = format.make_writer(*job.output, info, request.options);
    if (!writer.ok()) {
        return writer.error();
    }
    Status fault = write_blocks(job, *writer.value());
    if (request.report && reading::is_read_to_end(fault)) {
        report_losses(subject_of(request.document.file), *writer.value());
    }
    return fault;
}

} // namespace

int report(const std::string &subject, const Error &error)
{
    std::string line = "pfsdoc: ";
    line.append(subject).append(subject.empty() ? "" : ": ").append(error.what);
    if (error.offset) {
        line.append(" (at byte ").append(std::to_string(*error.offset)).append(")");
    }
    line.append(error.remedy.empty() ? "" : "; ").append(error.remedy);
    // Where standard error is gone there is nobody to tell that it is.
    static_cast<void>(std::fprintf(stderr, "%s\n", base::printable(line).c_str()));
    return exit_code(error.kind);
}

int run_trace(const TraceRequest &request)
{
    Result<Job> job = begin(request.document, request.options.offsets);
    if (!job.ok()) {
        return report(subject_of(request.document.file), job.error());
    }
    writers::TraceWriter writer(*job.value().output, request.options);
    const Status fault = write_events(job.value(), writer, request.stop);
    return fault ? report(subject_of(request.document.file), *fault) : 0;
}

int run_convert(const ConvertRequest &request)
{
    const bool to_standard_output =
        request.document.output.empty() || request.document.output == "-";
    if (request.format->is_binary && to_standard_output && ::isatty(STDOUT_FILENO) != 0) {
        return report("", {ErrorKind::usage,
                           std::string(request.format->name) + " is nothing to show on a terminal",
                           "name a file with -o"});
    }
    const bool source_offsets = request.format->wants_offsets || request.options.offsets ||
                                request.options.raw_lines || request.report;
    Result<Job> job = begin(request.document, source_offsets);
    if (!job.ok()) {
        return report(subject_of(request.document.file), job.error());
    }
    const Status fault = convert(job.value(), request);
    return fault ? report(subject_of(request.document.file), *fault) : 0;
}

int run_print(std::string_view text)
{
    const Result<std::unique_ptr<base::FileOutput>> output = base::FileOutput::create("");
    if (!output.ok()) {
        return report("", output.error());
    }
    output.value()->write(text);
    const Status fault = output.value()->commit();
    return fault ? report("", *fault) : 0;
}

} // namespace pfsdoc::cli

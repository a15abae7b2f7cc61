#include "batch/sandboxed/convert_file.h"

#include "batch/sandboxed/checked_source.h"
#include "batch/sandboxed/test_hook.h"
#include "batch/wire/sha256.h"
#include "lib/base/descriptor_output.h"
#include "lib/base/escaped_name.h"
#include "lib/base/transfers.h"
#include "pfsdoc/document.h"
#include "pfsdoc/examine.h"
#include "pfsdoc/reading_stopped.h"

#include <memory>
#include <optional>
#include <utility>

namespace pfsdoc::batch {

namespace {

void stop_if_failed(const base::DescriptorOutput &output)
{
    if (output.failed()) {
        throw ReadingStopped(output.failure().error());
    }
}

// Counts blocks on their way to the writer, and stops where the output takes no more.
class CountingSink final : public BlockSink {
public:
    CountingSink(Writer &writer, const base::DescriptorOutput &output)
        : writer_(writer), output_(output)
    {
    }

    void paragraph(const Paragraph &paragraph) override
    {
        stop_if_failed(output_);
        ++*kind_;
        for (const Piece &piece : paragraph.pieces) {
            const bool is_text = piece.kind == PieceKind::text;
            counts.characters += is_text ? paragraph.piece_bytes(piece).size() : 0;
            counts.page_breaks += piece.kind == PieceKind::page_break ? 1 : 0;
        }
        writer_.paragraph(paragraph);
    }
    void page_break(uint32_t source) override
    {
        stop_if_failed(output_);
        ++counts.page_breaks;
        writer_.page_break(source);
    }
    void block_begin(BlockKind kind) override
    {
        kind_ = kind == BlockKind::header ? &counts.header_lines : &counts.footer_lines;
        writer_.block_begin(kind);
    }
    void block_end() override
    {
        kind_ = &counts.paragraphs;
        writer_.block_end();
    }
    void after_end(const AfterEnd &rest) override
    {
        writer_.after_end(rest);
    }
    void end_of_document() override
    {
        writer_.end_of_document();
    }

    BlockCounts counts;

private:
    Writer &writer_;
    const base::DescriptorOutput &output_;
    uint64_t *kind_ = &counts.paragraphs; // of the paragraphs that come
};

class GuardedEvents final : public EventSink {
public:
    GuardedEvents(EventWriter &writer, const base::DescriptorOutput &output)
        : writer_(writer), output_(output)
    {
    }

    int32_t on_event(const Event &event, uint32_t offset) override
    {
        stop_if_failed(output_);
        return writer_.on_event(event, offset);
    }

private:
    EventWriter &writer_;
    const base::DescriptorOutput &output_;
};

Status write_blocks(Document &document, const DocumentInfo &info, base::DescriptorOutput &output,
                    const ConversionSettings &settings, Outcome &outcome)
{
    const auto writer = settings.format->make_writer(output, info, settings.options);
    if (!writer.ok()) {
        return writer.error();
    }
    CountingSink sink(*writer.value(), output);
    Status fault = document.read(sink);
    if (fault.ok() || fault.error().kind == ErrorKind::damaged) {
        outcome.has_counts = 1;
        outcome.counts = sink.counts;
        for (const LossEntry &entry : writer.value()->losses().entries()) {
            outcome.losses[static_cast<std::size_t>(entry.loss)] = entry.count;
        }
    }
    return fault;
}

Status write_events(Document &document, base::DescriptorOutput &output,
                    const ConversionSettings &settings)
{
    const auto writer = settings.format->make_event_writer(output, settings.options);
    GuardedEvents sink(*writer, output);
    Status fault = document.read_events(sink);
    if (fault.ok() || fault.error().kind == ErrorKind::damaged) {
        writer->finish();
    }
    return fault;
}

// Of a document that has been read to its end.
void note_after_end(Document &document, Outcome &outcome)
{
    const Result<std::optional<AfterEnd>> rest = document.after_end();
    if (rest.ok() && rest.value()) {
        outcome.after_end_offset = rest.value()->offset;
        outcome.after_end_bytes = rest.value()->bytes;
    }
}

Status write_document(Document &document, std::string_view title, base::DescriptorOutput &output,
                      const ConversionSettings &settings, Outcome &outcome)
{
    const DocumentInfo info{document.kind(), base::escaped_name(title)};
    const Status fault = settings.format->make_event_writer != nullptr
                             ? write_events(document, output, settings)
                             : write_blocks(document, info, output, settings, outcome);
    if (fault.ok()) {
        note_after_end(document, outcome);
    }
    output.flush();
    // Where the output has failed, that is why the reading ended.
    const Status unwritten = output.failure();
    return unwritten.ok() ? fault : unwritten;
}

// A temporary file that cannot be written is no reason to end the run, as an output is: other
// files may need none.
FileStatus status_of(const Error &fault, const base::DescriptorOutput &output)
{
    return fault.kind == ErrorKind::output && !output.failed() ? FileStatus::internal
                                                               : batch::status_of(fault.kind);
}

void finish(const Status &fault, const base::DescriptorOutput &output, Sha256 &sum,
            Outcome &outcome)
{
    outcome.status = fault.ok() ? FileStatus::converted : status_of(fault.error(), output);
    if (!fault.ok()) {
        outcome.set_error(fault.error());
    }
    outcome.system_error = output.error_number();
    if (outcome.status == FileStatus::unreadable) {
        outcome.has_input_digest = 0; // of what is no longer there, or not all of it
    }
    if (has_output(outcome.status)) {
        outcome.output_size = output.size();
        outcome.output_digest = sum.finish();
    } else {
        outcome.has_counts = 0;
        outcome.losses = {};
        outcome.after_end_offset = no_offset;
        outcome.after_end_bytes = 0;
    }
}

bool is_unchanged(const Job &job, const Digest &input, int earlier_output)
{
    return job.has_earlier != 0 && input == job.earlier_input &&
           (job.has_earlier_output == 0 || digest_of_file(earlier_output) == job.earlier_output);
}

Status convert(std::unique_ptr<CheckedSource> owned, const Job &job, base::DescriptorOutput &output,
               const ConversionSettings &settings, Outcome &outcome)
{
    if (job.size >= input_size_limit) {
        return too_large();
    }
    CheckedSource &source = *owned; // the document's from now on
    run_test_hook(source, output);
    const bool offsets = settings.format->wants_offsets || settings.options.raw_lines;
    Result<Document> document = Document::from_source(std::move(owned), {settings.module, offsets});
    if (!document.ok()) {
        return document.error();
    }
    const DocumentKind kind = document.value().kind();
    outcome.kind = static_cast<int32_t>(kind);
    outcome.confidence = static_cast<int32_t>(examine(source, kind).confidence);
    outcome.basis.set(document.value().identity().basis);
    return write_document(document.value(), job.title.get(), output, settings, outcome);
}

} // namespace

Outcome convert_file(const Job &job, JobFiles files, const ConversionSettings &settings)
{
    Result<std::unique_ptr<CheckedSource>> source =
        CheckedSource::read(std::move(files.input), job.size);
    if (!source.ok()) {
        return failed_outcome(FileStatus::unreadable, source.error());
    }
    Outcome outcome;
    outcome.has_input_digest = 1;
    outcome.input_digest = source.value()->digest();
    if (is_unchanged(job, outcome.input_digest, files.earlier_output.get())) {
        outcome.status = FileStatus::unchanged;
        return outcome;
    }
    Sha256 sum;
    base::DescriptorOutput output(files.output.get(), settings.max_output,
                                  [&sum](std::string_view bytes) { sum.update(bytes); });
    const Status fault = convert(std::move(source.value()), job, output, settings, outcome);
    finish(fault, output, sum, outcome);
    return outcome;
}

} // namespace pfsdoc::batch

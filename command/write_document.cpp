#include "command/write_document.h"

#include "lib/reading/read_document.h"
#include "pfsdoc/reading_stopped.h"

#include <utility>

namespace pfsdoc::cli {

namespace {

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
    void after_end(const AfterEnd &rest) override
    {
        writer_.after_end(rest);
    }
    void end_of_document() override
    {
        writer_.end_of_document();
    }
    static void check(const base::FileOutput &output)
    {
        if (output.failed()) {
            throw ReadingStopped(output.failure().error());
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

} // namespace

Result<Job> begin_job(const Arguments &arguments, bool source_offsets)
{
    Result<Input> input = open_input(arguments);
    if (!input.ok()) {
        return input.error();
    }
    Result<Document> document = Document::from_source(std::move(input.value().source),
                                                      {&input.value().module, source_offsets});
    if (!document.ok()) {
        return document.error();
    }
    Result<std::unique_ptr<base::FileOutput>> output = make_output(arguments);
    if (!output.ok()) {
        return output.error();
    }
    return Job{std::move(document.value()), std::move(output.value())};
}

Status write_blocks(Job &job, Writer &writer)
{
    BlockGuard guard(writer, *job.output);
    return finish(*job.output, job.document.read(guard));
}

Status write_events(Job &job, EventWriter &writer, bool in_steps)
{
    EventGuard guard(writer, *job.output);
    const Status failure = job.document.read_events(guard, in_steps);
    if (reading::is_read_to_end(failure)) {
        writer.finish();
    }
    return finish(*job.output, failure);
}

} // namespace pfsdoc::cli

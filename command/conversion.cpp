#include "command/conversion.h"

#include "lib/reading/read_document.h"
#include "pfsdoc/document.h"
#include "pfsdoc/reading_stopped.h"

#include <utility>

namespace pfsdoc::cli {

namespace {

void stop_if_failed(const base::DescriptorOutput &output)
{
    if (output.failed()) {
        throw ReadingStopped(output.failure().error());
    }
}

class BlockGuard final : public BlockSink {
public:
    BlockGuard(Writer &writer, const base::DescriptorOutput &output)
        : writer_(writer), output_(output)
    {
    }

    void paragraph(const Paragraph &paragraph) override
    {
        stop_if_failed(output_);
        writer_.paragraph(paragraph);
    }
    void page_break(uint32_t source) override
    {
        stop_if_failed(output_);
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
        bytes_after_end = rest;
        writer_.after_end(rest);
    }
    void end_of_document() override
    {
        writer_.end_of_document();
    }

    std::optional<AfterEnd> bytes_after_end;

private:
    Writer &writer_;
    const base::DescriptorOutput &output_;
};

class EventGuard final : public EventSink {
public:
    EventGuard(EventWriter &writer, const base::DescriptorOutput &output)
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

Converted write_events(Document &document, const Conversion &conversion,
                       base::DescriptorOutput &output)
{
    const auto writer = conversion.format->make_event_writer(output, conversion.options);
    EventGuard guard(*writer, output);
    Status status = document.read_events(guard, conversion.in_steps);
    if (reading::is_read_to_end(status)) {
        writer->finish();
    }
    return {std::move(status), {}, {}};
}

Converted write_blocks(Document &document, const std::string &title, const Conversion &conversion,
                       base::DescriptorOutput &output)
{
    const auto writer =
        conversion.format->make_writer(output, {document.kind(), title}, conversion.options);
    if (!writer.ok()) {
        return {writer.error(), {}, {}};
    }
    BlockGuard guard(*writer.value(), output);
    Status status = document.read(guard);
    return {std::move(status), writer.value()->losses().entries(), guard.bytes_after_end};
}

} // namespace

Converted convert_document(std::unique_ptr<ByteSource> source, const Module &module,
                           const std::string &title, const Conversion &conversion,
                           base::DescriptorOutput &output)
{
    Result<Document> document =
        Document::from_source(std::move(source), {&module, conversion.source_offsets});
    if (!document.ok()) {
        return {document.error(), {}, {}};
    }
    return conversion.format->make_event_writer != nullptr
               ? write_events(document.value(), conversion, output)
               : write_blocks(document.value(), title, conversion, output);
}

} // namespace pfsdoc::cli

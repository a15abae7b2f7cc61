#include "pfsdoc/document.h"

#include "lib/reading/after_end.h"
#include "lib/reading/block_reader.h"
#include "lib/reading/paragraph_collector.h"
#include "lib/reading/read_document.h"
#include "lib/reading/resume_token.h"
#include "pfsdoc/reading_stopped.h"

#include <utility>

namespace pfsdoc {

namespace {

// A host's own file. Its size is asked for once.
class BlockFileSource final : public ByteSource {
public:
    BlockFileSource(VwBlockFile &file, uint32_t size) : file_(file), size_(size) {}

    std::optional<uint32_t> read_at(uint32_t position, std::span<uint8_t> destination) override
    {
        uint32_t total = 0;
        while (total < destination.size()) {
            const auto rest = destination.subspan(total);
            uint32_t count = 0;
            if (file_.seek(&file_, 0, static_cast<int32_t>(position + total)) != 0 ||
                file_.read(&file_, rest.data(), static_cast<uint32_t>(rest.size()), &count) != 0 ||
                count > rest.size()) {
                failed_ = true;
                return std::nullopt;
            }
            if (count == 0) {
                break;
            }
            total += count;
        }
        return total;
    }
    uint32_t size() const override
    {
        return size_;
    }
    Status failure() const override
    {
        return failed_ ? Status(unreadable()) : Status();
    }
    static Error unreadable()
    {
        return Error{ErrorKind::input, "cannot be read: its block file refuses", ""};
    }

private:
    VwBlockFile &file_;
    uint32_t size_;
    bool failed_ = false;
};

// The margins and tab stops that a document's first read announces.
class PageSetupSink final : public EventSink {
public:
    int32_t on_event(const Event &event, uint32_t) override
    {
        constexpr int32_t stop = 1;
        if (const auto *margins = std::get_if<Margins>(&event)) {
            setup.margins = *margins;
        } else if (const auto *tab_stop = std::get_if<TabStop>(&event)) {
            setup.tab_stops.push_back(*tab_stop);
        }
        return stop; // at the first line end
    }

    PageSetup setup;
};

// For a document that is read for its end alone.
class UnusedEvents final : public EventSink {
public:
    int32_t on_event(const Event &, uint32_t) override
    {
        return 0;
    }
    void on_characters(std::string_view) override {}
};

constexpr uint32_t from_end = 2;

} // namespace

struct Document::State {
    std::unique_ptr<ByteSource> source;
    Module module;
    Identity identity;
    reading::Offsets offsets;
    std::unique_ptr<reading::BlockReader> reader; // null until blocks are asked for
    std::optional<uint32_t> end{}; // behind the end mark, or of a truncated file; unknown at first
    std::optional<AfterEnd> after_end{}; // if the end is known

    Status need_reader()
    {
        if (reader == nullptr) {
            return read_from({});
        }
        return {};
    }
    Status read_from(const reading::BlockPosition &position)
    {
        auto made = reading::BlockReader::create(module, *source, identity.kind, offsets, position);
        if (!made.ok()) {
            const Status failure = source->failure();
            return failure.ok() ? made.error() : failure;
        }
        reader = std::move(made.value());
        return {};
    }
    // Takes what a reading has answered, and looks at what follows the end.
    Status finish_reading(const Result<uint32_t> &found)
    {
        if (end || !reading::is_read_to_end(found)) {
            return found;
        }
        const uint32_t offset = found.ok() ? found.value() : source->size();
        const Result<std::optional<AfterEnd>> rest = reading::find_after_end(*source, offset);
        if (!rest.ok()) {
            return rest;
        }
        end = offset;
        after_end = rest.value();
        return found;
    }
    Result<reading::DocumentMark> mark()
    {
        return reading::document_mark(*source, identity.kind, offsets == reading::Offsets::wanted);
    }
};

Document::Document(std::unique_ptr<State> state) : state_(std::move(state)) {}
Document::Document(Document &&other) noexcept = default;
Document &Document::operator=(Document &&other) noexcept = default;
Document::~Document() = default;

Result<Document> Document::open(const std::string &path, const OpenOptions &options)
{
    Result<std::unique_ptr<ByteSource>> source = open_source(path);
    if (!source.ok()) {
        return source.error();
    }
    return from_source(std::move(source.value()), options);
}

Result<Document> Document::from_bytes(std::vector<uint8_t> bytes, const OpenOptions &options)
{
    if (bytes.size() >= input_size_limit) {
        return too_large();
    }
    return from_source(std::make_unique<MemorySource>(std::move(bytes)), options);
}

Result<Document> Document::from_block_file(VwBlockFile &file, const OpenOptions &options)
{
    uint32_t size = 0;
    if (file.seek(&file, from_end, 0) != 0 || file.tell(&file, &size) != 0) {
        return BlockFileSource::unreadable();
    }
    return from_source(std::make_unique<BlockFileSource>(file, size), options);
}

Result<Document> Document::from_source(std::unique_ptr<ByteSource> source,
                                       const OpenOptions &options)
{
    const Result<Identity> identity = identify(*source);
    if (!identity.ok()) {
        return identity.error();
    }
    const Result<Module> module =
        options.module != nullptr ? Result<Module>(*options.module) : Module::linked();
    if (!module.ok()) {
        return module.error();
    }
    return Document(std::unique_ptr<State>(new State{
        std::move(source), module.value(), identity.value(),
        options.source_offsets ? reading::Offsets::wanted : reading::Offsets::none, nullptr}));
}

DocumentKind Document::kind() const
{
    return state_->identity.kind;
}

const Identity &Document::identity() const
{
    return state_->identity;
}

uint32_t Document::size() const
{
    return state_->source->size();
}

Result<PageSetup> Document::page_setup()
{
    reading::BlockFile file(*state_->source);
    auto session = reading::open_session(state_->module, file, kind(), reading::Offsets::none);
    if (!session.ok()) {
        return session.error();
    }
    PageSetupSink sink;
    session.value()->read(sink);
    const Status failure = state_->source->failure();
    return failure.ok() ? sink.setup : Result<PageSetup>(failure.error());
}

Status Document::read(BlockSink &sink)
{
    reading::ParagraphCollector collector(sink, reading::line_spacing_rule(kind()));
    if (state_->offsets == reading::Offsets::wanted) {
        collector.find_lines(*state_->source, kind());
    }
    try {
        Status fault = state_->finish_reading(
            reading::read_document(state_->module, *state_->source, kind(), collector,
                                   {state_->offsets, reading::Stops::for_margins}));
        if (reading::is_read_to_end(fault)) {
            if (state_->after_end) {
                sink.after_end(*state_->after_end);
            }
            collector.finish();
        }
        return fault;
    } catch (const ReadingStopped &stopped) {
        return stopped.error();
    }
}

Status Document::read_events(EventSink &sink, bool in_steps)
{
    try {
        return state_->finish_reading(reading::read_document(
            state_->module, *state_->source, kind(), sink,
            {state_->offsets, in_steps ? reading::Stops::at_breaks : reading::Stops::none}));
    } catch (const ReadingStopped &stopped) {
        return stopped.error();
    }
}

Result<std::optional<AfterEnd>> Document::after_end()
{
    if (!state_->end && state_->reader != nullptr && state_->reader->end()) {
        if (const Status fault = state_->finish_reading(*state_->reader->end()); !fault.ok()) {
            return fault.error();
        }
    }
    if (!state_->end) {
        UnusedEvents sink;
        if (const Status fault = read_events(sink); !reading::is_read_to_end(fault)) {
            return fault.error();
        }
    }
    return state_->after_end;
}

Result<std::optional<Block>> Document::next()
{
    const Status fault = state_->need_reader();
    return fault.ok() ? state_->reader->next() : Result<std::optional<Block>>(fault.error());
}

Result<ResumeToken> Document::place()
{
    const Status fault = state_->need_reader();
    if (!fault.ok()) {
        return fault.error();
    }
    const Result<reading::BlockPosition> position = state_->reader->position();
    const Result<reading::DocumentMark> mark = state_->mark();
    if (!position.ok() || !mark.ok()) {
        return position.ok() ? mark.error() : position.error();
    }
    return ResumeToken(reading::token_text({mark.value(), position.value()}));
}

Status Document::resume(const ResumeToken &token)
{
    const Result<reading::MarkedPosition> marked = reading::parse_token(token.text());
    const Result<reading::DocumentMark> mark = state_->mark();
    if (!marked.ok() || !mark.ok()) {
        return marked.ok() ? mark.error() : marked.error();
    }
    if (marked.value().document != mark.value()) {
        return Error{ErrorKind::usage, "the resume token belongs to another document",
                     "use one of this document, opened with the same options"};
    }
    return state_->read_from(marked.value().position);
}

Result<ResumeToken> ResumeToken::parse(std::string_view text)
{
    const Result<reading::MarkedPosition> marked = reading::parse_token(text);
    return marked.ok() ? Result<ResumeToken>(ResumeToken(std::string(text))) : marked.error();
}

} // namespace pfsdoc

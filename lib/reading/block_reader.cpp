#include "lib/reading/block_reader.h"

#include "lib/reading/read_document.h"
#include "pfsdoc/reading_stopped.h"

#include <utility>

namespace pfsdoc::reading {

Result<std::unique_ptr<BlockReader>> BlockReader::create(const Module &module, ByteSource &source,
                                                         DocumentKind kind, Offsets offsets,
                                                         const BlockPosition &from)
{
    std::unique_ptr<BlockReader> reader(new BlockReader(source, kind));
    const Status fault = reader->begin(module, kind, offsets, from.start);
    if (!fault.ok()) {
        return fault.error();
    }
    reader->blocks_to_skip_ = from.blocks_before;
    return Result<std::unique_ptr<BlockReader>>(std::move(reader));
}

BlockReader::BlockReader(ByteSource &source, DocumentKind kind)
    : source_(source), file_(source), collector_(*this, line_spacing_rule(kind)),
      follower_(collector_),
      stitcher_(stitched_sink(kind), indents_reset(kind),
                text_changes_margins(kind) ? AnnouncedMargins::passed_on_if_changed
                                           : AnnouncedMargins::dropped)
{
}

EventSink &BlockReader::stitched_sink(DocumentKind kind)
{
    return text_changes_margins(kind) ? static_cast<EventSink &>(follower_) : collector_;
}

Status BlockReader::begin(const Module &module, DocumentKind kind, Offsets offsets,
                          const ReadStart &start)
{
    Result<std::unique_ptr<Session>> session = open_session(module, file_, kind, offsets);
    if (!session.ok()) {
        return session.error();
    }
    session_ = std::move(session.value());
    call_.start = std::make_shared<const ReadStart>(start);
    if (offsets == Offsets::wanted) {
        collector_.find_lines(source_, kind);
    }
    if (start.at_beginning) {
        session_->section(stitcher_);
        return {};
    }
    if (!session_->go_to(start.checkpoint)) {
        return Error{ErrorKind::internal, "the module refuses to go to a saved position", ""};
    }
    const uint32_t offset = offsets == Offsets::wanted ? start.checkpoint.position : 0;
    stitcher_.resume(start.stitcher);
    collector_.resume(start.collector, offset);
    block_kind_ = start.collector.block;
    return {};
}

Result<std::optional<Block>> BlockReader::next()
{
    read_until_pending();
    if (!pending_.empty()) {
        std::optional<Block> block(std::move(pending_.front().block));
        pending_.pop_front();
        return block;
    }
    return fault_.ok() ? std::optional<Block>() : Result<std::optional<Block>>(fault_.error());
}

Result<BlockPosition> BlockReader::position()
{
    read_until_pending();
    if (!pending_.empty()) {
        return BlockPosition{*pending_.front().start, pending_.front().blocks_before};
    }
    if (!is_read_to_end(fault_)) {
        return fault_.error();
    }
    return BlockPosition{*call_.start, call_.blocks};
}

void BlockReader::read_until_pending()
{
    while (pending_.empty() && !ended_) {
        read_on();
    }
}

void BlockReader::read_on()
{
    try {
        session_->read(stitcher_);
    } catch (const ReadingStopped &stopped) {
        ended_ = true;
        fault_ = stopped.error();
        return;
    }
    const Status failure = source_.failure();
    if (!failure.ok() || session_->ended()) {
        const Result<uint32_t> end =
            failure.ok() ? check_end(*session_, source_) : Result<uint32_t>(failure.error());
        ended_ = true;
        fault_ = end;
        end_ = end.ok() ? std::optional(end.value()) : std::nullopt;
    }
    if (!failure.ok()) {
        pending_.clear(); // a failed read can be behind anything that they report
    }
    if (!ended_) {
        after_read();
    }
}

void BlockReader::after_read()
{
    const Checkpoint checkpoint = session_->checkpoint();
    call_before_ = std::move(call_);
    call_ = {std::make_shared<const ReadStart>(ReadStart{false, checkpoint, stitcher_.context(),
                                                         collector_.context(checkpoint.position)}),
             0};
    held_block_due_ = follower_.holds();
    stitcher_.resume();
}

void BlockReader::add(Block block)
{
    in_page_breaks_ = block.kind == Block::Kind::page_break;
    Call &call = std::exchange(held_block_due_, false) ? call_before_ : call_;
    const uint64_t blocks_before = call.blocks++;
    if (blocks_to_skip_ > 0) {
        --blocks_to_skip_;
        return;
    }
    pending_.push_back({std::move(block), call.start, blocks_before});
}

void BlockReader::paragraph(const Paragraph &paragraph)
{
    Block block;
    block.paragraph = paragraph;
    if (block_kind_) {
        block.kind =
            *block_kind_ == BlockKind::header ? Block::Kind::header_line : Block::Kind::footer_line;
    }
    add(std::move(block));
}

// One block for those in a row: a call can give any number of them.
void BlockReader::page_break(uint32_t source)
{
    if (in_page_breaks_) {
        if (!pending_.empty()) { // else they are skipped
            ++pending_.back().block.page_breaks;
        }
        return;
    }
    Block block;
    block.kind = Block::Kind::page_break;
    block.source = source;
    block.page_breaks = 1;
    add(std::move(block));
}

void BlockReader::block_begin(BlockKind kind)
{
    block_kind_ = kind;
}

void BlockReader::block_end()
{
    block_kind_.reset();
}

void BlockReader::end_of_document() {}

} // namespace pfsdoc::reading

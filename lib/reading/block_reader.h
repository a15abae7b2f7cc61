// A document block by block: the module is stopped at each paragraph break, and read on when
// the next block is asked for.
//
// One read call gives the blocks up to and including a paragraph. What complicates it: where
// text can change its margins (Professional Write), a paragraph's break is held back until
// the next read has announced them, so it comes first among the next call's blocks. A position
// is therefore stored as a start, where a read call begins, and the number of blocks that
// reading from there gives before the position; a block that was held back counts for the call
// that read it. Tests: tests/lib/reading/document_test.cpp.
#pragma once

#include "lib/reading/block_file.h"
#include "lib/reading/paragraph_collector.h"
#include "lib/reading/resume.h"
#include "lib/reading/session.h"
#include "pfsdoc/document.h"
#include "pfsdoc/module.h"

#include <cstdint>
#include <deque>
#include <memory>
#include <optional>

namespace pfsdoc::reading {

// Where a read call begins, with all that is known there from what came before.
struct ReadStart {
    bool at_beginning = true; // of the document; what follows has no meaning then
    Checkpoint checkpoint;
    StitcherContext stitcher;
    CollectorContext collector;
};

struct BlockPosition {
    ReadStart start;
    uint64_t blocks_before = 0; // the position, read from there on
};

class BlockReader final : private BlockSink {
public:
    // The source must outlive the reader.
    static Result<std::unique_ptr<BlockReader>> create(const Module &module, ByteSource &source,
                                                       DocumentKind kind, Offsets offsets,
                                                       const BlockPosition &from = {});

    Result<std::optional<Block>> next();
    Result<BlockPosition> position();
    // The offset behind the document's end mark, once it has been read.
    std::optional<uint32_t> end() const
    {
        return end_;
    }

private:
    struct Pending {
        Block block;
        std::shared_ptr<const ReadStart> start;
        uint64_t blocks_before;
    };
    // The blocks of one read call, delivered or not.
    struct Call {
        std::shared_ptr<const ReadStart> start;
        uint64_t blocks = 0;
    };

    BlockReader(ByteSource &source, DocumentKind kind);
    Status begin(const Module &module, DocumentKind kind, Offsets offsets, const ReadStart &start);
    EventSink &stitched_sink(DocumentKind kind);
    void read_until_pending();
    void read_on();
    void after_read();
    void add(Block block);

    void paragraph(const Paragraph &paragraph) override;
    void page_break(uint32_t source) override;
    void block_begin(BlockKind kind) override;
    void block_end() override;
    void end_of_document() override;

    ByteSource &source_;
    BlockFile file_;
    std::unique_ptr<Session> session_;
    ParagraphCollector collector_;
    MarginFollower follower_;
    Stitcher stitcher_;

    std::deque<Pending> pending_;
    Call call_;
    Call call_before_;
    bool held_block_due_ = false; // the next block was read by the call before
    uint64_t blocks_to_skip_ = 0;
    bool in_page_breaks_ = false;         // the last block of this call is one
    std::optional<BlockKind> block_kind_; // header or footer lines are coming
    bool ended_ = false;
    std::optional<uint32_t> end_;
    Status fault_;
};

} // namespace pfsdoc::reading

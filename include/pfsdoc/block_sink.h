// A document as blocks, in order: header and footer lines first, then the body's paragraphs
// and page breaks. Tests: tests/lib/reading/paragraph_collector_test.cpp.
#pragma once

#include "pfsdoc/after_end.h"
#include "pfsdoc/export.h"
#include "pfsdoc/paragraph.h"

#include <cstdint>

namespace pfsdoc {

enum class BlockKind { header, footer };

// Receives a document's blocks in order. Arguments are valid during the call only.
class PFSDOC_API BlockSink {
public:
    virtual ~BlockSink() = default;
    // A paragraph, or between block_begin and block_end a header or footer line.
    virtual void paragraph(const Paragraph &paragraph) = 0;
    // A page break between paragraphs, or before any text of one; others are pieces. `source` is
    // its offset in the file, in bytes, or 0 without source offsets.
    virtual void page_break(uint32_t source) = 0;
    // Begin and end of a header or a footer; the calls of paragraph in between are its lines.
    virtual void block_begin(BlockKind kind) = 0;
    virtual void block_end() = 0;
    // What the file holds behind the end mark, if it is more than padding. Called at most once,
    // just before end_of_document.
    virtual void after_end(const AfterEnd &) {}
    // Called once; no call follows.
    virtual void end_of_document() = 0;
};

} // namespace pfsdoc

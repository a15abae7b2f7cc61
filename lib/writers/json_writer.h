// The document as data: everything that is known of it, in JSON. docs/pfsdoc.schema.json says
// what stands where; this is why.
//
// One object holds the document, with a block on each line of the file: header and footer
// lines, paragraphs and page breaks, in the order in which the document has them. With
// WriterOptions::lines each line is an object by itself (NDJSON): the document, its blocks,
// and an end, without which a file is cut off. Each block says all about itself, margins and
// tab stops too, so that a reader needs no block but the one it reads.
//
// A paragraph is a list of runs: text under one set of attributes, a command, a page break.
// Commands are always there, and nothing is interpreted but what every format agrees on
// (page_geometry.h): an aligning command in front of a paragraph's text is its alignment.
// Measures are twips. Sources are offsets in the file: a run has the one of its first byte,
// and ends where the next begins or the paragraph ends.
//
// Text is the document's own, character for character: with the character set that the
// document object names, the bytes can be had back. A tab is a tab; lost are only byte 0,
// which is a blank, and bytes that the set does not define. Empty header and footer lines are
// left out, since they are often reported where the document has none.
//
// Tests: tests/lib/writers/json_writer_test.cpp, tests/judges/json.sh.
#pragma once

#include "pfsdoc/output.h"
#include "pfsdoc/paragraph.h"
#include "pfsdoc/writer.h"
#include "vs_pfs.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace pfsdoc::writers {

// Of what is written, raised when a reader of an earlier version would misunderstand it.
inline constexpr int json_schema_version = 1;

class JsonWriter final : public Writer {
public:
    JsonWriter(Output &output, const DocumentInfo &info, const WriterOptions &options);

    void paragraph(const Paragraph &paragraph) override;
    void page_break(uint32_t source) override;
    void block_begin(BlockKind kind) override;
    void block_end() override;
    void after_end(const AfterEnd &rest) override;
    void end_of_document() override;

private:
    void begin_block(std::string_view type);
    void end_block();
    void append_document(const DocumentInfo &info);
    void append_layout(const Paragraph &paragraph);
    void append_run(const Paragraph &paragraph, std::size_t index);
    void append_text(std::string_view bytes);
    void append_losses();
    void append_after_end();
    void hand_on();

    Output &output_;
    WriterOptions options_;
    std::string_view paragraph_type_;
    uint64_t blocks_ = 0;
    std::string json_; // not handed on yet
    TabStops tab_stops_;
    std::string tab_stops_json_; // these, as each paragraph has them
    std::string utf8_;           // of a stretch of one run
    std::optional<AfterEnd> after_end_;
};

} // namespace pfsdoc::writers

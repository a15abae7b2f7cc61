// What the formats have in common whose text has no page: they say paragraphs, page breaks
// and attributes, and leave the measures to whoever shows them.
//
// Header lines stand before the body and footer lines behind it, as paragraphs of their own;
// empty ones are left out, since they are often reported where the document has none. A page
// break is a block. What is said of a line's place (indents, tab stops, spacing, margins) is
// counted as lost, once for each paragraph that shows text; a change of the margins for each
// paragraph that brings one.
// Tests: tests/lib/writers/markdown_writer_test.cpp, tests/lib/writers/pandoc_writer_test.cpp.
#pragma once

#include "lib/base/utf8_output.h"
#include "lib/page/running_lines.h"
#include "pfsdoc/events.h"
#include "pfsdoc/output.h"
#include "pfsdoc/paragraph.h"
#include "pfsdoc/writer.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace pfsdoc::writers {

class FlowWriter : public Writer {
public:
    FlowWriter(const FlowWriter &) = delete;
    FlowWriter &operator=(const FlowWriter &) = delete;

    void paragraph(const Paragraph &paragraph) final;
    void page_break(uint32_t source) final;
    void block_begin(BlockKind kind) final;
    void block_end() final;
    void end_of_document() final;

protected:
    // What a format supports, and the text that it wants between two blocks.
    struct Abilities {
        AttributeSet attributes;
        bool alignment;
        std::string_view separator;
    };

    FlowWriter(Output &output, const WriterOptions &options, const Abilities &abilities);

    virtual void write_paragraph(const Paragraph &paragraph) = 0;
    virtual void write_page_break() = 0;
    // Behind the last block.
    virtual void write_end() = 0;

    // To be called before each block; a paragraph may be several, or none.
    void begin_block();
    base::Utf8Output &out()
    {
        return text_;
    }
    // The header or footer whose line is written.
    std::optional<BlockKind> block() const
    {
        return running_lines_.block();
    }
    const WriterOptions &options() const
    {
        return options_;
    }
    AttributeSet supported() const
    {
        return abilities_.attributes;
    }

private:
    bool is_written(const Paragraph &paragraph);
    void add_layout_losses(const Paragraph &paragraph);

    WriterOptions options_;
    Abilities abilities_;
    std::optional<Margins> last_margins_;

    base::Utf8Output text_;
    bool has_blocks_ = false;
    page::RunningLines running_lines_; // the footers
};

} // namespace pfsdoc::writers

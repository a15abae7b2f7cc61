// A document's header and footer lines. They come before the text, and formats want them
// elsewhere: footer lines behind the text, or both on every page. So they are kept until then.
// Test: tests/lib/page/running_lines_test.cpp.
#pragma once

#include "pfsdoc/block_sink.h"
#include "pfsdoc/paragraph.h"

#include <array>
#include <cstddef>
#include <optional>
#include <vector>

namespace pfsdoc::page {

// Two lines of a header or footer, of at most 255 bytes each, are all that a document has.
inline constexpr std::size_t usual_running_lines = 2;

class RunningLines {
public:
    // What is kept of a document's headers, and of its footers, whatever comes. A line counts
    // one byte more than it has.
    static constexpr std::size_t max_bytes = 4096;

    // `max_lines` of the headers, and of the footers.
    explicit RunningLines(std::size_t max_lines = max_bytes) : max_lines_(max_lines) {}

    void begin(BlockKind kind)
    {
        block_ = kind;
    }
    void end()
    {
        block_.reset();
    }
    // The header or footer that is open.
    std::optional<BlockKind> block() const
    {
        return block_;
    }
    bool in_footer() const
    {
        return block_ == BlockKind::footer;
    }

    // Keeps a line of the one that is open; false where there is no room for it.
    bool keep(Paragraph line);
    const std::vector<Paragraph> &headers() const
    {
        return kept(BlockKind::header).lines;
    }
    const std::vector<Paragraph> &footers() const
    {
        return kept(BlockKind::footer).lines;
    }

private:
    struct Kept {
        std::vector<Paragraph> lines;
        std::size_t bytes = 0;
    };
    const Kept &kept(BlockKind kind) const
    {
        return kept_[kind == BlockKind::header ? 0 : 1];
    }

    std::size_t max_lines_;
    std::optional<BlockKind> block_;
    std::array<Kept, 2> kept_;
};

// A line that stands on every page breaks none.
Paragraph without_page_breaks(Paragraph line);

} // namespace pfsdoc::page

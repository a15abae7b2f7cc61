// Breaking a paragraph into the lines that a document stores.
#pragma once

#include "builder/document.h"

namespace pfs_builder {

// Columns are counted from 0 here, as readers count them.
struct WrapRules {
    int left_margin;
    int right_margin;

    // Readers add a space at every soft line end. False: only where none is stored.
    bool join_always_adds;
};

// The cells from `begin` up to `end` of the paragraph, after `indent` spaces.
struct StoredLine {
    int indent;
    std::size_t begin;
    std::size_t end;
    bool wrapped; // the paragraph continues in the next line
};

// At least one line. Joined as readers join them, they give the paragraph again. A line is
// broken after a suppressed stretch; see misplaced_suppression for where that is possible.
std::vector<StoredLine> wrap_words(const Paragraph &paragraph, const WrapRules &rules);

// A suppressed stretch lasts to the end of its line, and a line without text ends its
// paragraph. So a stretch must be the whole paragraph, or have text before it on its line and
// one space and more text after it. Returns the first cell of one that violates this, or null.
const Cell *misplaced_suppression(const Paragraph &paragraph);

} // namespace pfs_builder

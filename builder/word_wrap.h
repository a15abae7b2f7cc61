// Breaking a paragraph into the lines that a document stores.
#pragma once

#include "builder/document.h"

namespace pfs_builder {

// Columns are counted from 0 here, as readers count them.
struct WrapRules {
    int left_margin;
    int right_margin;

    // Readers add a space at every wrapped end. False: only where none is stored.
    bool join_always_adds;
};

// The cells from `begin` up to `end` of the paragraph, behind `indent` spaces.
struct StoredLine {
    int indent;
    std::size_t begin;
    std::size_t end;
    bool wrapped; // the paragraph goes on in the next line
};

// At least one line. Re-joined as readers join them, they are the paragraph again. A line is
// broken after a suppressed stretch; see misplaced_suppression for where that is possible.
std::vector<StoredLine> wrap_words(const Paragraph &paragraph, const WrapRules &rules);

// A suppressed stretch lasts to the end of its line, and a line without text ends its
// paragraph. So a stretch must be all of its paragraph, or have text before it on its line
// and one space and more text after it. Returns the first cell of one that has not, or null.
const Cell *misplaced_suppression(const Paragraph &paragraph);

} // namespace pfs_builder

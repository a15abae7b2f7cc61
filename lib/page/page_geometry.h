// What a paragraph's margins, indents, tab stops and commands mean for a page of fixed-pitch
// columns; every writer sees them the same way. Tests: tests/lib/page/page_geometry_test.cpp.
//
//   margins     that cannot be (right not beyond left, negative, or beyond
//               widest_page_columns) count as the ones that new documents start with
//   indents     leave at least one column of the line; centred and right-aligned paragraphs
//               have none
//   tab stops   those between the margins
//   alignment   as reported, unless a centre or right-align command stands in front of the
//               paragraph's text
#pragma once

#include "lib/page/line_layout.h"
#include "pfsdoc/paragraph.h"

#include <cstdint>
#include <vector>

namespace pfsdoc::page {

// Rulers count columns in eight bits, so nothing that means it has wider margins.
inline constexpr int32_t widest_page_columns = 255;
// A new document's margins are columns 10 and 70, counted from 1.
inline constexpr int32_t default_left_column = 9;
inline constexpr int32_t default_right_column = 69;

// The first and the last that text may occupy, counted from 0 at the page's left edge.
struct PageColumns {
    int32_t left = default_left_column;
    int32_t right = default_right_column;

    bool operator==(const PageColumns &) const = default;
    int32_t width() const
    {
        return right - left + 1;
    }
};

PageColumns page_columns(const Margins &margins);
LineAlignment line_alignment(const Paragraph &paragraph);

// The lines of one paragraph after the other. Most paragraphs share their tab stops with the one
// before, so only where these or the margins change are they converted.
class LineGeometries {
public:
    // Valid until the next call. The caller may change all but the tab stops.
    LineGeometry &of(const Paragraph &paragraph);
    // How often the tab stops have changed so far.
    uint64_t tab_stop_changes() const
    {
        return tab_stop_changes_;
    }

private:
    LineGeometry geometry_;
    TabStops tab_stops_; // that its own were made from,
    PageColumns page_;   // with these margins
    uint64_t tab_stop_changes_ = 0;
};

} // namespace pfsdoc::page

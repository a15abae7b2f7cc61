// What a document's pages, paragraphs and runs of text look like, as property lists of
// librevenge.
//
// A page is 11 inches high and 8.5 wide, or as wide as its columns need; ten columns fit an
// inch and six lines do, so text is set in a fixed-pitch font of 12 points. Margins that
// change within the document are paragraph margins, counted from the page's. Tab stops count
// from the paragraph's left indent, as OpenDocument and most others have it.
// Tests: tests/writers/revenge_writer_test.cpp.
#pragma once

#include "page_geometry.h"
#include "paragraph.h"

#include <librevenge/librevenge.h>

#include <cstddef>

namespace pfsdoc {

// Every page has a margin of six lines at the top and at the bottom. A header or footer takes
// the inner ones of it, the empty lines that part it from the text included; more lines than
// that come at the text's expense.
inline constexpr std::size_t margin_lines = 6;
inline constexpr std::size_t header_lines = 3;

// How a paragraph begins, for a part of one that a page break has cut too.
struct ParagraphStart {
    bool page_break_before = false;
    bool continues = false; // lines of the paragraph stand before it
    bool has_tab = false;
};

librevenge::RVNGPropertyList page_properties(const PageColumns &page, bool has_header,
                                             bool has_footer);
librevenge::RVNGPropertyList paragraph_properties(const Paragraph &paragraph,
                                                  const PageColumns &page,
                                                  const ParagraphStart &start);
librevenge::RVNGPropertyList span_properties(AttributeSet attributes);

} // namespace pfsdoc

// The stylesheet of the html format. It is the same for every document, so that the page can
// allow it by its hash and nothing else; what depends on the document stands in style
// attributes as custom properties.
//
//   html            --left, --width   columns before the text and of it
//                   --head, --foot    rows of the header and the footer, where they are many
//   p               --left, --width   where they differ from the page's
//                   --i, --f          left and first-line indent
//   p.center, p.right, p.double       alignment and double spacing
//   span.tab        --w               a tab, or blanks that are not shown, of so many columns
//   span.word                         a word that a browser would break
//   hr.page                           a page break
//
// Test: tests/lib/writers/html_writer_test.cpp; the hash is recomputed by tests/judges/html.sh.
#pragma once

#include <string_view>

namespace pfsdoc::writers {

extern const std::string_view html_stylesheet;
// Of the stylesheet, SHA-256 in base 64.
extern const std::string_view html_stylesheet_hash;

} // namespace pfsdoc::writers

// Blocks as OpenDocument text, for the formats odt and fodt.
//
// OpenDocument wants to know a page, with its header and footer, and all styles before the
// first thing of the body. So the header and footer lines, of which a document has few, are
// held until the body begins: then the page's margins are the ones of the first paragraph that
// came, and the margins above and below it leave room for the lines. The body, and the styles
// that it turns out to need, wait in a spill store each until the document ends.
//
//   page breaks   a property of the paragraph after the break. A break in mid-paragraph cuts
//                 it in two, the second without a first-line indent. Breaks that follow each
//                 other, and those at either end of the document, have empty paragraphs
//                 between or around them, as their pages do.
//   double        spacing stands below its line, as on the screen and in HTML.
//   spaces        see odf_text.h.
//   commands      hidden unless WriterOptions::commands asks for them. A paragraph of nothing
//                 but hidden commands is left out, and so is an empty header or footer line.
//
// Time is in proportion to the document, and memory does not depend on its size.
// Tests: tests/lib/writers/odf_writer_test.cpp; tests/judges/odf.sh has LibreOffice and a
// validator read it.
#pragma once

#include "lib/writers/odf_document.h"
#include "pfsdoc/error.h"
#include "pfsdoc/output.h"
#include "pfsdoc/writer.h"

#include <cstddef>
#include <memory>

namespace pfsdoc::writers {

// Puts the document together when it is complete.
using WriteOdfDocument = void (*)(const OdfDocument &, Output &);

// One for the styles of paragraphs, and one for the body.
inline constexpr std::size_t odf_spill_stores = 2;

Result<std::unique_ptr<Writer>> make_odf_writer(WriteOdfDocument write_document, Output &output,
                                                const DocumentInfo &info,
                                                const WriterOptions &options);

} // namespace pfsdoc::writers

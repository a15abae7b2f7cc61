// What the streams of an OpenDocument text consist of, whether it is a package of several or one.
// Tests: tests/lib/writers/odf_writer_test.cpp.
#pragma once

#include "lib/base/spill_store.h"

#include <string>
#include <string_view>

namespace pfsdoc::writers {

// All that differs between documents. Everything but the title is XML.
struct OdfDocument {
    std::string title;                        // UTF-8; may be empty
    const base::SpillStore &paragraph_styles; // of the body
    std::string text_styles;                  // of the body
    std::string page_styles;                  // the page's layout, header's and footer's styles
    std::string header;                       // paragraphs; may be empty, as the footer
    std::string footer;
    const base::SpillStore &body;
};

inline constexpr std::string_view odf_media_type = "application/vnd.oasis.opendocument.text";
inline constexpr std::string_view xml_declaration = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
inline constexpr std::string_view odf_fonts =
    "<office:font-face-decls><style:font-face style:name=\"Courier New\""
    " svg:font-family=\"'Courier New'\" style:font-family-generic=\"modern\""
    " style:font-pitch=\"fixed\"/></office:font-face-decls>\n";
inline constexpr std::string_view automatic_styles_begin = "<office:automatic-styles>\n";
inline constexpr std::string_view automatic_styles_end = "</office:automatic-styles>\n";
inline constexpr std::string_view odf_body_begin = "<office:body><office:text>\n";
inline constexpr std::string_view odf_body_end = "</office:text></office:body>\n";

// With the declaration, and the root element's tag.
std::string begin_odf_stream(std::string_view root, std::string_view attributes = {});
std::string end_odf_stream(std::string_view root);

void append_odf_meta(std::string &xml, const OdfDocument &document);
void append_odf_styles(std::string &xml);
void append_odf_master_page(std::string &xml, const OdfDocument &document);

} // namespace pfsdoc::writers

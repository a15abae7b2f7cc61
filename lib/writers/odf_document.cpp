#include "lib/writers/odf_document.h"

#include "lib/writers/odf_styles.h"
#include "lib/writers/xml_text.h"

#include <string_view>

namespace pfsdoc::writers {

namespace {

constexpr std::string_view office_version = R"( office:version="1.2")";
constexpr std::string_view namespaces =
    R"( xmlns:office="urn:oasis:names:tc:opendocument:xmlns:office:1.0")"
    R"( xmlns:style="urn:oasis:names:tc:opendocument:xmlns:style:1.0")"
    R"( xmlns:text="urn:oasis:names:tc:opendocument:xmlns:text:1.0")"
    R"( xmlns:fo="urn:oasis:names:tc:opendocument:xmlns:xsl-fo-compatible:1.0")"
    R"( xmlns:svg="urn:oasis:names:tc:opendocument:xmlns:svg-compatible:1.0")"
    R"( xmlns:meta="urn:oasis:names:tc:opendocument:xmlns:meta:1.0")"
    R"( xmlns:dc="http://purl.org/dc/elements/1.1/")";

} // namespace

std::string begin_odf_stream(std::string_view root, std::string_view attributes)
{
    std::string xml(xml_declaration);
    xml.append("<").append(root).append(namespaces).append(office_version);
    return xml.append(attributes).append(">\n");
}

std::string end_odf_stream(std::string_view root)
{
    return std::string("</").append(root).append(">\n");
}

void append_odf_meta(std::string &xml, const OdfDocument &document)
{
    xml.append("<office:meta><meta:generator>pfsdoc/" PFSDOC_VERSION "</meta:generator>");
    if (!document.title.empty()) {
        xml.append("<dc:title>");
        append_xml_text(xml, document.title);
        xml.append("</dc:title>");
    }
    xml.append("</office:meta>\n");
}

void append_odf_styles(std::string &xml)
{
    xml.append("<office:styles>\n");
    append_common_styles(xml);
    xml.append("</office:styles>\n");
}

void append_odf_master_page(std::string &xml, const OdfDocument &document)
{
    xml.append("<office:master-styles><style:master-page style:name=\"Standard\"");
    xml.append(" style:page-layout-name=\"").append(page_layout_name).append("\">\n");
    if (!document.header.empty()) {
        xml.append("<style:header>\n").append(document.header).append("</style:header>\n");
    }
    if (!document.footer.empty()) {
        xml.append("<style:footer>\n").append(document.footer).append("</style:footer>\n");
    }
    xml.append("</style:master-page></office:master-styles>\n");
}

} // namespace pfsdoc::writers

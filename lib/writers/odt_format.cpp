// The format odt: OpenDocument text as a package. See odf_writer.h.
#include "lib/writers/formats.h"
#include "lib/writers/odf_writer.h"
#include "lib/writers/package.h"

namespace pfsdoc::writers {

namespace {

constexpr std::string_view manifest =
    R"(<manifest:manifest xmlns:manifest="urn:oasis:names:tc:opendocument:xmlns:manifest:1.0")"
    " manifest:version=\"1.2\">\n"
    R"(<manifest:file-entry manifest:full-path="/" manifest:version="1.2")"
    R"( manifest:media-type="application/vnd.oasis.opendocument.text"/>)"
    "\n"
    R"(<manifest:file-entry manifest:full-path="content.xml" manifest:media-type="text/xml"/>)"
    "\n"
    R"(<manifest:file-entry manifest:full-path="styles.xml" manifest:media-type="text/xml"/>)"
    "\n"
    R"(<manifest:file-entry manifest:full-path="meta.xml" manifest:media-type="text/xml"/>)"
    "\n</manifest:manifest>\n";

std::string meta_stream(const OdfDocument &document)
{
    constexpr std::string_view root = "office:document-meta";
    std::string xml = begin_odf_stream(root);
    append_odf_meta(xml, document);
    return xml.append(end_odf_stream(root));
}

std::string styles_stream(const OdfDocument &document)
{
    constexpr std::string_view root = "office:document-styles";
    std::string xml = begin_odf_stream(root);
    xml.append(odf_fonts);
    append_odf_styles(xml);
    xml.append(automatic_styles_begin).append(document.page_styles).append(automatic_styles_end);
    append_odf_master_page(xml, document);
    return xml.append(end_odf_stream(root));
}

void write_content_entry(const OdfDocument &document, Package &package)
{
    constexpr std::string_view root = "office:document-content";
    const std::string before_styles =
        begin_odf_stream(root).append(odf_fonts).append(automatic_styles_begin);
    const std::string before_body =
        std::string(document.text_styles).append(automatic_styles_end).append(odf_body_begin);
    const std::string after_body = std::string(odf_body_end).append(end_odf_stream(root));
    package.begin("content.xml", before_styles.size() + document.paragraph_styles.size() +
                                     before_body.size() + document.body.size() + after_body.size());
    package.write(before_styles);
    document.paragraph_styles.copy_to(package);
    package.write(before_body);
    document.body.copy_to(package);
    package.write(after_body);
}

void write_package(const OdfDocument &document, Output &output)
{
    Package package(output);
    package.store("mimetype", odf_media_type);
    write_content_entry(document, package);
    package.add("styles.xml", styles_stream(document));
    package.add("meta.xml", meta_stream(document));
    package.add("META-INF/manifest.xml", std::string(xml_declaration).append(manifest));
    package.finish();
}

Result<std::unique_ptr<Writer>> make_writer(Output &output, const DocumentInfo &info,
                                            const WriterOptions &options)
{
    return make_odf_writer(write_package, output, info, options);
}

} // namespace

const Format odt_format = {
    .name = "odt",
    .extension = "odt",
    .description = "OpenDocument text, for word processors",
    .options = WriterOption::page_breaks | WriterOption::headers | WriterOption::commands,
    .make_writer = make_writer,
    .make_event_writer = nullptr,
    .wants_offsets = false,
    .is_binary = true,
    .scratch_files = odf_spill_stores,
};

} // namespace pfsdoc::writers

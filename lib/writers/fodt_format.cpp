// The format fodt: OpenDocument text as one XML file. See odf_writer.h.
#include "lib/writers/formats.h"
#include "lib/writers/odf_writer.h"

namespace pfsdoc::writers {

namespace {

void write_flat(const OdfDocument &document, Output &output)
{
    constexpr std::string_view root = "office:document";
    std::string xml = begin_odf_stream(
        root, std::string(" office:mimetype=\"").append(odf_media_type).append("\""));
    append_odf_meta(xml, document);
    xml.append(odf_fonts);
    append_odf_styles(xml);
    output.write(xml.append(automatic_styles_begin).append(document.page_styles));
    document.paragraph_styles.copy_to(output);
    xml.assign(document.text_styles).append(automatic_styles_end);
    append_odf_master_page(xml, document);
    output.write(xml.append(odf_body_begin));
    document.body.copy_to(output);
    output.write(std::string(odf_body_end).append(end_odf_stream(root)));
}

Result<std::unique_ptr<Writer>> make_writer(Output &output, const DocumentInfo &info,
                                            const WriterOptions &options)
{
    return make_odf_writer(write_flat, output, info, options);
}

} // namespace

const Format fodt_format = {
    .name = "fodt",
    .extension = "fodt",
    .description = "the same as one XML file",
    .options = WriterOption::page_breaks | WriterOption::headers | WriterOption::commands,
    .make_writer = make_writer,
    .make_event_writer = nullptr,
    .wants_offsets = false,
    .scratch_files = odf_spill_stores,
};

} // namespace pfsdoc::writers

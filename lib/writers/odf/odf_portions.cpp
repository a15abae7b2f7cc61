#include "lib/writers/odf/odf_portions.h"

#include "lib/writers/odf/joined_xml.h"
#include "lib/writers/odf/odf_package.h"
#include "lib/writers/odf/odf_xml.h"
#include "lib/writers/odf/scratch.h"

#include <libodfgen/libodfgen.hxx>

#include <string_view>

namespace pfsdoc::writers {

namespace {

std::unique_ptr<Scratch> make_scratch(std::span<const int> files, std::size_t index)
{
    return index < files.size() ? std::make_unique<Scratch>(files[index])
                                : std::make_unique<Scratch>();
}

class FlatPortions final : public OdfPortions {
public:
    explicit FlatPortions(std::span<const int> files)
        : styles_(make_scratch(files, 0)), body_(make_scratch(files, 1))
    {
    }

    librevenge::RVNGTextInterface &next() override
    {
        xml_.begin_portion();
        generator_ = std::make_unique<OdtGenerator>();
        generator_->addDocumentHandler(&xml_, ODF_FLAT_XML);
        return *generator_;
    }

    void finish(Output &output) override
    {
        xml_.copy_to(output);
    }

private:
    std::unique_ptr<Scratch> styles_;
    std::unique_ptr<Scratch> body_;
    JoinedXml xml_{*styles_, *body_};
    std::unique_ptr<OdtGenerator> generator_;
};

// A stream of the portion that was told last.
struct LastStream {
    StringOutput output;
    XmlStream xml{output};
};

class PackagedPortions final : public OdfPortions {
public:
    explicit PackagedPortions(std::span<const int> files)
        : paragraph_styles_(make_scratch(files, 0)), body_(make_scratch(files, 1)),
          archive_(make_scratch(files, 2))
    {
    }

    librevenge::RVNGTextInterface &next() override
    {
        content_.begin_portion();
        generator_ = std::make_unique<OdtGenerator>();
        generator_->addDocumentHandler(&content_, ODF_CONTENT_XML);
        attach(styles_, ODF_STYLES_XML);
        attach(settings_, ODF_SETTINGS_XML);
        attach(meta_, ODF_META_XML);
        attach(manifest_, ODF_MANIFEST_XML);
        return *generator_;
    }

    void finish(Output &output) override
    {
        OdfPackage package(*archive_);
        package.begin("content.xml", content_.size());
        content_.copy_to(package);
        package.add("styles.xml", styles_.output.text);
        package.add("settings.xml", settings_.output.text);
        package.add("meta.xml", meta_.output.text);
        package.add("META-INF/manifest.xml", manifest_.output.text);
        package.finish(output);
    }

private:
    void attach(LastStream &stream, OdfStreamType type)
    {
        stream.output.text.clear();
        generator_->addDocumentHandler(&stream.xml, type);
    }

    std::unique_ptr<Scratch> paragraph_styles_;
    std::unique_ptr<Scratch> body_;
    std::unique_ptr<Scratch> archive_;
    JoinedXml content_{*paragraph_styles_, *body_};
    LastStream styles_;
    LastStream settings_;
    LastStream meta_;
    LastStream manifest_;
    std::unique_ptr<OdtGenerator> generator_;
};

} // namespace

std::unique_ptr<OdfPortions> make_odf_portions(OdfPackaging packaging, std::span<const int> files)
{
    if (packaging == OdfPackaging::flat) {
        return std::make_unique<FlatPortions>(files);
    }
    return std::make_unique<PackagedPortions>(files);
}

} // namespace pfsdoc::writers

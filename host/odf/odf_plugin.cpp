// The plug-in's side of the border: blocks go through RevengeWriter into libodfgen, which
// keeps the document until its end and then writes one XML stream after the other. Exceptions
// end here and become the writer's failure. Tests: tests/writers/odf_plugin_test.cpp.
#include "odf_plugin.h"

#include "odf_package.h"
#include "odf_xml.h"
#include "revenge_writer.h"

#include <memory>
#include <new>

namespace pfsdoc {

namespace {

// libodfgen holds some hundred bytes for each of these, so a hostile document, such as one of
// nothing but tabs, would take hundreds of times its own size. A book of a thousand pages has
// some hundred thousand.
constexpr GeneratorTraits traits{.most_elements = 4'000'000, .keeps_styles = true};

// What the program's output looks like on this side.
class BorderedOutput final : public Output {
public:
    explicit BorderedOutput(OdfOutput &output) : output_(output) {}

    void write(std::string_view bytes) override
    {
        output_.write(bytes);
    }

private:
    OdfOutput &output_;
};

// Takes libodfgen's streams to where the packaging wants them.
class Packaging {
public:
    virtual ~Packaging() = default;
    // After the last stream has ended.
    virtual void finish() = 0;
};

class FlatPackaging final : public Packaging {
public:
    FlatPackaging(OdtGenerator &generator, OdfOutput &output) : output_(output), xml_(output_)
    {
        generator.addDocumentHandler(&xml_, ODF_FLAT_XML);
    }

    void finish() override {}

private:
    BorderedOutput output_;
    XmlStream xml_;
};

class ZipPackaging final : public Packaging {
public:
    ZipPackaging(OdtGenerator &generator, OdfOutput &output) : output_(output)
    {
        generator.addDocumentHandler(&manifest_.xml, ODF_MANIFEST_XML);
        generator.addDocumentHandler(&content_.xml, ODF_CONTENT_XML);
        generator.addDocumentHandler(&styles_.xml, ODF_STYLES_XML);
        generator.addDocumentHandler(&meta_.xml, ODF_META_XML);
        generator.addDocumentHandler(&settings_.xml, ODF_SETTINGS_XML);
    }

    void finish() override
    {
        package_.finish(output_);
    }

private:
    struct Stream {
        Stream(OdfPackage &package, std::string_view name) : entry(package, name), xml(entry) {}
        PackageEntry entry;
        XmlStream xml;
    };

    BorderedOutput output_;
    OdfPackage package_;
    Stream manifest_{package_, "META-INF/manifest.xml"};
    Stream content_{package_, "content.xml"};
    Stream styles_{package_, "styles.xml"};
    Stream meta_{package_, "meta.xml"};
    Stream settings_{package_, "settings.xml"};
};

class OdfDocument final : public OdfWriter {
public:
    OdfDocument(OdfPackaging packaging, OdfOutput &output, const DocumentInfo &info,
                const WriterOptions &options)
        : packaging_(make_packaging(packaging, output)), writer_(generator_, info, options, traits)
    {
    }
    OdfDocument(const OdfDocument &) = delete;
    OdfDocument &operator=(const OdfDocument &) = delete;

    void paragraph(const Paragraph &paragraph) noexcept override
    {
        guarded([&] { writer_.paragraph(paragraph); });
    }
    void page_break(uint32_t source) noexcept override
    {
        guarded([&] { writer_.page_break(source); });
    }
    void block_begin(BlockKind kind) noexcept override
    {
        guarded([&] { writer_.block_begin(kind); });
    }
    void block_end() noexcept override
    {
        guarded([&] { writer_.block_end(); });
    }
    void end_of_document() noexcept override
    {
        guarded([&] {
            writer_.end_of_document();
            packaging_->finish();
        });
    }
    OdfFailure failure() const noexcept override
    {
        return failure_;
    }
    const LossReport &losses() const noexcept override
    {
        return writer_.losses();
    }
    void release() noexcept override
    {
        delete this;
    }

private:
    std::unique_ptr<Packaging> make_packaging(OdfPackaging packaging, OdfOutput &output)
    {
        if (packaging == OdfPackaging::flat) {
            return std::make_unique<FlatPackaging>(generator_, output);
        }
        return std::make_unique<ZipPackaging>(generator_, output);
    }

    template <typename Action> void guarded(Action action) noexcept
    {
        if (failure_ != OdfFailure::none) {
            return;
        }
        try {
            action();
        } catch (const TooManyElements &) {
            failure_ = OdfFailure::too_large;
        } catch (const std::bad_alloc &) {
            failure_ = OdfFailure::out_of_memory;
        } catch (...) {
            failure_ = OdfFailure::other;
        }
    }

    OdtGenerator generator_;
    std::unique_ptr<Packaging> packaging_;
    RevengeWriter writer_;
    OdfFailure failure_ = OdfFailure::none;
};

OdfWriter *open_writer(OdfPackaging packaging, OdfOutput &output, const DocumentInfo &info,
                       const WriterOptions &options) noexcept
{
    try {
        return new OdfDocument(packaging, output, info, options);
    } catch (...) {
        return nullptr;
    }
}

constexpr OdfPlugin plugin{PFSDOC_PLUGIN_BUILD, open_writer};

} // namespace

} // namespace pfsdoc

extern "C" __attribute__((visibility("default"))) const pfsdoc::OdfPlugin *pfsdoc_odf_plugin()
{
    return &pfsdoc::plugin;
}

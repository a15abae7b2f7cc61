// The plug-in's side of the border: blocks go through RevengeWriter into libodfgen, portion by
// portion. Exceptions end here and become the writer's failure. Tests:
// tests/lib/writers/odf_plugin_test.cpp.
#include "lib/writers/odf_plugin.h"

#include "lib/writers/odf/odf_portions.h"
#include "lib/writers/odf/revenge_writer.h"
#include "lib/writers/odf/scratch.h"

#include <memory>
#include <new>

namespace pfsdoc::writers {

namespace {

// libodfgen holds some hundred bytes for each element. A portion of these many takes a
// megabyte or two, and much more time than is lost between two.
constexpr uint64_t portion_elements = 4096;
// A portion holds a paragraph at least. A hostile one, such as of nothing but tabs, would take
// hundreds of times its own size.
constexpr uint64_t most_elements = 4'000'000;

GeneratorTraits traits_of(Portions &portions)
{
    return {.most_elements = most_elements,
            .keeps_styles = true,
            .portions = &portions,
            .portion_elements = portion_elements};
}

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

class OdfDocument final : public OdfWriter {
public:
    OdfDocument(OdfPackaging packaging, OdfOutput &output, const DocumentInfo &info,
                const WriterOptions &options)
        : output_(output), portions_(make_odf_portions(packaging, options.scratch_files)),
          writer_(portions_->next(), info, options, traits_of(*portions_))
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
            portions_->finish(output_);
        });
    }
    OdfFailure failure() const noexcept override
    {
        return failure_;
    }
    int system_error() const noexcept override
    {
        return system_error_;
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
    template <typename Action> void guarded(Action action) noexcept
    {
        if (failure_ != OdfFailure::none) {
            return;
        }
        try {
            action();
        } catch (const TooManyElements &) {
            failure_ = OdfFailure::too_large;
        } catch (const ScratchFailure &fault) {
            failure_ = OdfFailure::scratch;
            system_error_ = fault.error_number;
        } catch (const std::bad_alloc &) {
            failure_ = OdfFailure::out_of_memory;
        } catch (...) {
            failure_ = OdfFailure::other;
        }
    }

    BorderedOutput output_;
    std::unique_ptr<OdfPortions> portions_;
    RevengeWriter writer_;
    OdfFailure failure_ = OdfFailure::none;
    int system_error_ = 0;
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

} // namespace pfsdoc::writers

extern "C" __attribute__((visibility("default"))) const pfsdoc::writers::OdfPlugin *
pfsdoc_odf_plugin()
{
    return &pfsdoc::writers::plugin;
}

// Whole files, written as OpenDocument: at once and in portions of a size that the input
// chooses. Both are the same, byte for byte.
#include "document.h"
#include "odf_portions.h"

#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

namespace {

using pfsdoc::GeneratorTraits;
using pfsdoc::OdfPackaging;

std::string written(pfsdoc::Document &document, OdfPackaging packaging, uint64_t portion_elements)
{
    const auto portions = pfsdoc::make_odf_portions(packaging, {});
    const GeneratorTraits traits{
        .keeps_styles = true, .portions = portions.get(), .portion_elements = portion_elements};
    pfsdoc::WriterOptions options;
    options.commands = true;
    pfsdoc::RevengeWriter writer(portions->next(0), {document.kind(), "letter"}, options, traits);
    document.read(writer);
    pfsdoc::StringOutput output;
    portions->finish(output);
    return output.text;
}

void require(bool holds)
{
    if (!holds) {
        std::abort();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, std::size_t size)
{
    constexpr unsigned largest_portion = 32;
    auto document = pfsdoc::Document::from_bytes({data, data + size});
    if (document.ok()) {
        const uint64_t portion_elements = 1 + data[size - 1] % largest_portion;
        const auto packaging = size % 2 == 0 ? OdfPackaging::flat : OdfPackaging::zip;
        require(written(document.value(), packaging, GeneratorTraits::unlimited) ==
                written(document.value(), packaging, portion_elements));
    }
    return 0;
}

// Whole files, written as OpenDocument: at once and in portions of a size that the input
// chooses. Both are the same, but for the names and the order of paragraph styles; and where
// even these are, the packages are the same, byte for byte.
#include "lib/writers/odf/odf_portions.h"
#include "pfsdoc/document.h"
#include "tests/support/resolved_styles.h"

#include <cstdint>
#include <cstdlib>
#include <set>
#include <string>
#include <vector>

namespace {

using pfsdoc::writers::GeneratorTraits;
using pfsdoc::writers::OdfPackaging;

std::string written(pfsdoc::Document &document, OdfPackaging packaging, uint64_t portion_elements)
{
    const auto portions = pfsdoc::writers::make_odf_portions(packaging, {});
    const GeneratorTraits traits{
        .keeps_styles = true, .portions = portions.get(), .portion_elements = portion_elements};
    pfsdoc::WriterOptions options;
    options.commands = true;
    pfsdoc::writers::RevengeWriter writer(portions->next(), {document.kind(), "letter"}, options,
                                          traits);
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

// Styles with the same definition may be one.
void require_alike(const tests::ResolvedStyles &parts, const tests::ResolvedStyles &whole)
{
    const auto distinct = [](const std::multiset<std::string> &definitions) {
        return std::set<std::string>(definitions.begin(), definitions.end());
    };
    require(parts.fault.empty());
    require(whole.fault.empty());
    require(parts.text == whole.text);
    require(parts.definitions.size() <= whole.definitions.size());
    require(distinct(parts.definitions) == distinct(whole.definitions));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, std::size_t size)
{
    constexpr unsigned largest_portion = 32;
    auto document = pfsdoc::Document::from_bytes({data, data + size});
    if (document.ok()) {
        const uint64_t portion_elements = 1 + data[size - 1] % largest_portion;
        const std::string whole =
            written(document.value(), OdfPackaging::flat, GeneratorTraits::unlimited);
        const std::string parts = written(document.value(), OdfPackaging::flat, portion_elements);
        require_alike(tests::resolved(parts), tests::resolved(whole));
        if (parts == whole) {
            require(written(document.value(), OdfPackaging::zip, portion_elements) ==
                    written(document.value(), OdfPackaging::zip, GeneratorTraits::unlimited));
        }
    }
    return 0;
}

// The list of formats: one line for each.
#include "pfsdoc/formats.h"

#include "lib/writers/formats.h"

#include <algorithm>
#include <array>

namespace pfsdoc {

namespace {

constexpr std::array all_formats = {
    &writers::text_format,   &writers::markdown_format, &writers::json_format,
    &writers::pandoc_format, &writers::html_format,
#ifdef PFSDOC_HAS_ZLIB
    &writers::odt_format,
#endif
    &writers::fodt_format,   &writers::trace_format,
};

} // namespace

std::span<const Format *const> formats()
{
    return all_formats;
}

const Format *find_format(std::string_view name)
{
    const auto found = std::find_if(all_formats.begin(), all_formats.end(),
                                    [name](const Format *format) { return format->name == name; });
    return found != all_formats.end() ? *found : nullptr;
}

} // namespace pfsdoc

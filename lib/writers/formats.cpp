// The list of formats: one line for each.
#include "lib/writers/formats.h"

#include <algorithm>
#include <array>

namespace pfsdoc {

namespace {

constexpr std::array all_formats = {
    &text_format, &markdown_format, &json_format, &pandoc_format,
    &html_format, &odt_format,      &fodt_format, &trace_format,
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

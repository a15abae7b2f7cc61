#include "cli/option_set.h"

#include <algorithm>
#include <string_view>

namespace pfsdoc::cli {

namespace {

bool is_usual(std::string_view argument)
{
    return !argument.starts_with("-") || argument == "-" || argument.starts_with("-o") ||
           argument.starts_with("-t") || argument == "--output" || argument == "--to";
}

} // namespace

OptionSet wanted_options(const std::vector<std::string> &arguments)
{
    const bool all_usual = std::all_of(arguments.begin(), arguments.end(), is_usual);
    return all_usual ? OptionSet::usual : OptionSet::all;
}

} // namespace pfsdoc::cli

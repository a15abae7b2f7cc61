#include "cli/format_options.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

namespace pfsdoc::cli {

namespace {

// An option of the command line, without its dashes, and the name that formats list it by.
struct FormatOption {
    std::string_view option;
    std::string_view name;
};
constexpr FormatOption format_options[] = {
    {"no-page-breaks", "page_breaks"},
    {"no-headers", "headers"},
    {"commands", "commands"},
    {"wrap", "wrap"},
    {"raw-lines", "raw_lines"},
    {"lines", "lines"},
    {"offsets", "offsets"},
    {"fold", "fold"},
};

// Names are compared, since asking the parser for an option by its name costs more than parsing.
bool is_given(const CLI::App &command, std::string_view name)
{
    const std::vector<CLI::Option *> &given = command.parse_order();
    return std::any_of(given.begin(), given.end(), [name](const CLI::Option *option) {
        const std::vector<std::string> &names = option->get_lnames();
        return std::find(names.begin(), names.end(), name) != names.end();
    });
}

} // namespace

Status check_format_options(const CLI::App &command, const Format &format)
{
    for (const FormatOption &entry : format_options) {
        if (is_given(command, entry.option) && !format.reads_option(entry.name)) {
            std::string what = "--";
            what.append(entry.option).append(" means nothing for ").append(format.name);
            return Error{ErrorKind::usage, what, "leave it out"};
        }
    }
    return {};
}

} // namespace pfsdoc::cli

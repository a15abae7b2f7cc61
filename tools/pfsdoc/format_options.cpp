#include "format_options.h"

#include <string>
#include <string_view>

namespace pfsdoc {

namespace {

// An option of the command line and the names that formats list it by.
struct FormatOption {
    std::string_view option;
    std::string_view name;
};
constexpr FormatOption format_options[] = {
    {"--no-page-breaks", "page_breaks"},
    {"--no-headers", "headers"},
    {"--commands", "commands"},
    {"--wrap", "wrap"},
    {"--raw-lines", "raw_lines"},
    {"--lines", "lines"},
    {"--offsets", "offsets"},
    {"--fold", "fold"},
};

} // namespace

Status check_format_options(const CLI::App &command, const Format &format)
{
    for (const FormatOption &entry : format_options) {
        const CLI::Option *option = command.get_option_no_throw(std::string(entry.option));
        if (option != nullptr && option->count() > 0 && !format.reads_option(entry.name)) {
            std::string what(entry.option);
            what.append(" means nothing for ").append(format.name);
            return Error{ErrorKind::usage, what, "leave it out"};
        }
    }
    return {};
}

} // namespace pfsdoc

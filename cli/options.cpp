#include "cli/options.h"

#include <algorithm>
#include <string>

namespace pfsdoc::cli {

namespace {

// Null where several formats read the option, or all do.
const Format *only_format(const OptionEntry &entry)
{
    const auto reads = [&entry](const Format *format) {
        return format->options.has_all(entry.writer_options);
    };
    const auto first = std::find_if(formats().begin(), formats().end(), reads);
    const auto others = first == formats().end() ? first : first + 1;
    return first != others && std::none_of(others, formats().end(), reads) ? *first : nullptr;
}

} // namespace

void Options::add_to(CLI::App &parser, Command command)
{
    const bool has_formats = (command & (convert_command | batch_command)) != 0;
    for (const OptionEntry &entry : option_table()) {
        if ((entry.commands & command) == 0) {
            continue;
        }
        CLI::Option *option = entry.add(parser, entry, arguments_);
        if (const Format *format = has_formats ? only_format(entry) : nullptr) {
            option->description(std::string(format->name) + ": " + entry.help);
        }
        if (entry.excludes != nullptr) {
            option->excludes(entry.excludes);
        }
        added_.push_back({&entry, option});
    }
}

Status Options::check_format(const Format &format) const
{
    for (const Added &added : added_) {
        if (added.option->count() > 0 && !format.options.has_all(added.entry->writer_options)) {
            std::string what = added.entry->names;
            what.append(" does not apply to ").append(format.name);
            return Error{ErrorKind::usage, what, "leave it out"};
        }
    }
    return {};
}

Result<CodePage> code_page_of(const Arguments &arguments)
{
    return arguments.charset.empty() ? CodePage::ibm437() : CodePage::named(arguments.charset);
}

} // namespace pfsdoc::cli

#include "cli/format_names.h"

#include "cli/near_miss.h"
#include "lib/base/printable.h"

#include <algorithm>
#include <array>
#include <vector>

namespace pfsdoc::cli {

namespace {

struct Alias {
    std::string_view name;
    std::string_view format;
};
constexpr std::array<Alias, 2> aliases = {{{"htm", "html"}, {"plain", "text"}}};

// Formats that are not written, with the way that leads to them.
struct Elsewhere {
    std::string_view name;
    std::string_view way;
};
constexpr std::string_view by_word_processor =
    "convert to odt, open that in a word processor, and save it from there";
constexpr std::string_view by_printing =
    "convert to odt or html, open that, and print it to a file from there";
constexpr std::string_view by_pandoc = "convert to pandoc, and let pandoc -f json write it";
constexpr std::array<Elsewhere, 14> elsewhere = {{{"docx", by_word_processor},
                                                  {"doc", by_word_processor},
                                                  {"word", by_word_processor},
                                                  {"rtf", by_word_processor},
                                                  {"wpd", by_word_processor},
                                                  {"pages", by_word_processor},
                                                  {"pdf", by_printing},
                                                  {"ps", by_printing},
                                                  {"epub", by_pandoc},
                                                  {"tex", by_pandoc},
                                                  {"latex", by_pandoc},
                                                  {"rst", by_pandoc},
                                                  {"org", by_pandoc},
                                                  {"docbook", by_pandoc}}};

const Format *find(std::string_view lower)
{
    const auto alias = std::find_if(aliases.begin(), aliases.end(),
                                    [lower](const Alias &entry) { return entry.name == lower; });
    const std::string_view name = alias == aliases.end() ? lower : alias->format;
    if (const Format *format = find_format(name)) {
        return format;
    }
    const auto all = formats();
    const auto found = std::find_if(
        all.begin(), all.end(), [name](const Format *format) { return format->extension == name; });
    return found == all.end() ? nullptr : *found;
}

std::string remedy_for(std::string_view lower)
{
    for (const Elsewhere &entry : elsewhere) {
        if (entry.name == lower) {
            return std::string(entry.way);
        }
    }
    std::vector<std::string> known;
    for (const Format *format : formats()) {
        known.emplace_back(format->name);
    }
    return did_you_mean(lower, known, "see pfsdoc convert --help");
}

} // namespace

Result<const Format *> format_named(std::string_view name)
{
    const std::string lower = lower_case(name);
    if (const Format *format = find(lower)) {
        return format;
    }
    return Error{ErrorKind::usage, "there is no output format \"" + std::string(name) + "\"",
                 remedy_for(lower)};
}

const Format *format_of_file(std::string_view file)
{
    const std::string lower = lower_case(base::base_name(file));
    // The longest ending first: one of them has a dot in it.
    for (std::size_t dot = lower.find('.'); dot != std::string::npos;
         dot = lower.find('.', dot + 1)) {
        if (const Format *format = find(std::string_view(lower).substr(dot + 1))) {
            return format;
        }
    }
    return nullptr;
}

} // namespace pfsdoc::cli

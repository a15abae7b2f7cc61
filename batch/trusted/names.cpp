#include "batch/trusted/names.h"

#include "lib/base/escaped_name.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <functional>
#include <memory>
#include <new>
#include <utf8proc.h>

namespace pfsdoc::batch {

namespace {

constexpr std::size_t escape_length = 4;
constexpr std::string_view escaped_parent = "\\x2E\\x2E";
constexpr std::string_view escaped_dot = "\\x2E";
constexpr std::string_view temporary_start = ".pfsdoc-"; // of OutputFolder's temporary files
constexpr std::string_view unnamed = "unnamed";

constexpr std::array<std::string_view, 7> archive_endings = {
    ".zip", ".tar", ".tar.gz", ".tgz", ".tar.bz2", ".tar.xz", ".tar.zst"};

bool is_continuation(char byte)
{
    return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

// Cuts neither a character nor an escape in two. Every backslash here begins an escape.
void cut(std::string &part)
{
    if (part.size() <= longest_name_part) {
        return;
    }
    std::size_t length = longest_name_part;
    while (is_continuation(part[length])) {
        --length;
    }
    const std::size_t backslash = part.rfind('\\', length - 1);
    if (backslash != std::string::npos && backslash + escape_length > length) {
        length = backslash;
    }
    part.resize(length);
}

char lower_case(char letter)
{
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

std::string lower_case(std::string_view text)
{
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](char letter) { return lower_case(letter); });
    return lower;
}

std::string safe_part(std::string_view part)
{
    if (part == "..") {
        return std::string(escaped_parent);
    }
    std::string safe = base::escaped_name(part);
    if (lower_case(safe.substr(0, temporary_start.size())) == temporary_start) {
        safe.replace(0, 1, escaped_dot);
    }
    cut(safe);
    return safe;
}

// "a (2).doc" of "a.doc"; the ending is looked for behind the first byte.
std::string numbered(std::string_view part, uint32_t number)
{
    const std::size_t dot = part.rfind('.');
    const std::size_t place = dot == std::string_view::npos || dot == 0 ? part.size() : dot;
    return std::string(part).insert(place, " (" + std::to_string(number) + ")");
}

bool is_ascii(std::string_view text)
{
    return std::all_of(text.begin(), text.end(),
                       [](char byte) { return static_cast<unsigned char>(byte) < 0x80; });
}

struct FreeMemory {
    void operator()(void *memory) const
    {
        std::free(memory);
    }
};

} // namespace

std::string safe_name(std::string_view path, Separators separators)
{
    const std::string_view between = separators == Separators::slash ? "/" : "/\\";
    std::string name;
    while (!path.empty()) {
        const std::size_t end = std::min(path.find_first_of(between), path.size());
        const std::string_view part = path.substr(0, end);
        if (!part.empty() && part != ".") {
            const std::string longer = below(name, safe_part(part));
            if (longer.size() > longest_name) {
                break;
            }
            name = longer;
        }
        path.remove_prefix(std::min(end + 1, path.size()));
    }
    return name;
}

std::string below(const std::string &folder, const std::string &name)
{
    return folder.empty() ? name : folder + "/" + name;
}

bool is_archive_name(std::string_view name)
{
    constexpr std::size_t longest_ending = 8;
    const std::string ending =
        lower_case(name.substr(name.size() - std::min(name.size(), longest_ending)));
    return std::any_of(archive_endings.begin(), archive_endings.end(),
                       [&](std::string_view known) { return ending.ends_with(known); });
}

std::string folded_name(std::string_view name)
{
    if (is_ascii(name)) {
        return lower_case(name);
    }
    constexpr auto options = static_cast<utf8proc_option_t>(UTF8PROC_STABLE | UTF8PROC_DECOMPOSE |
                                                            UTF8PROC_CASEFOLD | UTF8PROC_IGNORE);
    utf8proc_uint8_t *result = nullptr;
    const utf8proc_ssize_t size =
        ::utf8proc_map(reinterpret_cast<const utf8proc_uint8_t *>(name.data()),
                       static_cast<utf8proc_ssize_t>(name.size()), &result, options);
    const std::unique_ptr<utf8proc_uint8_t, FreeMemory> owned(result);
    if (size == UTF8PROC_ERROR_NOMEM) {
        throw std::bad_alloc();
    }
    // Names are UTF-8; what was not would be compared as it is.
    return size < 0 ? std::string(name)
                    : std::string(reinterpret_cast<const char *>(result),
                                  static_cast<std::size_t>(size));
}

NameSet::Use &NameSet::use_of(const std::string &folded)
{
    return uses_[std::hash<std::string>()(folded)];
}

NameSet::Path NameSet::child(const Path &folder, std::string_view part) const
{
    return {below(folder.name, std::string(part)), below(folder.folded, folded_name(part))};
}

// The folder of that name, or the one that all its files are in instead since a file has the name.
NameSet::Path NameSet::enter(const Path &folder, std::string_view part)
{
    Path wanted = child(folder, part);
    Use &use = use_of(wanted.folded);
    if (!use.is_file) {
        use.is_folder = true;
        return wanted;
    }
    const bool is_known = use.folder_number != 0;
    for (;;) {
        const uint32_t number = is_known ? use.folder_number : use.next_number++;
        Path instead = child(folder, numbered(part, number));
        Use &other = use_of(instead.folded);
        if (is_known || (!other.is_file && !other.is_folder)) {
            use.folder_number = number;
            other.is_folder = true;
            return instead;
        }
    }
}

// All but the last part, which is left.
NameSet::Path NameSet::enter_all(std::string_view &name)
{
    Path folder;
    for (std::size_t slash = name.find('/'); slash != std::string_view::npos;
         slash = name.find('/')) {
        folder = enter(folder, name.substr(0, slash));
        name.remove_prefix(slash + 1);
    }
    name = name.empty() ? unnamed : name;
    return folder;
}

void NameSet::reserve(const std::string &path)
{
    std::string_view last = path;
    const Path folder = enter_all(last);
    use_of(child(folder, last).folded).is_file = true;
}

std::string NameSet::unique(const std::string &name)
{
    std::string_view last = name;
    const Path folder = enter_all(last);
    Path path = child(folder, last);
    Use &first = use_of(path.folded + ending_);
    for (;;) {
        Use &use = use_of(path.folded + ending_);
        if (!use.is_file && !use.is_folder) {
            use.is_file = true;
            return path.name;
        }
        path = child(folder, numbered(last, first.next_number++));
    }
}

std::string NameSet::unique_folder(const std::string &name)
{
    std::string_view last = name;
    const Path folder = enter_all(last);
    Path path = child(folder, last);
    Use &first = use_of(path.folded);
    for (;;) {
        Use &use = use_of(path.folded);
        Use &line = use_of(path.folded + ending_); // of an error that goes by its name
        if (!use.is_file && !use.is_named && !line.is_file && !line.is_folder) {
            use.is_folder = use.is_named = true;
            line.is_file = true;
            return path.name;
        }
        path = child(folder, numbered(last, first.next_number++));
    }
}

} // namespace pfsdoc::batch

#include "batch/trusted/names.h"

#include "lib/base/printable.h"

#include <algorithm>
#include <array>
#include <functional>

namespace pfsdoc::batch {

namespace {

constexpr std::string_view escaped_backslash = "\\x5C";
constexpr std::string_view escaped_parent = "\\x2E\\x2E";
constexpr std::string_view unnamed = "unnamed";
constexpr uint64_t second = 2;

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
    if (backslash != std::string::npos && backslash + escaped_backslash.size() > length) {
        length = backslash;
    }
    part.resize(length);
}

std::string safe_part(std::string_view part)
{
    if (part == "..") {
        return std::string(escaped_parent);
    }
    std::string safe;
    for (;;) {
        const std::size_t backslash = part.find('\\');
        safe += base::printable(part.substr(0, backslash));
        if (backslash == std::string_view::npos) {
            break;
        }
        safe += escaped_backslash;
        part.remove_prefix(backslash + 1);
    }
    cut(safe);
    return safe;
}

// "a (2).doc" of "dir/a.doc"; the ending is looked for in the last part, behind its first byte.
std::string numbered(const std::string &name, uint64_t number)
{
    const std::size_t slash = name.rfind('/');
    const std::size_t part = slash == std::string::npos ? 0 : slash + 1;
    const std::size_t dot = name.rfind('.');
    const std::size_t place = dot == std::string::npos || dot <= part ? name.size() : dot;
    return std::string(name).insert(place, " (" + std::to_string(number) + ")");
}

char lower_case(char letter)
{
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

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
    std::string ending(name.substr(name.size() - std::min(name.size(), longest_ending)));
    std::transform(ending.begin(), ending.end(), ending.begin(), lower_case);
    return std::any_of(archive_endings.begin(), archive_endings.end(),
                       [&](std::string_view known) { return ending.ends_with(known); });
}

std::string NameSet::unique(const std::string &name)
{
    std::string wanted = name.empty() ? std::string(unnamed) : name;
    const std::hash<std::string> hash;
    const auto [entry, is_new] = next_number_.try_emplace(hash(wanted), second);
    if (is_new) {
        return wanted;
    }
    for (;;) {
        std::string candidate = numbered(wanted, entry->second++);
        if (next_number_.try_emplace(hash(candidate), second).second) {
            return candidate;
        }
    }
}

} // namespace pfsdoc::batch

// A zip archive ends with its directory, and that with a record that says where it begins:
//
//     members | entry entry ... | zip64 record, its locator | end record, comment
//
// Archives of 4 GB and more have their numbers in the zip64 record, and in a part of an entry's own
// extra field. Nothing here is believed but by what lies inside the archive.
#include "batch/sandboxed/zip_directory.h"

#include <algorithm>
#include <cstdint>
#include <optional>

namespace pfsdoc::batch {

namespace {

constexpr std::string_view entry_signature("PK\1\2", 4);
constexpr std::string_view end_signature("PK\5\6", 4);
constexpr std::string_view locator_signature("PK\6\7", 4);
constexpr std::string_view end_64_signature("PK\6\6", 4);
constexpr std::size_t entry_size = 46;
constexpr std::size_t end_size = 22;
constexpr std::size_t locator_size = 20;
constexpr std::size_t end_64_size = 56;
constexpr std::size_t longest_comment = 65535;
constexpr uint64_t in_zip64 = 0xFFFFFFFF;
constexpr uint64_t zip64_extra = 1;

// Little endian; 0 beyond the end.
uint64_t number_at(std::string_view bytes, std::size_t offset, std::size_t size)
{
    uint64_t number = 0;
    for (std::size_t i = size; i-- > 0;) {
        const unsigned byte =
            offset + i < bytes.size() ? static_cast<unsigned char>(bytes[offset + i]) : 0U;
        number = number << 8U | byte;
    }
    return number;
}

std::string_view part_of(std::string_view bytes, uint64_t offset, uint64_t size)
{
    return offset > bytes.size() ? std::string_view() : bytes.substr(offset, size);
}

// Empty where there is none.
std::string_view directory_of(std::string_view archive)
{
    const std::size_t searched = std::min(archive.size(), end_size + longest_comment);
    const std::size_t end = archive.rfind(end_signature);
    if (end == std::string_view::npos || end < archive.size() - searched) {
        return {};
    }
    const std::string_view record = archive.substr(end);
    const uint64_t size = number_at(record, 12, 4);
    const uint64_t offset = number_at(record, 16, 4);
    const std::string_view locator =
        end < locator_size ? std::string_view() : archive.substr(end - locator_size, locator_size);
    if (locator.starts_with(locator_signature)) {
        const auto record_64 = part_of(archive, number_at(locator, 8, 8), end_64_size);
        if (record_64.starts_with(end_64_signature)) {
            return part_of(archive, number_at(record_64, 48, 8), number_at(record_64, 40, 8));
        }
    }
    // A program before the archive, which unpacks it, moves all of it on.
    return part_of(archive, size <= end ? end - size : offset, size);
}

struct Entry {
    uint64_t offset; // of its member
    std::string_view name;
};

// Of an entry whose offset is in its zip64 part, behind the two sizes where those are, too.
uint64_t offset_in_extra(std::string_view entry, std::string_view extra)
{
    while (extra.size() >= 4) {
        const uint64_t size = number_at(extra, 2, 2);
        if (number_at(extra, 0, 2) == zip64_extra) {
            const std::size_t sizes = (number_at(entry, 20, 4) == in_zip64 ? 8U : 0U) +
                                      (number_at(entry, 24, 4) == in_zip64 ? 8U : 0U);
            return number_at(part_of(extra, 4, size), sizes, 8);
        }
        extra = part_of(extra, 4 + size, extra.size());
    }
    return in_zip64;
}

// Takes it off the directory.
std::optional<Entry> next_entry(std::string_view &directory)
{
    if (!directory.starts_with(entry_signature) || directory.size() < entry_size) {
        return std::nullopt;
    }
    const uint64_t name_size = number_at(directory, 28, 2);
    const uint64_t extra_size = number_at(directory, 30, 2);
    uint64_t offset = number_at(directory, 42, 4);
    if (offset == in_zip64) {
        offset = offset_in_extra(directory, part_of(directory, entry_size + name_size, extra_size));
    }
    const Entry entry{offset, part_of(directory, entry_size, name_size)};
    const uint64_t comment_size = number_at(directory, 32, 2);
    directory =
        part_of(directory, entry_size + name_size + extra_size + comment_size, directory.size());
    return entry;
}

} // namespace

std::vector<std::string_view> repeated_entries(std::string_view archive)
{
    std::vector<Entry> entries;
    std::string_view directory = directory_of(archive);
    while (const std::optional<Entry> entry = next_entry(directory)) {
        entries.push_back(*entry);
    }
    std::stable_sort(entries.begin(), entries.end(), [](const Entry &one, const Entry &other) {
        return one.offset < other.offset;
    });
    std::vector<std::string_view> repeated;
    for (std::size_t i = 1; i < entries.size(); ++i) {
        if (entries[i].offset == entries[i - 1].offset && !entries[i].name.ends_with('/')) {
            repeated.push_back(entries[i].name);
        }
    }
    std::sort(repeated.begin(), repeated.end(), [](std::string_view one, std::string_view other) {
        return one.data() < other.data();
    });
    return repeated;
}

} // namespace pfsdoc::batch

#include "batch/trusted/folders.h"

#include <algorithm>
#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <memory>

namespace pfsdoc::batch {

namespace {

struct CloseFolder {
    void operator()(DIR *folder) const
    {
        ::closedir(folder);
    }
};

// Its names without those of itself and its parent, sorted.
Result<std::vector<std::string>> entries_of(int folder)
{
    const int descriptor = ::fcntl(folder, F_DUPFD_CLOEXEC, 0);
    const std::unique_ptr<DIR, CloseFolder> listing(::fdopendir(descriptor));
    if (listing == nullptr) {
        const int error_number = errno;
        const base::Descriptor closed_again(descriptor);
        return cannot_be_read(error_number);
    }
    std::vector<std::string> entries;
    errno = 0;
    while (const dirent *entry = ::readdir(listing.get())) {
        const std::string name = entry->d_name;
        if (name != "." && name != "..") {
            entries.push_back(name);
        }
    }
    if (errno != 0) {
        return cannot_be_read(errno);
    }
    std::sort(entries.begin(), entries.end());
    return entries;
}

Error too_deep()
{
    return {ErrorKind::limit, "lies more than " + std::to_string(deepest_folder) + " folders deep",
            "name it itself"};
}

} // namespace

FolderWalk::FolderWalk(base::Descriptor folder, std::string name, std::string source,
                       const LeftOut &left_out, NameSet &names)
    : left_out_(left_out), names_(names)
{
    if (std::optional<Error> error = enter(std::move(folder), name, source)) {
        name = name.empty() ? names_.unique(name) : name;
        first_ = FoundFile{failed_input(std::move(name), std::move(source), std::move(*error))};
    }
}

// An error, or nothing where there is one more level.
std::optional<Error> FolderWalk::enter(base::Descriptor folder, std::string name,
                                       std::string source)
{
    if (levels_.size() == deepest_folder) {
        return too_deep();
    }
    Result<std::vector<std::string>> entries = entries_of(folder.get());
    if (!entries.ok()) {
        return entries.error();
    }
    levels_.push_back(
        {std::move(folder), std::move(name), std::move(source), std::move(entries.value())});
    return std::nullopt;
}

// Nothing for a folder: its files come next.
std::optional<FoundFile> FolderWalk::visit(const std::string &entry)
{
    if (left_out_.has_name(entry)) {
        return std::nullopt;
    }
    const Level &level = levels_.back();
    std::string name = below(level.name, safe_name(entry, Separators::slash));
    std::string source = level.source + (level.source.ends_with('/') ? "" : "/") + entry;
    Result<Entry> opened = open_entry(level.folder.get(), entry, Links::refused);
    if (!opened.ok()) {
        return FoundFile{failed_input(names_.unique(name), std::move(source), opened.error())};
    }
    Entry &found = opened.value();
    if (left_out_.has(found)) {
        return std::nullopt;
    }
    if (!found.is_folder) {
        const bool is_archive = is_archive_name(entry);
        return FoundFile{{is_archive ? names_.unique_folder(name) : names_.unique(name),
                          std::move(source), std::move(found.file), found.size},
                         is_archive};
    }
    std::optional<Error> error = enter(std::move(found.file), name, source);
    return error ? std::optional(FoundFile{
                       failed_input(names_.unique(name), std::move(source), std::move(*error))})
                 : std::nullopt;
}

std::optional<FoundFile> FolderWalk::next()
{
    if (first_) {
        return std::exchange(first_, std::nullopt);
    }
    while (!levels_.empty()) {
        Level &level = levels_.back();
        if (level.index == level.entries.size()) {
            levels_.pop_back();
            continue;
        }
        const std::string entry = std::move(level.entries[level.index++]);
        if (std::optional<FoundFile> found = visit(entry)) {
            return found;
        }
    }
    return std::nullopt;
}

} // namespace pfsdoc::batch

#include "batch/trusted/folder_tree.h"

#include <algorithm>
#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <optional>
#include <sys/stat.h>

namespace pfsdoc::batch {

namespace {

constexpr mode_t new_folder_mode = 0777;
constexpr int read_flags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;
constexpr int path_flags = O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;

struct CloseFolder {
    void operator()(DIR *folder) const
    {
        ::closedir(folder);
    }
};
using Listing = std::unique_ptr<DIR, CloseFolder>;

Listing list(int folder)
{
    const int opened = ::openat(folder, ".", read_flags);
    Listing listing(opened < 0 ? nullptr : ::fdopendir(opened));
    if (listing == nullptr) {
        const base::Descriptor closed(opened);
    }
    return listing;
}

bool is_folder(int above, const dirent &entry)
{
    struct stat status {};
    return entry.d_type == DT_DIR ||
           (entry.d_type == DT_UNKNOWN &&
            ::fstatat(above, entry.d_name, &status, AT_SYMLINK_NOFOLLOW) == 0 &&
            S_ISDIR(status.st_mode));
}

// What is in a folder, sorted.
struct Entries {
    std::vector<std::string> files;
    std::vector<std::string> folders;
};

std::optional<Entries> entries_of(int folder)
{
    const Listing listing = list(folder);
    if (listing == nullptr) {
        return std::nullopt;
    }
    Entries entries;
    while (const dirent *entry = ::readdir(listing.get())) {
        const std::string name = entry->d_name;
        if (name != "." && name != "..") {
            (is_folder(folder, *entry) ? entries.folders : entries.files).push_back(name);
        }
    }
    std::sort(entries.files.begin(), entries.files.end());
    std::sort(entries.folders.rbegin(), entries.folders.rend());
    return entries;
}

bool is_link(int folder, const std::string &name)
{
    struct stat status {};
    return ::fstatat(folder, name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0 &&
           S_ISLNK(status.st_mode);
}

base::Descriptor open_part(int folder, const std::string &name, FolderTree::Missing missing)
{
    base::Descriptor part(::openat(folder, name.c_str(), path_flags));
    if (!part.is_open() && errno == ENOENT && missing == FolderTree::Missing::made &&
        (::mkdirat(folder, name.c_str(), new_folder_mode) == 0 || errno == EEXIST)) {
        part = base::Descriptor(::openat(folder, name.c_str(), path_flags));
    }
    if (!part.is_open() && errno == ENOTDIR) {
        errno = is_link(folder, name) ? ELOOP : ENOTDIR;
    }
    return part;
}

} // namespace

std::pair<std::string, std::string> split_name(const std::string &name)
{
    const std::size_t slash = name.rfind('/');
    return slash == std::string::npos ? std::pair(std::string(), name)
                                      : std::pair(name.substr(0, slash), name.substr(slash + 1));
}

FolderTree::FolderTree(base::Descriptor top) : top_(std::move(top))
{
    note_volume(top_.get());
}

int FolderTree::open(const std::string &name, Missing missing)
{
    if (name.empty()) {
        return top_.get();
    }
    if (opened_.is_open() && name == opened_name_) {
        return opened_.get();
    }
    base::Descriptor folder;
    for (std::size_t begin = 0; begin <= name.size();) {
        const std::size_t end = std::min(name.find('/', begin), name.size());
        const int above = folder.is_open() ? folder.get() : top_.get();
        folder = open_part(above, name.substr(begin, end - begin), missing);
        if (!folder.is_open()) {
            return -1;
        }
        begin = end + 1;
    }
    note_volume(folder.get());
    opened_ = std::move(folder);
    opened_name_ = name;
    return opened_.get();
}

void FolderTree::note_volume(int folder)
{
    struct stat status {};
    if (::fstat(folder, &status) != 0) {
        return;
    }
    const bool is_known =
        std::any_of(volumes_.begin(), volumes_.end(),
                    [&status](const Volume &volume) { return volume.device == status.st_dev; });
    if (!is_known) {
        volumes_.push_back({status.st_dev, base::Descriptor(::openat(folder, ".", read_flags))});
    }
}

std::vector<int> FolderTree::volumes() const
{
    std::vector<int> folders;
    for (const Volume &volume : volumes_) {
        if (volume.folder.is_open()) {
            folders.push_back(volume.folder.get());
        }
    }
    return folders;
}

void visit_files(FolderTree &tree, const VisitFile &visit, const LeaveOut &is_left_out)
{
    for (std::vector<std::string> waiting = {""}; !waiting.empty();) {
        const std::string folder = std::move(waiting.back());
        waiting.pop_back();
        const int opened = tree.open(folder, FolderTree::Missing::refused);
        if (opened >= 0 && is_left_out && is_left_out(opened)) {
            continue;
        }
        const std::optional<Entries> entries = opened < 0 ? std::nullopt : entries_of(opened);
        if (!entries) {
            visit(folder, "");
            continue;
        }
        for (const std::string &file : entries->files) {
            visit(folder, file);
        }
        for (const std::string &below : entries->folders) {
            waiting.push_back(folder.empty() ? below : folder + "/" + below);
        }
    }
}

} // namespace pfsdoc::batch

#include "batch/trusted/input_identities.h"

#include "batch/trusted/folder_tree.h"
#include "batch/trusted/lists.h"

#include <chrono>
#include <fcntl.h>
#include <sys/stat.h>

namespace pfsdoc::batch {

namespace {

// Opened by this name a file is read from its start, whatever was read of standard input.
std::string path_of_list(const std::string &name)
{
    return name == "-" ? "/dev/stdin" : name;
}

FileIdentity identity_in(const struct stat &status)
{
    return {status.st_dev, status.st_ino};
}

} // namespace

InputIdentities::InputIdentities(const InputOptions &options)
    : exclude_(identity_of(options.exclude))
{
    for (const std::string &path : options.paths) {
        add_path(path);
    }
    for (const std::string &list : options.list_files) {
        add_list(list);
    }
}

void InputIdentities::add_path(const std::string &path)
{
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0) {
        return;
    }
    if (S_ISDIR(status.st_mode)) {
        add_folder(path);
    } else {
        files_.insert({status.st_dev, status.st_ino});
    }
}

void InputIdentities::add_folder(const std::string &path)
{
    base::Descriptor top(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!top.is_open()) {
        return;
    }
    FolderTree tree(std::move(top));
    const auto is_left_out = [this](int folder) {
        struct stat status {};
        return ::fstat(folder, &status) == 0 && identity_in(status) == exclude_;
    };
    visit_files(
        tree,
        [&](const std::string &folder, const std::string &file) {
            struct stat status {};
            if (::fstatat(tree.open(folder, FolderTree::Missing::refused), file.c_str(), &status,
                          AT_SYMLINK_NOFOLLOW) == 0) {
                files_.insert({status.st_dev, status.st_ino});
            }
        },
        is_left_out);
}

// Files that can be read twice need not be waited for.
void InputIdentities::add_list(const std::string &name)
{
    const std::string path = path_of_list(name);
    add_path(path);
    PathList list(path, [](int, std::chrono::steady_clock::time_point) { return true; });
    while (const std::optional<PathList::Line> line = list.next()) {
        if (!line->error) {
            add_path(line->path);
        }
    }
}

bool can_be_read_twice(const std::string &list)
{
    struct stat status {};
    return ::stat(path_of_list(list).c_str(), &status) != 0 || S_ISREG(status.st_mode);
}

} // namespace pfsdoc::batch

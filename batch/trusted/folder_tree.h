// The folders below one, found without following a symbolic link: somebody may have put one
// there that leads to other people's files.
//
// Each part of a name is opened in the folder before it. The folder that was opened last stays
// open, since files of one folder come after each other. Test:
// tests/batch/trusted/folder_tree_test.cpp.
#pragma once

#include "lib/base/descriptor.h"

#include <functional>
#include <string>
#include <sys/types.h>
#include <utility>
#include <vector>

namespace pfsdoc::batch {

// A name's folder, empty for the topmost, and the part behind it.
std::pair<std::string, std::string> split_name(const std::string &name);

class FolderTree {
public:
    enum class Missing { refused, made };

    explicit FolderTree(base::Descriptor top);

    int top() const
    {
        return top_.get();
    }
    // For a name with "/" between its parts; the empty one is the topmost folder's. The
    // descriptor is for names in it only, and is valid until the next call. -1 with errno: ELOOP
    // where a part is a symbolic link.
    int open(const std::string &name, Missing missing);
    // The next call looks for its folder again.
    void forget()
    {
        opened_ = base::Descriptor();
    }
    // A folder on each file system that was met: more than one where some are mounted below.
    std::vector<int> volumes() const;

private:
    struct Volume {
        dev_t device;
        base::Descriptor folder;
    };

    void note_volume(int folder);

    base::Descriptor top_;
    std::string opened_name_;
    base::Descriptor opened_;
    std::vector<Volume> volumes_;
};

// Calls for each file in the folders of the tree, the topmost included: in the order of the names,
// but all files of a folder before the folders in it. Where a folder cannot be listed, the file's
// name is empty. Folders that are left out are not entered.
using VisitFile = std::function<void(const std::string &folder, const std::string &file)>;
using LeaveOut = std::function<bool(int folder)>;
void visit_files(FolderTree &tree, const VisitFile &visit, const LeaveOut &is_left_out = {});

} // namespace pfsdoc::batch

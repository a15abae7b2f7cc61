// All files that a run reads, by what they are and not by name: each may have several. Needed
// where files of somebody else are to be replaced, and looked for only then. Test:
// tests/batch/trusted/input_identities_test.cpp.
#pragma once

#include "batch/trusted/entries.h"
#include "batch/trusted/inputs.h"

#include <set>
#include <string>
#include <utility>

namespace pfsdoc::batch {

class InputIdentities {
public:
    // Of paths, of what is in folders, and of lists and what they name. Lists are read once more
    // for that, so can_be_read_twice must hold for them.
    explicit InputIdentities(const InputOptions &options);

    bool has(const FileIdentity &file) const
    {
        return files_.contains({file.device, file.inode});
    }

private:
    void add_path(const std::string &path);
    void add_folder(const std::string &path);
    void add_list(const std::string &name);

    std::optional<FileIdentity> exclude_;
    std::set<std::pair<dev_t, ino_t>> files_;
};

// A list by its name, "-" for standard input: not what comes out of a pipe.
bool can_be_read_twice(const std::string &list);

} // namespace pfsdoc::batch

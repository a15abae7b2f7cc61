// The files of a folder and of the folders in it, by name.
//
// The names of a folder are sorted by their bytes, so that the order is the same under every
// locale, and a folder's files come where its own name stands. A folder below another is one
// more level on a stack of our own. Links are not followed, so no folder can hold itself.
// Tests: tests/batch/trusted/inputs_test.cpp.
#pragma once

#include "batch/trusted/entries.h"
#include "batch/trusted/names.h"

namespace pfsdoc::batch {

// Each level keeps a descriptor, of which a process may have 1024 as a rule.
constexpr std::size_t deepest_folder = 256;

struct FoundFile {
    BatchInput input;
    bool is_archive = false; // by its name
};

// What is passed over without a word.
struct LeftOut {
    std::optional<FileIdentity> folder;
    IsOwnFile is_own; // these may be empty
    IsOwnName is_own_name;

    bool has_name(const std::string &entry) const
    {
        return is_own_name && is_own_name(entry);
    }
    bool has(const Entry &entry) const
    {
        return entry.is_folder ? entry.identity == folder : is_own && is_own(entry.file.get());
    }
};

class FolderWalk {
public:
    // The name is nobody else's, and may be empty.
    FolderWalk(base::Descriptor folder, std::string name, std::string source,
               const LeftOut &left_out, NameSet &names);
    // Errors are in the input, and the walk goes on behind them.
    std::optional<FoundFile> next();

private:
    struct Level {
        base::Descriptor folder;
        std::string name; // of its inputs' names, the part before theirs
        std::string source;
        std::vector<std::string> entries;
        std::size_t index = 0;
    };

    std::optional<Error> enter(base::Descriptor folder, std::string name, std::string source);
    std::optional<FoundFile> visit(const std::string &entry);

    std::vector<Level> levels_;
    std::optional<FoundFile> first_; // the error of the folder itself
    const LeftOut &left_out_;
    NameSet &names_;
};

} // namespace pfsdoc::batch

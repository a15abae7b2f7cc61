// Opens what a name leads to, if it is a file or a folder.
//
// A batch meets whatever lies in a folder. Opening a pipe would wait for its other end, and
// opening a device can do something to it, so both are looked at before. Since somebody may
// exchange them in between, what was opened is looked at again, and nothing here ever waits.
// Tests: tests/batch/trusted/inputs_test.cpp.
#pragma once

#include "batch/trusted/inputs.h"

#include <sys/types.h>

namespace pfsdoc::batch {

enum class Links { followed, refused };

// One file system object on this machine, by whatever name.
struct FileIdentity {
    dev_t device;
    ino_t inode;
    bool operator==(const FileIdentity &other) const = default;
};

struct Entry {
    base::Descriptor file;
    bool is_folder;
    uint64_t size;
    FileIdentity identity;
};

// A path that is not absolute is looked for in the open folder; AT_FDCWD is the current one.
// Errors: input, and where links are refused not_a_document for what is neither file nor folder.
Result<Entry> open_entry(int folder, const std::string &path, Links links);

// The folder's identity, or nothing where there is none.
std::optional<FileIdentity> identity_of(const std::string &path);

Error cannot_be_read(int error_number);

} // namespace pfsdoc::batch

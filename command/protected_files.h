// Files that no output takes the place of: documents and what else the same programs wrote, images
// of diskettes, and what this run reads, whichever name or descriptor leads to them. Test:
// tests/command/output_command_test.cpp.
#pragma once

#include "lib/base/file_output.h"

#include <string>
#include <sys/types.h>
#include <utility>
#include <vector>

namespace pfsdoc::cli {

class ProtectedFiles {
public:
    explicit ProtectedFiles(const std::vector<std::string> &inputs);

    // A file that this run has written: where names differ in case alone and the file system does
    // not see that, it would be replaced by the next output. Nothing for standard output.
    void add_output(const std::string &output);

    // The error says what it is.
    Status check(const base::ExistingFile &file) const;

private:
    using FileNumbers = std::vector<std::pair<dev_t, ino_t>>;

    FileNumbers inputs_;
    FileNumbers outputs_;
};

} // namespace pfsdoc::cli

// Files that no output takes the place of: documents, images of diskettes, and what this run
// reads, whichever name or descriptor leads to them. Test: tests/command/output_command_test.cpp.
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

    // The error says what it is.
    Status check(const base::ExistingFile &file) const;

private:
    std::vector<std::pair<dev_t, ino_t>> inputs_;
};

} // namespace pfsdoc::cli

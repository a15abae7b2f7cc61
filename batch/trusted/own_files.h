// Which of the files that are found to be read are the batch's own: outputs may lie beside the
// originals, and the next run finds both. A file is an output where its name, size and sum are
// those that an earlier manifest has, or where this run put it there. Test:
// tests/batch/run/places_test.cpp.
#pragma once

#include "batch/trusted/earlier_lines.h"
#include "batch/trusted/output_folder.h"
#include "batch/trusted/reserved_names.h"

#include <cstddef>
#include <string>
#include <unordered_set>

namespace pfsdoc::batch {

class OwnFiles {
public:
    // All must outlive this.
    OwnFiles(const OutputFolder &folder, const ReservedNames &reserved,
             const EarlierLines &earlier);

    // An output that is in place.
    void add(const std::string &output);
    // Of a regular file that is open. Its bytes are read only where it has an output's name.
    bool has(int file) const;

private:
    bool is_earlier_output(int file, const std::string &name) const;

    const OutputFolder &folder_;
    const ReservedNames &reserved_;
    const EarlierLines &earlier_;
    std::string path_;                      // of the folder, with "/" behind it
    std::unordered_set<std::size_t> added_; // hashes of names
};

} // namespace pfsdoc::batch

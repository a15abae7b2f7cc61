// A file in the output folder that is there while a run goes on. It holds the run's number, with
// which the names of its temporary files begin. A run that was killed leaves both, and the next
// one removes the files whose names begin with that number, and no others. Where that fails the
// number stays, and the new run's comes behind it. Test:
// tests/batch/trusted/output_folder_test.cpp.
#pragma once

#include "batch/trusted/folder_tree.h"
#include "pfsdoc/error.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace pfsdoc::batch {

inline constexpr std::string_view marker_name = ".pfsdoc-run";

class RunMarker {
public:
    // Only one run at a time may do this in a folder. The tree must outlive the marker; the path
    // is how messages call the folder. Errors: output.
    static Result<RunMarker> put(FolderTree &tree, const std::string &path);
    // Takes the file away, unless it is to be kept.
    ~RunMarker();
    RunMarker(RunMarker &&other) noexcept;
    RunMarker &operator=(RunMarker &&) = delete;

    // A name that no file has had.
    std::string next_temporary_name();
    // Whether it is the name of such a file, in whatever folder.
    bool is_temporary(std::string_view name) const;
    // A temporary file could not be removed, which is for the next run to try.
    void keep()
    {
        is_kept_ = true;
    }

private:
    RunMarker(FolderTree &tree, std::string number) : tree_(&tree), number_(std::move(number)) {}

    FolderTree *tree_; // null when moved from
    std::string number_;
    uint64_t next_ = 0;
    bool is_kept_ = false;
};

} // namespace pfsdoc::batch

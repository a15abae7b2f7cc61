// The folder that a batch writes to, which belongs to one run at a time. Nothing below it is
// reached through a symbolic link. Test: tests/batch/trusted/output_folder_test.cpp.
#pragma once

#include "batch/trusted/pending_output.h"

#include <optional>
#include <string>
#include <vector>

namespace pfsdoc::batch {

class OutputFolder {
public:
    // Makes it, and the folders above it, where they are missing, and removes the temporary files
    // of a run that was killed. Errors: output; another run is writing there.
    static Result<OutputFolder> open(const std::string &path);

    Result<PendingOutput> create(const std::string &name) const
    {
        return PendingOutput::create(place_, name);
    }
    // For reading; not open where it is not there, or is no file of that size.
    base::Descriptor open_existing(const std::string &name, uint64_t size) const;
    // One on each file system that was met.
    std::vector<int> volumes() const
    {
        return place_->tree.volumes();
    }
    // Whether it is a name of one of this run's temporary files.
    bool is_temporary(const std::string &name) const
    {
        return place_->marker->is_temporary(name);
    }
    Error sync_error(int error_number) const;
    int descriptor() const
    {
        return place_->tree.top();
    }

private:
    explicit OutputFolder(std::shared_ptr<OutputPlace> place) : place_(std::move(place)) {}

    std::shared_ptr<OutputPlace> place_;
};

// Waits until all that was written to these folders' file systems is on the disk: for many files
// at once, since the disk takes about as long for one. 0, or the error's number.
int sync_volumes(const std::vector<int> &volumes);

} // namespace pfsdoc::batch

// Outputs that are whole, on their way to the disk and from there to their names.
//
// The disk takes about as long for many files as for one, and while it does there are other
// files to convert. So outputs are gathered, and what has been gathered is placed by a thread
// that does nothing else. At most one is at work, and none when a process is forked: see
// pause(). Test: tests/batch/run/placement_test.cpp.
#pragma once

#include "outcome.h"
#include "output_folder.h"

#include <cstddef>
#include <cstdint>
#include <future>
#include <vector>

namespace pfsdoc {

struct WholeOutput {
    uint64_t file; // its number
    FileStatus status;
    PendingOutput output;
};

struct PlacedOutput {
    uint64_t file;
    FileStatus status;
    Status fault; // as PendingOutput::commit and OutputFolder::sync have them
};

class Placement {
public:
    // The folder must outlive this.
    explicit Placement(const OutputFolder &folder) : folder_(folder) {}

    void gather(WholeOutput output);
    std::size_t gathered() const
    {
        return gathered_.size();
    }

    // Begins to place what has been gathered. Nothing may be under way.
    void begin();
    bool is_under_way() const
    {
        return placing_.valid();
    }
    // Whether finish() would not wait.
    bool is_over() const;
    // Waits for its end, and says what became of the outputs: of all of them, or up to the
    // first fault that is not about one name. Those behind it are gone.
    std::vector<PlacedOutput> finish();
    // Waits until no thread is at work; what became of the outputs is still to be asked for.
    void pause() const;

private:
    const OutputFolder &folder_;
    std::vector<WholeOutput> gathered_;
    std::future<std::vector<PlacedOutput>> placing_;
};

} // namespace pfsdoc

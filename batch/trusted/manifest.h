// The manifest: one line for each file, in the order of the files.
//
// While a run goes on its lines are in FILE.partial, each written as soon as it is due, and at
// the end that becomes FILE. A run that was ended in its middle leaves FILE.partial behind.
// The next one puts these lines into FILE.earlier, to look them up, and begins a FILE.partial
// of its own; so whenever it is ended, nothing that was done is forgotten. Who holds the lock
// on FILE.partial is the run that is going on.
//
// FILE.earlier also gets the line of each output before that output is renamed into place, and
// keeps, after a run, those of outputs that earlier runs made and this one did not. So it is
// always known which files are outputs of this program. A file of one of these names that is not
// a manifest is somebody's own, and ends the run. Test: tests/batch/trusted/manifest_test.cpp.
#pragma once

#include "batch/trusted/earlier_lines.h"
#include "lib/base/descriptor.h"
#include "pfsdoc/error.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace pfsdoc::batch {

// A manifest's names, in a folder that is open.
struct ManifestPlace {
    base::Descriptor folder;
    std::string path; // as it was named
    std::string name; // in the folder

    // Errors: output (there is no such folder).
    static Result<ManifestPlace> open(const std::string &path);
};

// What is behind a manifest's name in the names of its companions.
inline constexpr const char *partial_ending = ".partial";
inline constexpr const char *earlier_ending = ".earlier";
inline constexpr const char *new_earlier_ending = ".earlier.new";

// A regular file of that name that may be a manifest, or none at all: not open then. Errors:
// output (it is something else).
Result<base::Descriptor> open_manifest_file(const ManifestPlace &place, const char *ending);

class Manifest {
public:
    // Takes care of what earlier runs left.
    static Result<Manifest> open(const std::string &path, EarlierLines::OutputOfLine output_of);

    const EarlierLines &earlier() const
    {
        return earlier_;
    }
    int folder() const
    {
        return place_.folder.get();
    }
    // With their line ends, as the outputs that they name.
    Status add(std::string_view lines, const std::vector<std::string> &outputs);
    // Lines of outputs that may be renamed into place from now on. Where the disk is full they are
    // lost, and outputs are known by their content only.
    void announce(std::string_view lines);
    // The run is over: gives the manifest its name. Of the earlier lines that no output of this
    // run has claimed those stay that are wanted.
    using IsWanted = std::function<bool(const std::string &line)>;
    Status finish(const IsWanted &is_wanted);
    // How many outputs have such lines.
    uint64_t unclaimed_outputs() const
    {
        return unclaimed_outputs_;
    }

private:
    Manifest(ManifestPlace place, EarlierLines::OutputOfLine output_of)
        : place_(std::move(place)), earlier_(std::move(output_of))
    {
    }

    Status check_names();
    Status open_announced();
    Status lock_partial();
    Status set_aside();
    Status read_earlier();
    Status write_unclaimed(const IsWanted &is_wanted);
    Status rename_partial();
    Status rename_unclaimed();
    Error not_written(const char *ending, int error_number) const;

    ManifestPlace place_;
    base::Descriptor file_;      // the partial one
    base::Descriptor announced_; // the earlier one, for appending
    bool is_cut_ = false;        // its last line
    EarlierLines earlier_;
    uint64_t unclaimed_outputs_ = 0;
};

} // namespace pfsdoc::batch

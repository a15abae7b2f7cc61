// The manifest: one line for each file, in the order of the files.
//
// While a run goes on its lines are in FILE.partial, each written as soon as it is due, and at
// the end that becomes FILE. A run that was ended in its middle leaves FILE.partial behind.
// The next one puts these lines into FILE.earlier, to look them up, and begins a FILE.partial
// of its own; so whenever it is ended, nothing that was done is forgotten. Who holds the lock
// on FILE.partial is the run that is going on.
//
// Of earlier lines only their locations are kept in memory, sixteen bytes each. Test:
// tests/batch/trusted/record_test.cpp.
#pragma once

#include "lib/base/descriptor.h"
#include "pfsdoc/error.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace pfsdoc::batch {

// Lines of files that may have been cut anywhere, by the name that is in them.
class EarlierLines {
public:
    // A file that is not there has no lines.
    void add_file(const std::string &path);
    // To be called when all files have been added.
    void sort();
    // All that may be of that name, the newest first, without their line ends.
    std::vector<std::string> find(const std::string &name) const;

private:
    struct Location {
        uint64_t name_digest; // a part of it
        uint64_t offset : 56; // in the file
        uint64_t file : 8;
    };
    static_assert(sizeof(Location) == 2 * sizeof(uint64_t));

    std::string line_at(const Location &location) const;

    std::vector<Location> locations_;
    std::vector<base::Descriptor> files_;
};

class Manifest {
public:
    // Takes care of what earlier runs left.
    static Result<Manifest> open(const std::string &path);

    const EarlierLines &earlier() const
    {
        return earlier_;
    }
    // With its line end.
    Status add(std::string_view line);
    // The run is over: gives the manifest its name.
    Status finish();

private:
    Manifest(std::string path, base::Descriptor file)
        : path_(std::move(path)), file_(std::move(file))
    {
    }
    Status set_aside();

    std::string path_;
    base::Descriptor file_; // the partial one
    EarlierLines earlier_;
};

} // namespace pfsdoc::batch

// The lines of earlier manifests, by the output that each is about.
//
// Only their locations are kept in memory, sixteen bytes each. A manifest may have been cut
// anywhere, edited, or be no manifest at all: lines that are too long or nested too deeply for one
// are passed over, and what a line says is checked by whoever uses it. Test:
// tests/batch/trusted/earlier_lines_test.cpp.
#pragma once

#include "lib/base/descriptor.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace pfsdoc::batch {

// Four times what the longest names, paths and options give.
inline constexpr std::size_t longest_line = std::size_t{1} << 18;

// Reads lines, each with its offset, in memory that does not depend on the file: one that is too
// long, and a last one without its line end, comes as an empty line. False where the file cannot be
// read.
bool read_lines(int file, const std::function<void(std::string_view line, uint64_t offset)> &use);

class EarlierLines {
public:
    // Of an output's name, as lines have it.
    using OutputOfLine = std::function<std::string(std::string_view line)>;

    // The function gives the output that a line is about; an empty name where there is none.
    explicit EarlierLines(OutputOfLine output_of) : output_of_(std::move(output_of)) {}

    void add_file(base::Descriptor file);
    // To be called when all files have been added.
    void sort();
    // Some of those that may be about that output, the newest first, without their line ends.
    std::vector<std::string> find(std::string_view output) const;

    // The output is this run's now.
    void claim(std::string_view output);
    // For each output that was not claimed: what find() has of it.
    void
    visit_unclaimed(const std::function<void(const std::vector<std::string> &lines)> &visit) const;

private:
    struct Location {
        uint64_t name_digest; // a part of it
        uint64_t offset : 52; // in the file
        uint64_t file : 8;
        uint64_t is_claimed : 1;
    };
    static_assert(sizeof(Location) == 2 * sizeof(uint64_t));
    using Locations = std::vector<Location>;

    std::pair<std::size_t, std::size_t> range_of(uint64_t name_digest) const;
    std::string line_at(const Location &location) const;
    std::vector<std::string> newest_of(std::size_t begin, std::size_t end) const;

    OutputOfLine output_of_;
    Locations locations_;
    std::vector<base::Descriptor> files_;
};

} // namespace pfsdoc::batch

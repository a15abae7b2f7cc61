// The groups of measurements. Each registers its benchmarks; what they measure goes into the
// figures, beside what the benchmark library prints.
//
// A benchmark is one iteration that measures things to be compared right after one another;
// the library repeats all of them in random order. So a ratio is of two figures of the same
// moment, and what else the machine does falls on all alike.
#pragma once

#include "documents.h"
#include "figures.h"
#include "subject.h"

#include <cstddef>

namespace bench {

struct Settings {
    std::size_t megabytes = 64; // VS_PFS_BENCH_MB: the large documents
    int rounds = 9;             // VS_PFS_BENCH_ROUNDS
};
Settings settings();

inline constexpr std::size_t megabyte = std::size_t{1} << 20;

// One kind for each line reader; and Writing Assistant, which has a decoder of its own.
struct ReaderCase {
    const char *name;
    pfs_builder::Kind kind;
};
const std::vector<ReaderCase> &reader_cases();

void register_reader_benchmarks(const Settings &settings, const Subject &subject, Figures &figures);

} // namespace bench

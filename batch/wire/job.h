// What goes between a run and a worker: one record for each file, with the descriptors, and one
// back. Test: tests/batch/run/canary_test.cpp.
#pragma once

#include "batch/wire/outcome.h"

#include <cstdint>
#include <type_traits>

namespace pfsdoc::batch {

// The first message of a worker: whether it is ready, and what holds it.
struct Hello {
    uint32_t failed = 0;
    ErrorKind kind = ErrorKind::internal; // where it failed
    BoundedText<256> words;               // of the sandbox, or of what went wrong
    BoundedText<256> remedy;
};
static_assert(std::is_trivially_copyable_v<Hello>);

// One file. Its descriptors: the input, the output, and where has_earlier_output is set the
// output of an earlier run.
struct Job {
    uint64_t number = 0; // comes back with the outcome
    uint64_t size = 0;
    // What an earlier run found: if it is still so, the answer is FileStatus::unchanged.
    uint32_t has_earlier = 0;
    uint32_t has_earlier_output = 0;
    Digest earlier_input{};
    Digest earlier_output{};
    BoundedText<256> title; // the name of the file as it was found
};
static_assert(std::is_trivially_copyable_v<Job>);

} // namespace pfsdoc::batch

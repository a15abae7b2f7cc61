// What a file holds behind its document.
//
// A program that saved a shorter text over a longer one, and a diskette that was copied by
// sectors, leave bytes behind the end mark: often the end of an older letter. No reader shows
// them. Not counted is what programs and diskettes fill sectors and blocks with: bytes 00, 1A, E5
// and F6, before and behind what is left; and a rest of one byte only that is repeated.
// Test: tests/lib/reading/after_end_test.cpp.
#pragma once

#include <cstdint>

namespace pfsdoc {

struct AfterEnd {
    uint32_t offset; // of the first byte that is no padding, in the file
    uint32_t bytes;  // from there to the last one, not fewer than 1

    bool operator==(const AfterEnd &) const = default;
};

} // namespace pfsdoc

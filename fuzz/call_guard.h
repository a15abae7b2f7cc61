// Checks the output calls of one instance against what must hold for every document, and traps
// on a violation: only known routines and arguments, balanced tab stops and blocks, attributes
// that only change, no call after the end, and no more calls than the document's size allows.
// The tests' call checker in a form for fuzzers: small, and it traps.
#pragma once

#include "vs_pfs.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace fuzz {

// Aborts the process with the reason on standard error.
[[noreturn]] void trap(const char *what);

inline void require(bool holds, const char *what)
{
    if (!holds) {
        trap(what);
    }
}

// One output call with its own arguments, without the user words.
struct Call {
    int32_t id = 0;
    int32_t count = 0; // of arguments
    std::array<int32_t, 4> arguments{};

    bool operator==(const Call &) const = default;
};

class CallGuard {
public:
    // For a document of that many bytes, or host operations that claim as many.
    explicit CallGuard(std::size_t bytes);

    void read_begins();
    void read_ends();
    void check(const Call &call);

    // The state was not made by reading this document in order: blocks, font and attributes
    // may be anything.
    void expect_foreign_state();
    bool ended() const; // break 2 was reported in this read call

private:
    void check_sequence(const Call &call);
    void check_arguments(const Call &call);
    void check_character(const Call &call);
    void check_attribute(const Call &call);
    void check_break(const Call &call);

    std::size_t most_calls; // allowed by the end of this read call
    std::size_t calls = 0;
    bool foreign_state = false;
    bool in_tab_stops = false;
    bool in_block = false;
    bool kind_expected = false; // break 6 was the last call
    bool document_ended = false;
    bool in_text = false; // the announcements of this read call are complete
    std::array<int32_t, 12> attributes{};
};

} // namespace fuzz

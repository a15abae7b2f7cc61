// Watches the output calls of one instance for what must hold of every document, and traps
// where it does not: known routines and arguments only, tab stops and blocks that balance,
// attributes that only change, silence after the end, and no more calls than the document
// is long. The tests' call checker in the form that a fuzzer wants: small, and deadly.
#pragma once

#include "vs_pfs.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace fuzz {

// Ends the process with the reason on standard error.
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
    // For a document of that many bytes, or host operations that pretend as many.
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

    std::size_t most_calls; // that may have come by the end of this read call
    std::size_t calls = 0;
    bool foreign_state = false;
    bool in_tab_stops = false;
    bool in_block = false;
    bool kind_expected = false; // break 6 was the last call
    bool document_ended = false;
    bool in_text = false; // the announcements of this read call are over
    std::array<int32_t, 12> attributes{};
};

} // namespace fuzz

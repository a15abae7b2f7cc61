// Checks the stream of output calls against what must hold for every document: only known
// arguments, balanced tab stops and header blocks, attributes that only change, no call after the
// end. A violation is a test failure with the call's index.
#pragma once

#include "tests/support/notation.h"

#include <array>
#include <cstddef>

namespace tests {

class CallChecker {
public:
    // To be called when a read call begins, and when it has ended.
    void read_begins();
    void read_ends();
    void check(const Call &call);

    // A saved state that no reading produced: blocks may be closed that were not opened, and
    // margins, font and attributes may be anything.
    void expect_foreign_state();
    // Routine 13 is not registered, so the ends of blocks are not visible.
    void expect_no_breaks();

private:
    void fault(const Call &call, const char *what) const;
    void check_sequence(const Call &call);
    void check_arguments(const Call &call);
    void check_break(const Call &call);
    void check_attribute(const Call &call);
    void check_character(const Call &call);

    std::size_t index = 0;
    bool foreign_state = false;
    bool no_breaks = false;
    bool in_tab_stops = false;
    bool in_block = false;            // between breaks 6 and 7, across read calls
    bool kind_expected = false;       // break 6 was the last call
    bool ended = false;               // break 2 was reported in this read call
    bool in_text = false;             // the announcements of this read call are complete
    std::array<int, 12> attributes{}; // by code: the state last reported
};

} // namespace tests

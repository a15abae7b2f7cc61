// The two notations that the tests are written in: one for bytes, one for output calls.
//
// Bytes:  "20 20 'Hello' 0D 41x5 0E" - hex pairs and quoted text, each of which may be
//         repeated by an x and a decimal count.
// Calls:  "'Hi' | 7 288 0 288 | 13 1 0 | *'*N*'" - a routine's id and its own arguments; quoted
//         text stands for one call of routine 1 for each byte, and with a * before it for
//         one call of routine 2 with type 7 for each byte. '|' or a new line separates.
//         A tab stop is "10 kind alignment leader position".
#pragma once

#include "vs_pfs.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tests {

// One output call with its own arguments, without the user words.
struct Call {
    int32_t id = 0;
    int32_t count = 0; // of arguments
    std::array<int32_t, 4> arguments{};

    bool operator==(const Call &) const = default;
};
using Calls = std::vector<Call>;

std::string bytes(std::string_view notation);

Calls calls(std::string_view notation);
// One line for each call, runs of characters folded into quoted text.
std::string text_of(const Calls &calls);

// Whether the recorded calls equal those in the notation; the message shows both and where they
// first differ.
::testing::AssertionResult matches(const Calls &recorded, std::string_view notation);

} // namespace tests

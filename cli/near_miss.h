// What a person may have meant who mistyped a word. Test: tests/cli/near_miss_test.cpp.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace pfsdoc::cli {

// The one of the known words that is closest to this one: it differs in a letter or two, or
// begins with it. Case does not count. Empty where none is close.
std::string near_miss(std::string_view word, const std::vector<std::string> &known);

// "did you mean WORD?", or the other remedy where no known word is close.
std::string did_you_mean(std::string_view word, const std::vector<std::string> &known,
                         const std::string &otherwise);

// ASCII letters in lower case.
std::string lower_case(std::string_view word);

} // namespace pfsdoc::cli

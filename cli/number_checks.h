// The numbers of a command line, checked before anything else sees them. What is no number, or one
// that makes no sense, is refused with words that say what would be right: CLI::ValidationError.
// Each returns the number as the option's value is read. Test: tests/cli/number_checks_test.cpp.
#pragma once

#include <cstdint>
#include <string>

namespace pfsdoc::cli {

// Decimal digits.
std::string whole_number(const std::string &text, uint64_t least, uint64_t most);

// Digits, with a point between them if need be.
std::string number_of_seconds(const std::string &text, double least, double most);

// "65536", "64KB", "2GB": a unit is 1024 times the one before it. Above 0. In bytes.
std::string number_of_bytes(const std::string &text);

} // namespace pfsdoc::cli

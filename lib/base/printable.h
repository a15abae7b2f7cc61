// Makes text from outside, file names above all, fit to be shown: whoever names a file must
// not get to drive the reader's terminal. Test: tests/command/command_test.cpp.
#pragma once

#include <string>
#include <string_view>

namespace pfsdoc::base {

// The text with every control character (C0, DEL, and C1 in UTF-8) and every byte that is
// not part of valid UTF-8 written as \xNN. Other text is left as it is.
std::string printable(std::string_view text);

// The last part of a path: a file's name without its folders.
std::string_view base_name(std::string_view path);

// Two hexadecimal digits, upper case.
std::string hex_byte(unsigned value);

} // namespace pfsdoc::base

// Makes text from outside, file names above all, fit to be shown: whoever names a file must
// not get to drive the reader's terminal. Tests: tests/lib/base/printable_test.cpp.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace pfsdoc::base {

// The text with every byte written as \xHH that is not part of valid UTF-8, or is part of a
// character that is not to be shown: control characters (C0, DEL, C1), those that turn the
// direction of text, line and paragraph separators, the byte order mark, and noncharacters. Other
// text is left as it is, backslashes too: what must turn back into bytes is for escaped_name().
std::string printable(std::string_view text);

// The length of the character at the start of the text where printable() leaves it as it is, or 0.
std::size_t shown_length(std::string_view text);

// Appends \xHH.
void append_hex_escape(std::string &text, char byte);

// The last part of a path: a file's name without its folders.
std::string_view base_name(std::string_view path);

// Two hexadecimal digits, upper case.
std::string hex_byte(unsigned value);

} // namespace pfsdoc::base

// The characters of code page 437, the character set of the IBM PC. Byte 0 is its blank cell.
// Tests: tests/lib/base/code_page_test.cpp.
#pragma once

#include <array>

namespace pfsdoc::base {

extern const std::array<char16_t, 256> code_page_437;

} // namespace pfsdoc::base

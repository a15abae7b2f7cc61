// Code page 437, the character set of the documents, as Unicode.
//
// All 256 bytes are characters here: the code page's graphics stand where other character
// sets have control codes, so nothing that is converted can control a terminal. A host
// that treats a byte as a control code, such as the tab, takes it out before converting.
// Byte 0 is the code page's blank cell and becomes a space. Tests:
// tests/host/code_page_437_test.cpp.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace pfsdoc {

extern const std::array<char16_t, 256> code_page_437;

// Appends the bytes' characters as UTF-8.
void append_utf8(std::string &utf8, std::string_view code_page_437_bytes);

} // namespace pfsdoc

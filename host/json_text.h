// Strings of JSON. The structure around them is a few fixed words, which the writers spell
// out as they go: an object of a library for each word of the text took forty times as long.
// That the result is JSON is what the tests have a library say.
// Tests: tests/writers/json_text_test.cpp.
#pragma once

#include <string>
#include <string_view>

namespace pfsdoc {

// Appends a string in its quotes. The text must be UTF-8; it may hold any character.
void append_json_string(std::string &json, std::string_view utf8);

} // namespace pfsdoc

// Strings of JSON, and members of its objects. The structure around them is a few fixed words,
// which the writers spell out as they go, since an object of a library for each word of the text is
// slow (docs/performance.md). That the result is JSON is what the tests have a library say. Tests:
// tests/lib/base/json_text_test.cpp.
#pragma once

#include <concepts>
#include <string>
#include <string_view>

namespace pfsdoc::base {

// Appends what stands between a string's quotes, or a part of it.
void append_json_characters(std::string &json, std::string_view utf8);

// Appends a string in its quotes. The text must be UTF-8; it may hold any character.
void append_json_string(std::string &json, std::string_view utf8);

// Appends the name of a member to an object that has been begun with "{", behind a comma where
// it is not the first. A value must follow.
void append_json_name(std::string &json, std::string_view name);
void append_json_member(std::string &json, std::string_view name, std::string_view utf8);
template <std::integral Number>
void append_json_member(std::string &json, std::string_view name, Number value)
{
    append_json_name(json, name);
    json.append(std::to_string(value));
}

} // namespace pfsdoc::base

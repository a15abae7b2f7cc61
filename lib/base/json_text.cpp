#include "lib/base/json_text.h"

#include <algorithm>

namespace pfsdoc::base {

namespace {

constexpr unsigned char first_printable = 0x20;

constexpr bool is_plain(char byte)
{
    return static_cast<unsigned char>(byte) >= first_printable && byte != '"' && byte != '\\';
}

void append_escaped(std::string &json, char byte)
{
    constexpr std::string_view digits = "0123456789abcdef";
    switch (byte) {
    case '"': json.append("\\\""); break;
    case '\\': json.append("\\\\"); break;
    case '\t': json.append("\\t"); break;
    case '\n': json.append("\\n"); break;
    default: {
        const auto code = static_cast<unsigned char>(byte);
        json.append("\\u00");
        json.push_back(digits[code >> 4]);
        json.push_back(digits[code & 0x0FU]);
        break;
    }
    }
}

} // namespace

void append_json_characters(std::string &json, std::string_view utf8)
{
    const char *at = utf8.data();
    const char *const end = at + utf8.size();
    while (at != end) {
        const char *const special = std::find_if_not(at, end, is_plain);
        json.append(at, special);
        at = special;
        if (at != end) {
            append_escaped(json, *at++);
        }
    }
}

void append_json_string(std::string &json, std::string_view utf8)
{
    json.push_back('"');
    append_json_characters(json, utf8);
    json.push_back('"');
}

void append_json_name(std::string &json, std::string_view name)
{
    json.append(json.back() == '{' ? "\"" : ",\"").append(name).append("\":");
}

void append_json_member(std::string &json, std::string_view name, std::string_view utf8)
{
    append_json_name(json, name);
    append_json_string(json, utf8);
}

} // namespace pfsdoc::base

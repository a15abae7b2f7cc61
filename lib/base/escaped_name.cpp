#include "lib/base/escaped_name.h"

#include "lib/base/printable.h"

#include <charconv>

namespace pfsdoc::base {

namespace {

constexpr std::size_t escape_length = 4; // \xHH
constexpr int hexadecimal = 16;

// The byte that the text's first characters stand for.
std::optional<char> escaped_byte(std::string_view text)
{
    if (text.size() < escape_length || text[1] != 'x') {
        return std::nullopt;
    }
    const char *digits = text.data() + 2;
    const char *end = text.data() + escape_length;
    unsigned char value = 0;
    const bool is_number = std::from_chars(digits, end, value, hexadecimal).ptr == end;
    return is_number ? std::optional(static_cast<char>(value)) : std::nullopt;
}

} // namespace

std::string escaped_name(std::string_view name)
{
    std::string escaped;
    while (!name.empty()) {
        const std::size_t length = name.front() == '\\' ? 0 : shown_length(name);
        if (length != 0) {
            escaped.append(name.substr(0, length));
        } else {
            append_hex_escape(escaped, name.front());
        }
        name.remove_prefix(length != 0 ? length : 1);
    }
    return escaped;
}

// Escaping the result again tells what else is wrong: small digits, an escape that was not needed,
// a character that should have been escaped.
std::optional<std::string> unescaped_name(std::string_view escaped)
{
    std::string name;
    for (std::string_view rest = escaped; !rest.empty();) {
        if (rest.front() != '\\') {
            name.push_back(rest.front());
            rest.remove_prefix(1);
        } else if (const std::optional<char> byte = escaped_byte(rest)) {
            name.push_back(*byte);
            rest.remove_prefix(escape_length);
        } else {
            return std::nullopt;
        }
    }
    return escaped_name(name) == escaped ? std::optional(name) : std::nullopt;
}

} // namespace pfsdoc::base

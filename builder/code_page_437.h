// Unicode and code page 437, the character set of all seven kinds.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace pfs_builder {

// The byte of a character, including the graphic ones below 0x20; a tab is 0x09.
std::optional<uint8_t> to_code_page_437(char32_t character);

// Takes one character from the front of UTF-8 text; none if the text is invalid there or empty,
// in which case `text` is unchanged.
std::optional<char32_t> take_utf8(std::string_view &text);

// What a conversion rejected: "byte 0xC3 that is not UTF-8" or "character U+20AC".
struct Converted {
    std::string bytes;
    std::string rejected; // empty: all of it was converted
};
Converted utf8_to_code_page_437(std::string_view text);

// The same for one character at the front; if it cannot be converted, it is not taken.
Converted take_code_page_437(std::string_view &text);

} // namespace pfs_builder

// The table maps bytes to characters; a linear search suffices, since descriptions are short.
// Test: tests/builder/code_page_437_test.cpp.
#include "builder/code_page_437.h"
#include "formats/code_page_437.h"
#include "formats/text.h"

#include <algorithm>

namespace pfs_builder {
namespace {

std::string hexadecimal(char32_t number, std::size_t least_digits)
{
    std::string digits;
    for (char32_t rest = number; rest != 0 || digits.size() < least_digits; rest >>= 4) {
        digits.insert(digits.begin(), "0123456789ABCDEF"[rest & 0xF]);
    }
    return digits;
}

// What the first byte of a UTF-8 sequence specifies: how many bytes follow, and its own bits.
struct Utf8Lead {
    std::size_t following;
    char32_t bits;
    char32_t least; // a smaller character has a shorter sequence and must use it
};

std::optional<Utf8Lead> utf8_lead(uint8_t byte)
{
    if (byte < 0x80) {
        return Utf8Lead{0, byte, 0};
    }
    if ((byte & 0xE0) == 0xC0) {
        return Utf8Lead{1, byte & 0x1FU, 0x80};
    }
    if ((byte & 0xF0) == 0xE0) {
        return Utf8Lead{2, byte & 0x0FU, 0x800};
    }
    if ((byte & 0xF8) == 0xF0) {
        return Utf8Lead{3, byte & 0x07U, 0x10000};
    }
    return std::nullopt;
}

constexpr bool is_scalar_value(char32_t character)
{
    const bool surrogate = character >= 0xD800 && character <= 0xDFFF;
    return !surrogate && character <= 0x10FFFF;
}

} // namespace

std::optional<uint8_t> to_code_page_437(char32_t character)
{
    if (character == formats::tab) {
        return formats::tab;
    }
    // Not the empty glyph; and in text 0x09 is a tab, not the glyph at that position.
    const auto &page = formats::code_page_437;
    const auto *const found = std::find(page.begin() + 1, page.end(), character);
    const auto byte = static_cast<uint8_t>(found - page.begin());
    return found == page.end() || byte == formats::tab ? std::nullopt : std::optional(byte);
}

std::optional<char32_t> take_utf8(std::string_view &text)
{
    if (text.empty()) {
        return std::nullopt;
    }
    const auto lead = utf8_lead(static_cast<uint8_t>(text.front()));
    if (!lead || text.size() <= lead->following) {
        return std::nullopt;
    }
    char32_t character = lead->bits;
    for (std::size_t i = 1; i <= lead->following; ++i) {
        const auto byte = static_cast<uint8_t>(text[i]);
        if ((byte & 0xC0) != 0x80) {
            return std::nullopt;
        }
        character = (character << 6) | (byte & 0x3FU);
    }
    if (character < lead->least || !is_scalar_value(character)) {
        return std::nullopt;
    }
    text.remove_prefix(lead->following + 1);
    return character;
}

Converted take_code_page_437(std::string_view &text)
{
    std::string_view rest = text;
    const auto character = take_utf8(rest);
    if (!character) {
        const auto byte = static_cast<uint8_t>(text.front());
        return {"", "byte 0x" + hexadecimal(byte, 2) + " that is not UTF-8"};
    }
    const auto byte = to_code_page_437(*character);
    if (!byte) {
        return {"", "character U+" + hexadecimal(*character, 4)};
    }
    text = rest;
    return {std::string(1, static_cast<char>(*byte)), ""};
}

Converted utf8_to_code_page_437(std::string_view text)
{
    Converted all;
    while (!text.empty()) {
        Converted one = take_code_page_437(text);
        if (!one.rejected.empty()) {
            return {"", one.rejected};
        }
        all.bytes += one.bytes;
    }
    return all;
}

} // namespace pfs_builder

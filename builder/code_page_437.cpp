// Code page 437 has a graphic character for every byte. Those of 0x20 to 0x7E are ASCII's;
// of the others this file keeps two tables and searches them, for descriptions are short.
// Test: tests/builder/code_page_437_test.cpp.
#include "builder/code_page_437.h"

#include <algorithm>
#include <array>

namespace pfs_builder {
namespace {

constexpr char32_t first_printable = 0x20;
constexpr char32_t last_printable = 0x7E;
constexpr char32_t tab = 0x09;

// 0x00 to 0x1F. 0x00 shows as a blank and has no character of its own; that of 0x09 is left
// out, for in a text the byte is a tab.
constexpr std::array<char32_t, 32> low_half = {
    0x0000, 0x263A, 0x263B, 0x2665, 0x2666, 0x2663, 0x2660, 0x2022, 0x25D8, 0x0000, 0x25D9,
    0x2642, 0x2640, 0x266A, 0x266B, 0x263C, 0x25BA, 0x25C4, 0x2195, 0x203C, 0x00B6, 0x00A7,
    0x25AC, 0x21A8, 0x2191, 0x2193, 0x2192, 0x2190, 0x221F, 0x2194, 0x25B2, 0x25BC};

constexpr std::size_t high_half_start = 0x7F;

// 0x7F to 0xFF.
constexpr std::array<char32_t, 129> high_half = {
    0x2302, 0x00C7, 0x00FC, 0x00E9, 0x00E2, 0x00E4, 0x00E0, 0x00E5, 0x00E7, 0x00EA, 0x00EB, 0x00E8,
    0x00EF, 0x00EE, 0x00EC, 0x00C4, 0x00C5, 0x00C9, 0x00E6, 0x00C6, 0x00F4, 0x00F6, 0x00F2, 0x00FB,
    0x00F9, 0x00FF, 0x00D6, 0x00DC, 0x00A2, 0x00A3, 0x00A5, 0x20A7, 0x0192, 0x00E1, 0x00ED, 0x00F3,
    0x00FA, 0x00F1, 0x00D1, 0x00AA, 0x00BA, 0x00BF, 0x2310, 0x00AC, 0x00BD, 0x00BC, 0x00A1, 0x00AB,
    0x00BB, 0x2591, 0x2592, 0x2593, 0x2502, 0x2524, 0x2561, 0x2562, 0x2556, 0x2555, 0x2563, 0x2551,
    0x2557, 0x255D, 0x255C, 0x255B, 0x2510, 0x2514, 0x2534, 0x252C, 0x251C, 0x2500, 0x253C, 0x255E,
    0x255F, 0x255A, 0x2554, 0x2569, 0x2566, 0x2560, 0x2550, 0x256C, 0x2567, 0x2568, 0x2564, 0x2565,
    0x2559, 0x2558, 0x2552, 0x2553, 0x256B, 0x256A, 0x2518, 0x250C, 0x2588, 0x2584, 0x258C, 0x2590,
    0x2580, 0x03B1, 0x00DF, 0x0393, 0x03C0, 0x03A3, 0x03C3, 0x00B5, 0x03C4, 0x03A6, 0x0398, 0x03A9,
    0x03B4, 0x221E, 0x03C6, 0x03B5, 0x2229, 0x2261, 0x00B1, 0x2265, 0x2264, 0x2320, 0x2321, 0x00F7,
    0x2248, 0x00B0, 0x2219, 0x00B7, 0x221A, 0x207F, 0x00B2, 0x25A0, 0x00A0};

template <std::size_t Size>
std::optional<uint8_t> find_in(const std::array<char32_t, Size> &table, char32_t character,
                               std::size_t start)
{
    const auto found = std::find(table.begin(), table.end(), character);
    if (found == table.end()) {
        return std::nullopt;
    }
    return static_cast<uint8_t>(start + static_cast<std::size_t>(found - table.begin()));
}

std::string hexadecimal(char32_t number, std::size_t least_digits)
{
    std::string digits;
    for (char32_t rest = number; rest != 0 || digits.size() < least_digits; rest >>= 4) {
        digits.insert(digits.begin(), "0123456789ABCDEF"[rest & 0xF]);
    }
    return digits;
}

// What the first byte of a UTF-8 sequence says: how many bytes follow, and its own bits.
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
    if (character == tab || (character >= first_printable && character <= last_printable)) {
        return static_cast<uint8_t>(character);
    }
    if (character == 0) {
        return std::nullopt;
    }
    if (const auto low = find_in(low_half, character, 0)) {
        return low;
    }
    return find_in(high_half, character, high_half_start);
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
        if (!one.stumbled.empty()) {
            return {"", one.stumbled};
        }
        all.bytes += one.bytes;
    }
    return all;
}

} // namespace pfs_builder

#include "lib/base/printable.h"

#include <algorithm>
#include <array>
#include <iterator>

namespace pfsdoc::base {

namespace {

unsigned byte_at(std::string_view text, std::size_t index)
{
    return index < text.size() ? static_cast<unsigned char>(text[index]) : 0U;
}

// The length that a UTF-8 sequence claims by its first byte, 0 for one that begins none.
std::size_t claimed_length(unsigned lead)
{
    if (lead < 0x80) {
        return 1;
    }
    if (lead >= 0xC2 && lead <= 0xDF) {
        return 2;
    }
    if (lead >= 0xE0 && lead <= 0xEF) {
        return 3;
    }
    return lead >= 0xF0 && lead <= 0xF4 ? 4 : 0;
}

// Whether a well-formed lead is followed by something that makes the sequence overlong, a
// surrogate or too large: its second byte decides.
bool second_byte_fits(unsigned lead, unsigned second)
{
    switch (lead) {
    case 0xE0: return second >= 0xA0;
    case 0xED: return second < 0xA0;
    case 0xF0: return second >= 0x90;
    case 0xF4: return second < 0x90;
    default: return true;
    }
}

// Of a well-formed sequence.
char32_t character_of(std::string_view sequence)
{
    constexpr std::array<unsigned, 5> lead_bits = {0, 0x7F, 0x1F, 0x0F, 0x07};
    char32_t character = byte_at(sequence, 0) & lead_bits[sequence.size()];
    for (std::size_t index = 1; index < sequence.size(); ++index) {
        character = character << 6U | (byte_at(sequence, index) & 0x3FU);
    }
    return character;
}

struct CharacterRange {
    char32_t first;
    char32_t last;
};

// What drives a terminal, turns the text around it, ends a line, or is no character.
constexpr CharacterRange unfit_ranges[] = {
    {0x0000, 0x001F},                   // control characters
    {0x007F, 0x009F}, {0x061C, 0x061C}, // marks, embeddings, overrides and isolates of direction
    {0x200E, 0x200F}, {0x2028, 0x2029}, // line and paragraph separators
    {0x202A, 0x202E}, {0x2066, 0x2069}, {0xFDD0, 0xFDEF}, // noncharacters
    {0xFEFF, 0xFEFF},                                     // the byte order mark
};

bool is_unfit(char32_t character)
{
    const bool ends_plane = (character & 0xFFFEU) == 0xFFFEU; // FFFE and FFFF: noncharacters
    return ends_plane || std::any_of(std::begin(unfit_ranges), std::end(unfit_ranges),
                                     [character](const CharacterRange &range) {
                                         return character >= range.first && character <= range.last;
                                     });
}

// The length of the UTF-8 sequence at the start of the text, 0 where there is none.
std::size_t sequence_length(std::string_view text)
{
    const unsigned lead = byte_at(text, 0);
    const std::size_t length = claimed_length(lead);
    for (std::size_t index = 1; index < length; ++index) {
        if ((byte_at(text, index) & 0xC0U) != 0x80U) {
            return 0;
        }
    }
    return second_byte_fits(lead, byte_at(text, 1)) ? length : 0;
}

} // namespace

std::size_t shown_length(std::string_view text)
{
    const unsigned lead = byte_at(text, 0);
    if (lead >= 0x20 && lead < 0x7F) {
        return text.empty() ? 0 : 1;
    }
    const std::size_t length = sequence_length(text);
    return length == 0 || is_unfit(character_of(text.substr(0, length))) ? 0 : length;
}

std::string_view base_name(std::string_view path)
{
    const std::size_t slash = path.rfind('/');
    return slash == std::string_view::npos ? path : path.substr(slash + 1);
}

std::string hex_byte(unsigned value)
{
    constexpr std::string_view digits = "0123456789ABCDEF";
    return {digits[(value >> 4U) & 0xFU], digits[value & 0xFU]};
}

void append_hex_escape(std::string &text, char byte)
{
    text.append("\\x").append(hex_byte(static_cast<unsigned char>(byte)));
}

std::string printable(std::string_view text)
{
    std::string shown;
    while (!text.empty()) {
        const std::size_t length = shown_length(text);
        if (length != 0) {
            shown.append(text.substr(0, length));
        } else {
            append_hex_escape(shown, text.front());
        }
        text.remove_prefix(length != 0 ? length : 1);
    }
    return shown;
}

} // namespace pfsdoc::base

#include "lib/base/printable.h"

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

bool is_control(unsigned lead, unsigned second)
{
    return lead < 0x20 || lead == 0x7F || (lead == 0xC2 && second < 0xA0);
}

// The length of the character at the start of the text that may be shown as it is, or 0.
std::size_t shown_length(std::string_view text)
{
    const unsigned lead = byte_at(text, 0);
    const std::size_t length = claimed_length(lead);
    for (std::size_t index = 1; index < length; ++index) {
        if ((byte_at(text, index) & 0xC0U) != 0x80U) {
            return 0;
        }
    }
    const unsigned second = byte_at(text, 1);
    return is_control(lead, second) || !second_byte_fits(lead, second) ? 0 : length;
}

} // namespace

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

std::string printable(std::string_view text)
{
    std::string shown;
    while (!text.empty()) {
        const std::size_t length = shown_length(text);
        if (length != 0) {
            shown.append(text.substr(0, length));
        } else {
            shown.append("\\x").append(hex_byte(byte_at(text, 0)));
        }
        text.remove_prefix(length != 0 ? length : 1);
    }
    return shown;
}

} // namespace pfsdoc::base

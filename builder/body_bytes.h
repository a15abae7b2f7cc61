// Byte values of the bodies that more than one kind shares.
#pragma once

#include <cstdint>
#include <string>

namespace pfs_builder {

inline constexpr uint8_t body_form_feed = 0x0C;
inline constexpr uint8_t body_return = 0x0D;
inline constexpr uint8_t body_end = 0x0E;

// A text byte with this bit is followed by attribute bytes.
inline constexpr uint8_t high_bit = 0x80;
inline constexpr uint8_t low_seven_bits = 0x7F;

inline void append(std::string &bytes, uint8_t byte)
{
    bytes.push_back(static_cast<char>(byte));
}

inline bool has_bit(char byte, uint8_t bit)
{
    return (static_cast<uint8_t>(byte) & bit) != 0;
}

} // namespace pfs_builder

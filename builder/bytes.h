// Composing bytes, and the names of those that all bodies share.
#pragma once

#include "formats/text.h"

#include <cstdint>
#include <string>

namespace pfs_builder {

using formats::carriage_return;
using formats::document_end;
using formats::form_feed;
using formats::high_bit;
using formats::low_seven_bits;

inline void append(std::string &bytes, uint8_t byte)
{
    bytes.push_back(static_cast<char>(byte));
}

inline bool has_bit(char byte, uint8_t bit)
{
    return (static_cast<uint8_t>(byte) & bit) != 0;
}

} // namespace pfs_builder

// Characters of a Write-family text: three encodings, one for each product line.
#pragma once

#include "builder/document.h"

namespace pfs_builder {

// In IBM Writing Assistant a byte from here on is followed by an attribute byte.
// Whether a character of code page 437 can be stored at all.
bool write_can_store(uint8_t character);
bool writing_assistant_can_store(uint8_t character);

// The bytes of a cell that can be stored.
std::string encode_write_cell(const Cell &cell);
std::string encode_writing_assistant_cell(const Cell &cell);
std::string encode_professional_write_cell(const Cell &cell);

} // namespace pfs_builder

// Documents made byte by byte, for tests that need full control over the layout. Files that read
// like documents are made by the builder instead.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tests {

// Bytes that overwrite a maker's bytes at an offset.
struct Patch {
    std::size_t offset;
    std::string bytes;
};
using Patches = std::vector<Patch>;

// A 16-bit word as the documents store it, low byte first.
std::string word(uint16_t value);

// A file of zeros with the patches in it.
std::string blank_document(std::size_t size, const Patches &patches);

// The Write family: signature at 641, variant at 649, margins at columns 0 and 64 (where the
// kind reads them), a form feed at 1024 and the body right after it.
std::string write_document(std::string_view signature, char variant, std::string_view body,
                           const Patches &patches = {});
inline constexpr std::size_t write_body_offset = 1025;

// The kinds by their format type, 1 to 5.
std::string write_document(int format_type, std::string_view body, const Patches &patches = {});

// First Choice: magic at 9, generation byte at 18, margins at columns 0 and 60, no tab stops,
// body at 512.
std::string choice_document(char generation, std::string_view body, const Patches &patches = {});
inline constexpr std::size_t choice_body_offset = 512;

// Margins as 0-based columns, for either family.
Patch write_margins(uint16_t left, uint16_t right);
Patch choice_margins(uint16_t left, uint16_t right);

// Header or footer line `line`: 0 and 1 header, 2 and 3 footer. Its length byte and text.
Patch write_header_line(int line, std::string_view text);
Patch choice_header_line(int line, std::string_view text);

} // namespace tests

#include "tests/support/raw_documents.h"

#include <algorithm>
#include <array>
#include <stdexcept>

namespace tests {

namespace {

constexpr std::size_t write_header_size = 1024;
constexpr std::size_t choice_header_size = 512;

constexpr std::array<std::size_t, 4> write_line_offsets{328, 402, 484, 558};
constexpr std::array<std::size_t, 4> choice_line_offsets{28, 110, 192, 274};

void apply(const Patches &patches, std::string &document)
{
    for (const Patch &patch : patches) {
        document.resize(std::max(document.size(), patch.offset + patch.bytes.size()));
        document.replace(patch.offset, patch.bytes.size(), patch.bytes);
    }
}

Patch margins(std::size_t offset, uint16_t left, uint16_t right)
{
    return {offset, word(static_cast<uint16_t>(left + 1)) + word(static_cast<uint16_t>(right + 1))};
}

Patch header_line(std::size_t offset, std::string_view text)
{
    return {offset, std::string(1, static_cast<char>(text.size())) + std::string(text)};
}

} // namespace

std::string word(uint16_t value)
{
    return {static_cast<char>(value & 0xFF), static_cast<char>(value >> 8)};
}

std::string blank_document(std::size_t size, const Patches &patches)
{
    std::string document(size, '\0');
    apply(patches, document);
    return document;
}

std::string write_document(std::string_view signature, char variant, std::string_view body,
                           const Patches &patches)
{
    std::string document = blank_document(
        write_header_size,
        {write_margins(0, 64), {641, std::string(signature)}, {649, std::string(1, variant)}});
    document += '\x0C';
    document += body;
    apply(patches, document);
    return document;
}

std::string write_document(int format_type, std::string_view body, const Patches &patches)
{
    switch (format_type) {
    case 1: return write_document("WRD PC", '1', body, patches);
    case 2: return write_document("WRD PC", '2', body, patches);
    case 3: return write_document("IBM   ", ' ', body, patches);
    case 4: return write_document("TYPE 3", ' ', body, patches);
    case 5: return write_document("TYPE 4", ' ', body, patches);
    default: throw std::invalid_argument("not a format type of the Write family");
    }
}

std::string choice_document(char generation, std::string_view body, const Patches &patches)
{
    std::string document =
        blank_document(choice_header_size,
                       {choice_margins(0, 60), {9, "GERBILDOC"}, {18, std::string(1, generation)}});
    document += body;
    apply(patches, document);
    return document;
}

Patch write_margins(uint16_t left, uint16_t right)
{
    return margins(10, left, right);
}

Patch choice_margins(uint16_t left, uint16_t right)
{
    return margins(0, left, right);
}

Patch write_header_line(int line, std::string_view text)
{
    return header_line(write_line_offsets.at(static_cast<std::size_t>(line)), text);
}

Patch choice_header_line(int line, std::string_view text)
{
    return header_line(choice_line_offsets.at(static_cast<std::size_t>(line)), text);
}

} // namespace tests

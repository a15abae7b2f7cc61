// The header of First Choice: 512 bytes of fixed places. The generation byte behind the magic
// also says how the ruler is stored: as bits for "2" and "3", as a byte for each column
// otherwise. There are no decimal stops.
// Test: tests/builder/choice_encoder_test.cpp.
#include "builder/encoders.h"

namespace pfs_builder {
namespace {

constexpr std::size_t header_size = 512;

constexpr std::size_t margins_offset = 0; // two words, columns counted from 1
constexpr std::size_t magic_offset = 9;
constexpr const char *magic = "GERBILDOC";
constexpr std::size_t generation_offset = 18;
constexpr std::size_t alignments_offset = 356; // header's letter, footer's letter
constexpr std::size_t footer_styles_offset = 359;
constexpr std::size_t header_styles_offset = 363;
constexpr std::size_t ruler_offset = 366;

// Each text stands behind its length.
constexpr std::array<std::size_t, 4> text_offsets = {28, 110, 192, 274};
constexpr std::size_t after_texts = alignments_offset;

constexpr uint8_t byte_ruler_stop = 0x01;

void put_word(std::string &file, std::size_t offset, int value)
{
    file[offset] = static_cast<char>(value & 0xFF);
    file[offset + 1] = static_cast<char>(value >> 8);
}

void put_text(std::string &file, std::size_t offset, const std::string &text)
{
    file[offset] = static_cast<char>(text.size());
    file.replace(offset + 1, text.size(), text);
}

char alignment_letter(const std::optional<Alignment> &alignment)
{
    switch (alignment.value_or(Alignment::left)) {
    case Alignment::centre: return 'C';
    case Alignment::right: return 'R';
    default: return 'L';
    }
}

// Two letters, one for each style that there is.
void put_styles(std::string &file, std::size_t offset, Style style)
{
    file[offset] = (style & style_bold) != 0 ? 'B' : ' ';
    file[offset + 1] = (style & style_underline) != 0 ? 'U' : ' ';
}

void put_headers_and_footers(std::string &file, const Document &document)
{
    const HeaderFooter &header = document.header;
    const HeaderFooter &footer = document.footer;
    put_text(file, text_offsets[0], header.lines[0]);
    put_text(file, text_offsets[1], header.lines[1]);
    put_text(file, text_offsets[2], footer.lines[0]);
    put_text(file, text_offsets[3], footer.lines[1]);
    file[alignments_offset] = alignment_letter(header.alignment);
    file[alignments_offset + 1] = alignment_letter(footer.alignment);
    put_styles(file, header_styles_offset, header.style);
    put_styles(file, footer_styles_offset, footer.style);
}

void put_ruler(std::string &file, const std::vector<TabStop> &stops, bool as_bits)
{
    for (const TabStop &stop : stops) {
        const auto column = static_cast<std::size_t>(stop.column - 1);
        if (as_bits) {
            char &byte = file[ruler_offset + column / 8];
            byte = static_cast<char>(static_cast<uint8_t>(byte) | (1U << (column % 8)));
        } else {
            file[ruler_offset + column] = byte_ruler_stop;
        }
    }
}

} // namespace

const TextLimits choice_header_text_limits = {
    text_offsets[1] - text_offsets[0] - 1, text_offsets[2] - text_offsets[1] - 1,
    text_offsets[3] - text_offsets[2] - 1, after_texts - text_offsets[3] - 1};

std::string choice_header(const Document &document)
{
    const char own_generation = document.kind == Kind::first_choice_3 ? '3' : '2';
    const char generation = document.generation.value_or(own_generation);
    std::string file(header_size, '\0');
    put_word(file, margins_offset, document.margins.left);
    put_word(file, margins_offset + 2, document.margins.right);
    file.replace(magic_offset, generation_offset - magic_offset, magic);
    file[generation_offset] = generation;
    put_headers_and_footers(file, document);
    put_ruler(file, document.tab_stops, generation == '2' || generation == '3');
    return file;
}

} // namespace pfs_builder

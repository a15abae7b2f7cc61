// The header of First Choice: 512 bytes of fixed positions. The generation byte after the magic
// also specifies how the ruler is stored: as bits for "2" and "3", otherwise as one byte per
// column. There are no decimal stops.
// Test: tests/builder/choice_encoder_test.cpp.
#include "builder/encoders.h"
#include "formats/first_choice.h"

namespace pfs_builder {
namespace {

using namespace formats::choice;

constexpr char letter_left = 'L';
constexpr char letter_no_style = ' ';

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
    case Alignment::centre: return letter_centred;
    case Alignment::right: return letter_right;
    default: return letter_left;
    }
}

// Two letters, one for each style.
void put_styles(std::string &file, std::size_t offset, Style style)
{
    file[offset] = (style & style_bold) != 0 ? letter_bold : letter_no_style;
    file[offset + 1] = (style & style_underline) != 0 ? letter_underline : letter_no_style;
}

void put_headers_and_footers(std::string &file, const Document &document)
{
    const HeaderFooter &header = document.header;
    const HeaderFooter &footer = document.footer;
    put_text(file, line_length_offsets[0], header.lines[0]);
    put_text(file, line_length_offsets[1], header.lines[1]);
    put_text(file, line_length_offsets[2], footer.lines[0]);
    put_text(file, line_length_offsets[3], footer.lines[1]);
    file[header_alignment_offset] = alignment_letter(header.alignment);
    file[footer_alignment_offset] = alignment_letter(footer.alignment);
    put_styles(file, header_style_offset, header.style);
    put_styles(file, footer_style_offset, footer.style);
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

std::string choice_header(const Document &document)
{
    const char own_generation = document.kind == Kind::first_choice_3 ? generation_3 : generation_2;
    const char generation = document.generation.value_or(own_generation);
    std::string file(header_size, '\0');
    put_word(file, left_margin_offset, document.margins.left);
    put_word(file, right_margin_offset, document.margins.right);
    file.replace(magic_offset, magic.size(), magic);
    file[generation_offset] = generation;
    put_headers_and_footers(file, document);
    put_ruler(file, document.tab_stops, generation == generation_2 || generation == generation_3);
    return file;
}

} // namespace pfs_builder

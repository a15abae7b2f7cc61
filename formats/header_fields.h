// The fields of the headers: where each stands, which kinds have it, and how its value is
// read. A header is what lies between them too, but nothing there is known to mean anything.
// Test: tests/lib/explain/header_test.cpp.
#pragma once

#include "formats/first_choice.h"
#include "formats/kinds.h"
#include "formats/write_family.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace formats {

enum class FieldForm : uint8_t {
    column,        // 16 bits, low byte first, counted from 1
    short_column,  // the same in 8 bits
    number,        // 8 bits
    ignored,       // read, but nothing is made of it
    text,          // as it stands
    line_length,   // of the header or footer line that follows
    line_text,     // as long as the length before it says
    alignment,     // 16 bits: 0 centred, 2 right, else left
    attributes,    // bits: 1 underline, 2 bold, 4 italic
    align_letter,  // C, R, else left
    style_letter,  // U, B, else none
    ruler_kinds,   // two bytes for each entry, of which the first says what it is
    ruler_columns, // 16 bits for each entry
    ruler_bytes,   // a byte for each column, bit 1: tab stop
    ruler_bits     // a bit for each column, the lowest first
};

using KindSet = uint8_t;
constexpr KindSet kind_bit(KindIndex kind)
{
    return static_cast<KindSet>(1U << kind);
}

struct HeaderField {
    uint16_t offset;
    uint16_t size;
    FieldForm form;
    std::string_view name;
    KindSet kinds;
};

// In the order of their offsets; no two that a kind has overlap.
inline constexpr auto write_header_fields = [] {
    using namespace write;
    using enum FieldForm;
    constexpr KindSet writes = kind_bit(write_a) | kind_bit(write_b);
    constexpr KindSet all_but_professional_2 =
        writes | kind_bit(writing_assistant) | kind_bit(professional_write_1);
    constexpr KindSet professional_2 = kind_bit(professional_write_2);
    constexpr KindSet professionals = kind_bit(professional_write_1) | professional_2;
    constexpr KindSet family = all_but_professional_2 | professional_2;
    constexpr KindSet all_but_write_a = family & ~kind_bit(write_a);
    constexpr uint32_t ruler_size = ruler_entry_size * ruler_entries;
    return std::to_array<HeaderField>({
        {left_margin_offset, 2, column, "left margin", all_but_professional_2},
        {right_margin_offset, 2, column, "right margin", all_but_professional_2},
        {right_margin_offset + 2, 2, ignored, "word before the ruler", all_but_professional_2},
        {ruler_kinds_offset, ruler_size, ruler_kinds, "ruler", all_but_professional_2},
        {ruler_columns_offset, ruler_size, ruler_columns, "ruler", all_but_professional_2},
        {line_length_offsets[0], 1, line_length, "header line 1", family},
        {line_length_offsets[0] + 1, line_text_sizes[0], line_text, "header line 1", family},
        {line_length_offsets[1], 1, line_length, "header line 2", family},
        {line_length_offsets[1] + 1, line_text_sizes[1], line_text, "header line 2", family},
        {line_length_offsets[2], 1, line_length, "footer line 1", family},
        {line_length_offsets[2] + 1, line_text_sizes[2], line_text, "footer line 1", family},
        {line_length_offsets[3], 1, line_length, "footer line 2", family},
        {line_length_offsets[3] + 1, line_text_sizes[3], line_text, "footer line 2", family},
        {signature_offset, signature_size, text, "signature", family},
        {signature_offset + signature_size, 2, ignored, "bytes after the signature", family},
        {variant_offset, 1, text, "variant", writes},
        {variant_offset + 1, 3, ignored, "bytes after the variant", writes},
        {header_alignment_offset, 2, alignment, "header alignment", all_but_write_a},
        {footer_alignment_offset, 2, alignment, "footer alignment", all_but_write_a},
        {header_attributes_offset, 1, attributes, "header attributes", professionals},
        {header_attributes_offset + 1, 1, ignored, "byte between attributes", professionals},
        {footer_attributes_offset, 1, attributes, "footer attributes", professionals},
        {flag_offset, 1, number, "flag", professionals},
        {further_margins_offset, 1, short_column, "first further left margin, without effect",
         professional_2},
        {further_margins_offset + 1, 1, short_column, "first further right margin, without effect",
         professional_2},
        {further_margins_offset + 2, 1, short_column, "second further left margin, without effect",
         professional_2},
        {further_margins_offset + 3, 1, short_column, "second further right margin, without effect",
         professional_2},
    });
}();

// With either form of the ruler.
constexpr auto choice_fields(uint16_t ruler_size, FieldForm ruler_form)
{
    using namespace choice;
    using enum FieldForm;
    constexpr KindSet both = kind_bit(first_choice_2) | kind_bit(first_choice_3);
    constexpr uint32_t margins_end = right_margin_offset + 2;
    return std::to_array<HeaderField>({
        {left_margin_offset, 2, column, "left margin", both},
        {right_margin_offset, 2, column, "right margin", both},
        {margins_end, magic_offset - margins_end, ignored, "bytes before the signature", both},
        {magic_offset, magic.size(), text, "signature", both},
        {generation_offset, 1, text, "generation", both},
        {generation_offset + 1, unused_after_generation, ignored, "bytes after the generation",
         both},
        {line_length_offsets[0], 1, line_length, "header line 1", both},
        {line_length_offsets[0] + 1, line_text_sizes[0], line_text, "header line 1", both},
        {line_length_offsets[1], 1, line_length, "header line 2", both},
        {line_length_offsets[1] + 1, line_text_sizes[1], line_text, "header line 2", both},
        {line_length_offsets[2], 1, line_length, "footer line 1", both},
        {line_length_offsets[2] + 1, line_text_sizes[2], line_text, "footer line 1", both},
        {line_length_offsets[3], 1, line_length, "footer line 2", both},
        {line_length_offsets[3] + 1, line_text_sizes[3], line_text, "footer line 2", both},
        {header_alignment_offset, 1, align_letter, "header alignment", both},
        {footer_alignment_offset, 1, align_letter, "footer alignment", both},
        {footer_alignment_offset + 1, 1, ignored, "byte after the alignments", both},
        {footer_style_offset, style_letters, style_letter, "footer style", both},
        {footer_style_offset + style_letters, 2, ignored, "bytes between the styles", both},
        {header_style_offset, style_letters, style_letter, "header style", both},
        {header_style_offset + style_letters, 1, ignored, "byte before the ruler", both},
        {ruler_offset, ruler_size, ruler_form, "ruler", both},
    });
}
inline constexpr auto choice_fields_with_byte_ruler =
    choice_fields(choice::byte_ruler_columns, FieldForm::ruler_bytes);
inline constexpr auto choice_fields_with_bit_ruler =
    choice_fields(choice::bit_ruler_bytes, FieldForm::ruler_bits);

constexpr std::span<const HeaderField> choice_header_fields(bool ruler_of_bytes)
{
    return ruler_of_bytes ? std::span<const HeaderField>(choice_fields_with_byte_ruler)
                          : std::span<const HeaderField>(choice_fields_with_bit_ruler);
}

constexpr bool in_order(std::span<const HeaderField> fields)
{
    for (std::size_t i = 1; i < fields.size(); ++i) {
        if (fields[i].offset < fields[i - 1].offset + fields[i - 1].size) {
            return false;
        }
    }
    return true;
}
static_assert(in_order(write_header_fields));
static_assert(in_order(choice_fields_with_byte_ruler) && in_order(choice_fields_with_bit_ruler));

} // namespace formats

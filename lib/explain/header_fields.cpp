#include "lib/explain/header_fields.h"

#include <array>

namespace pfsdoc::explaining {

namespace {

constexpr KindSet writes = kind_bit(DocumentKind::write_a) | kind_bit(DocumentKind::write_b);
constexpr KindSet all_but_professional_2 = writes | kind_bit(DocumentKind::writing_assistant) |
                                           kind_bit(DocumentKind::professional_write_1);
constexpr KindSet professional_2 = kind_bit(DocumentKind::professional_write_2);
constexpr KindSet professionals = kind_bit(DocumentKind::professional_write_1) | professional_2;
constexpr KindSet write_family = all_but_professional_2 | professional_2;
constexpr KindSet all_but_write_a = write_family & ~kind_bit(DocumentKind::write_a);
constexpr KindSet choices =
    kind_bit(DocumentKind::first_choice_2) | kind_bit(DocumentKind::first_choice_3);

using enum FieldForm;

constexpr auto write_fields = std::to_array<HeaderField>({
    {10, 2, column, "left margin", all_but_professional_2},
    {12, 2, column, "right margin", all_but_professional_2},
    {14, 2, ignored, "word before the ruler", all_but_professional_2},
    {ruler_kinds_offset, 2 * ruler_entries, ruler_kinds, "ruler", all_but_professional_2},
    {172, 2 * ruler_entries, ruler_columns, "ruler", all_but_professional_2},
    {328, 1, line_length, "header line 1", write_family},
    {329, 73, line_text, "header line 1", write_family},
    {402, 1, line_length, "header line 2", write_family},
    {403, 81, line_text, "header line 2", write_family},
    {484, 1, line_length, "footer line 1", write_family},
    {485, 73, line_text, "footer line 1", write_family},
    {558, 1, line_length, "footer line 2", write_family},
    {559, 82, line_text, "footer line 2", write_family},
    {write_signature_offset, 6, text, "signature", write_family},
    {647, 2, ignored, "bytes behind the signature", write_family},
    {write_variant_offset, 1, text, "variant", writes},
    {650, 3, ignored, "bytes behind the variant", writes},
    {822, 2, alignment, "header alignment", all_but_write_a},
    {824, 2, alignment, "footer alignment", all_but_write_a},
    {828, 1, attributes, "header attributes", professionals},
    {829, 1, ignored, "byte between attributes", professionals},
    {830, 1, attributes, "footer attributes", professionals},
    {836, 1, number, "flag", professionals},
    {963, 1, short_column, "first further left margin, without effect", professional_2},
    {964, 1, short_column, "first further right margin, without effect", professional_2},
    {965, 1, short_column, "second further left margin, without effect", professional_2},
    {966, 1, short_column, "second further right margin, without effect", professional_2},
});

constexpr std::size_t choice_field_count = 22;
constexpr std::array<HeaderField, choice_field_count> choice_fields(const HeaderField &ruler)
{
    return {{
        {0, 2, column, "left margin", choices},
        {2, 2, column, "right margin", choices},
        {4, 5, ignored, "bytes before the signature", choices},
        {choice_signature_offset, 9, text, "signature", choices},
        {choice_generation_offset, 1, text, "generation", choices},
        {19, 2, ignored, "bytes behind the generation", choices},
        {28, 1, line_length, "header line 1", choices},
        {29, 81, line_text, "header line 1", choices},
        {110, 1, line_length, "header line 2", choices},
        {111, 81, line_text, "header line 2", choices},
        {192, 1, line_length, "footer line 1", choices},
        {193, 81, line_text, "footer line 1", choices},
        {274, 1, line_length, "footer line 2", choices},
        {275, 81, line_text, "footer line 2", choices},
        {356, 1, align_letter, "header alignment", choices},
        {357, 1, align_letter, "footer alignment", choices},
        {358, 1, ignored, "byte behind the alignments", choices},
        {359, 2, style_letter, "footer style", choices},
        {361, 2, ignored, "bytes between the styles", choices},
        {363, 2, style_letter, "header style", choices},
        {365, 1, ignored, "byte before the ruler", choices},
        ruler,
    }};
}

constexpr auto fields_with_ruler_of_bytes = choice_fields({366, 99, ruler_bytes, "ruler", choices});
constexpr auto fields_with_ruler_of_bits = choice_fields({366, 31, ruler_bits, "ruler", choices});

template <typename Fields> constexpr bool in_order(const Fields &fields)
{
    for (std::size_t i = 1; i < fields.size(); ++i) {
        if (fields[i].offset < fields[i - 1].offset + fields[i - 1].size) {
            return false;
        }
    }
    return true;
}
static_assert(in_order(write_fields));
static_assert(in_order(fields_with_ruler_of_bytes) && in_order(fields_with_ruler_of_bits));

} // namespace

std::span<const HeaderField> write_header_fields()
{
    return write_fields;
}

std::span<const HeaderField> choice_header_fields(bool ruler_of_bytes)
{
    return ruler_of_bytes ? fields_with_ruler_of_bytes : fields_with_ruler_of_bits;
}

} // namespace pfsdoc::explaining

// The 512-byte header of a First Choice document.
//
//   offset 0, 2     left and right margin, 1-based columns
//   offset 18       generation, which chooses the form of the ruler
//   offset 28, 110, 192, 274   lengths of header 1, 2, footer 1, 2
//   offset 356      alignment letters of headers and footers, then two style letters each
//                   for footers and for headers
//   offset 366      ruler: a byte a column, or in generations 2 and 3 a bit a column
//
// Ruler columns are 0-based and stored as they are; margins lose 1. A byte past the end of
// the file counts as -1, so that a ruler cut short marks every missing column.
// Test: tests/module/choice_header_test.cpp.
#include "formats/first_choice.h"
#include "formats/write_family.h"
#include "vs_pfs/document_headers.h"

namespace vs_pfs {
namespace {

using namespace formats::choice;

constexpr uint32_t word_size = 2;
constexpr int bits_in_byte = 8;

constexpr int16_t bytes_before_magic = magic_offset - (right_margin_offset + word_size);
constexpr int generation_in_magic = generation_offset - magic_offset;
constexpr int bytes_from_magic = generation_in_magic + 1 + unused_after_generation;

uint16_t margin(VwInstance *instance)
{
    return static_cast<uint16_t>(GetValue(instance) - 1);
}

// Reads the bytes from the magic on and returns the generation among them.
int32_t read_generation(VwInstance *instance)
{
    int32_t generation = end_of_data;
    for (int i = 0; i < bytes_from_magic; ++i) {
        const int32_t byte = VwCharGet(instance->state.stream);
        if (i == generation_in_magic) {
            generation = byte;
        }
    }
    return generation;
}

// A code of the Write family.
uint8_t read_alignment(VwCharStream *stream)
{
    switch (VwCharGet(stream)) {
    case letter_centred: return formats::write::alignment_centred;
    case letter_right: return formats::write::alignment_right;
    default: return formats::write::alignment_left;
    }
}

// The first letter of a pair sets the attributes, the second adds to them; any other letter
// leaves them as they are.
void read_style(VwCharStream *stream, uint8_t &attributes)
{
    switch (VwCharGet(stream)) {
    case letter_underline: attributes = formats::underline; break;
    case letter_bold: attributes = formats::bold; break;
    default: break;
    }
    switch (VwCharGet(stream)) {
    case letter_underline: attributes |= formats::underline; break;
    case letter_bold: attributes |= formats::bold; break;
    default: break;
    }
}

void read_header_footer_look(VwInstance *instance)
{
    FilterState &state = instance->state;
    VwCharSeek(state.stream, header_alignment_offset, seek_absolute);
    state.headerAlign = read_alignment(state.stream);
    state.footerAlign = read_alignment(state.stream);
    PfsSkipBytes(1, instance);
    read_style(state.stream, state.footerAttrs);
    PfsSkipBytes(2, instance);
    read_style(state.stream, state.headerAttrs);
    PfsSkipBytes(1, instance);
}

// Keeps one slot for the terminator: a bit ruler can mark more columns than the table holds.
void append_stop(SavedState &saved, int column)
{
    if (saved.tabCount < most_tab_stops) {
        saved.tabPos[saved.tabCount] = static_cast<uint16_t>(column);
        saved.tabKind[saved.tabCount] = tab_kind_ordinary;
        ++saved.tabCount;
    }
}

void read_byte_ruler(VwCharStream *stream, SavedState &saved)
{
    for (int column = 0; column < byte_ruler_columns; ++column) {
        if ((VwCharGet(stream) & byte_ruler_stop) != 0) {
            append_stop(saved, column);
        }
    }
}

void read_bit_ruler(VwCharStream *stream, SavedState &saved)
{
    for (int i = 0; i < bit_ruler_bytes; ++i) {
        const int32_t byte = VwCharGet(stream);
        for (int bit = 0; bit < bits_in_byte; ++bit) {
            if ((byte & (1 << bit)) != 0) {
                append_stop(saved, bits_in_byte * i + bit);
            }
        }
    }
}

} // namespace

int32_t PfsChoiceHeaderInfo(VwInstance *instance)
{
    FilterState &state = instance->state;
    state.saved.leftMargin = margin(instance);
    state.saved.rightMargin = margin(instance);
    copy_margins_to_header_footer(instance);
    PfsSkipBytes(bytes_before_magic, instance);
    const int32_t generation = read_generation(instance);
    read_header_footer_lengths(instance, line_length_offsets);
    read_header_footer_look(instance);
    state.saved.tabCount = 0;
    if (state.fcVersion == choice_generation_2 && generation != generation_2) {
        read_byte_ruler(state.stream, state.saved);
    } else {
        read_bit_ruler(state.stream, state.saved);
    }
    state.saved.tabPos[state.saved.tabCount] = tab_table_end;
    return 0;
}

} // namespace vs_pfs

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
#include "document_headers.h"

namespace vs_pfs {
namespace {

constexpr int16_t bytes_before_magic = 5;
constexpr int bytes_from_magic = 12;
constexpr int generation_in_magic = 9;

constexpr uint32_t length_positions[header_footer_lines] = {28, 110, 192, 274};
constexpr uint32_t alignment_position = 356;

constexpr uint8_t align_code_centre = 0;
constexpr uint8_t align_code_left = 1;
constexpr uint8_t align_code_right = 2;

constexpr uint8_t style_underline = 0x01;
constexpr uint8_t style_bold = 0x02;

constexpr int byte_ruler_columns = 99;
constexpr uint8_t byte_ruler_stop = 0x01;
constexpr int bit_ruler_bytes = 31;
constexpr int bits_in_byte = 8;

uint16_t margin(VwInstance *instance)
{
    return static_cast<uint16_t>(GetValue(instance) - 1);
}

// Reads the bytes at offsets 9 to 20 and returns the generation among them.
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

uint8_t read_alignment(VwCharStream *stream)
{
    switch (VwCharGet(stream)) {
    case 'C': return align_code_centre;
    case 'R': return align_code_right;
    default: return align_code_left;
    }
}

// The first letter of a pair sets the attributes, the second adds to them; any other letter
// leaves them as they are.
void read_style(VwCharStream *stream, uint8_t &attributes)
{
    switch (VwCharGet(stream)) {
    case 'U': attributes = style_underline; break;
    case 'B': attributes = style_bold; break;
    default: break;
    }
    switch (VwCharGet(stream)) {
    case 'U': attributes |= style_underline; break;
    case 'B': attributes |= style_bold; break;
    default: break;
    }
}

void read_header_footer_look(VwInstance *instance)
{
    FilterState &state = instance->state;
    VwCharSeek(state.stream, alignment_position, seek_absolute);
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
    for (int line = 0; line < header_footer_lines; ++line) {
        read_header_footer_length(instance, line, length_positions[line]);
    }
    read_header_footer_look(instance);
    state.saved.tabCount = 0;
    if (state.fcVersion == choice_generation_2 && generation != '2') {
        read_byte_ruler(state.stream, state.saved);
    } else {
        read_bit_ruler(state.stream, state.saved);
    }
    state.saved.tabPos[state.saved.tabCount] = tab_table_end;
    return 0;
}

} // namespace vs_pfs

// The fixed header of a Write-family document (format types 1 to 5).
//
//   offset 10, 12    left and right margin, 1-based columns      types 1 to 4
//   offset 16        78 entries of two bytes: kind of ruler entry i      "
//   offset 172       78 entries of two bytes: column of ruler entry i    "
//   offset 328, 402, 484, 558   lengths of header 1, 2, footer 1, 2
//   offset 822, 824  alignment of headers and footers            types 2 to 5
//   offset 828, 830  attributes of headers and footers           types 4 and 5
//   offset 963       two more pairs of margins                   type 5
//
// A ruler entry is an ordinary or a decimal tab stop or none. The two sorts are collected
// and sorted apart and then merged, decimal stops first where both share a column.
// Nothing is checked: a byte past the end of the file counts as -1.
// Test: tests/module/write_header_test.cpp.
#include "formats/write_family.h"
#include "vs_pfs/document_headers.h"

#include <algorithm>

namespace vs_pfs {
namespace {

using namespace formats::write;

constexpr uint8_t ruler_no_stop = 0xFF;

constexpr uint16_t pending_bits[header_footer_lines] = {hf_header_1, hf_header_2, hf_footer_1,
                                                        hf_footer_2};

// A margin as it is kept: 0-based, so that a stored 0 becomes -1.
uint16_t margin(int32_t stored)
{
    return static_cast<uint16_t>(stored - 1);
}

void read_margins(VwInstance *instance)
{
    SavedState &saved = instance->state.saved;
    if (instance->state.formatType == format_professional_write_2) {
        saved.leftMargin = margin(fixed_left_margin);
        saved.rightMargin = margin(fixed_right_margin);
        return;
    }
    VwCharSeek(instance->state.stream, left_margin_offset, seek_absolute);
    saved.leftMargin = margin(GetValue(instance));
    saved.rightMargin = margin(GetValue(instance));
}

uint8_t tab_kind_of_ruler_entry(int32_t stored)
{
    switch (stored) {
    case ruler_tab_stop: return tab_kind_ordinary;
    case ruler_decimal_stop: return tab_kind_decimal;
    default: return ruler_no_stop;
    }
}

// The columns of one sort of stop, in the ruler's order.
struct StopList {
    int16_t columns[ruler_entries];
    int16_t count = 0;

    void append(int16_t column)
    {
        columns[count++] = column;
    }
};

// The raw ruler goes into the tab table, from where the merge replaces it.
void read_ruler_kinds(VwInstance *instance)
{
    for (int i = 0; i < ruler_entries; ++i) {
        instance->state.saved.tabKind[i] =
            tab_kind_of_ruler_entry(VwCharGet(instance->state.stream));
        PfsSkipBytes(1, instance);
    }
}

void read_ruler_columns(VwInstance *instance, StopList &normal, StopList &decimal)
{
    SavedState &saved = instance->state.saved;
    for (int i = 0; i < ruler_entries; ++i) {
        const int16_t column = GetValue(instance);
        saved.tabPos[i] = static_cast<uint16_t>(column);
        if (saved.tabKind[i] == tab_kind_ordinary) {
            normal.append(column);
        } else if (saved.tabKind[i] == tab_kind_decimal) {
            decimal.append(column);
        }
    }
    saved.tabPos[ruler_entries] = tab_table_end;
}

void read_ruler(VwInstance *instance)
{
    StopList normal;
    StopList decimal;
    GetValue(instance); // a word between margins and ruler that nothing uses
    read_ruler_kinds(instance);
    read_ruler_columns(instance, normal, decimal);
    std::sort(normal.columns, normal.columns + normal.count);
    std::sort(decimal.columns, decimal.columns + decimal.count);
    MergeTabStops(normal.count, decimal.count, normal.columns, decimal.columns, instance);
}

uint8_t read_alignment(VwInstance *instance)
{
    const auto code = static_cast<uint8_t>(GetValue(instance));
    return code == alignment_centred || code == alignment_right ? code : alignment_left;
}

void read_alignments(VwInstance *instance)
{
    VwCharSeek(instance->state.stream, header_alignment_offset, seek_absolute);
    instance->state.headerAlign = read_alignment(instance);
    instance->state.footerAlign = read_alignment(instance);
}

void read_attributes(VwInstance *instance)
{
    VwCharStream *stream = instance->state.stream;
    VwCharSeek(stream, header_attributes_offset, seek_absolute);
    instance->state.headerAttrs = static_cast<uint8_t>(VwCharGet(stream));
    PfsSkipBytes(1, instance);
    instance->state.footerAttrs = static_cast<uint8_t>(VwCharGet(stream));
}

// Stored as left, right, left, right; kept as left, left, right, right.
void read_further_margins(VwInstance *instance)
{
    VwCharStream *stream = instance->state.stream;
    uint16_t *margins = instance->state.hfMargins;
    VwCharSeek(stream, further_margins_offset, seek_absolute);
    margins[0] = margin(VwCharGet(stream));
    margins[2] = margin(VwCharGet(stream));
    margins[1] = margin(VwCharGet(stream));
    margins[3] = margin(VwCharGet(stream));
}

// Writes the merged stops and returns how many, at most ruler_entries.
int merge_stops(int normal_count, int decimal_count, const int16_t *normal, const int16_t *decimal,
                SavedState &saved)
{
    int i = 0;
    int j = 0;
    int k = 0;
    for (; k < ruler_entries && (i < normal_count || j < decimal_count); ++k) {
        const bool take_decimal =
            i >= normal_count || (j < decimal_count && normal[i] >= decimal[j]);
        saved.tabPos[k] = static_cast<uint16_t>(take_decimal ? decimal[j++] : normal[i++]);
        saved.tabKind[k] = take_decimal ? tab_kind_decimal : tab_kind_ordinary;
    }
    return k;
}

} // namespace

int16_t GetValue(VwInstance *instance)
{
    VwCharStream *stream = instance->state.stream;
    const int32_t low = VwCharGet(stream);
    const int32_t high = VwCharGet(stream);
    return static_cast<int16_t>(low + high * 256);
}

int32_t PfsSkipBytes(int16_t count, VwInstance *instance)
{
    for (int i = 0; i < count; ++i) {
        VwCharGet(instance->state.stream);
    }
    return 0;
}

int32_t MergeTabStops(int16_t normalCount, int16_t decimalCount, const int16_t *normalList,
                      const int16_t *decimalList, VwInstance *instance)
{
    SavedState &saved = instance->state.saved;
    const int merged = merge_stops(normalCount, decimalCount, normalList, decimalList, saved);
    // A full ruler loses its last stop to the terminator: see "77 stops" in docs/quirks.md.
    const int count = std::min(merged, ruler_entries - 1);
    saved.tabPos[count] = tab_table_end;
    saved.tabCount = static_cast<uint16_t>(count);
    return 0;
}

void read_header_footer_lengths(VwInstance *instance, const formats::LineTable &offsets)
{
    FilterState &state = instance->state;
    for (int line = 0; line < header_footer_lines; ++line) {
        VwCharSeek(state.stream, offsets[static_cast<unsigned>(line)], seek_absolute);
        const int32_t length = VwCharGet(state.stream);
        state.hfLength[line] = static_cast<uint16_t>(length);
        if (length > 0) {
            state.saved.hfPending |= pending_bits[line];
        }
    }
}

void copy_margins_to_header_footer(VwInstance *instance)
{
    uint16_t *margins = instance->state.hfMargins;
    margins[0] = margins[1] = instance->state.saved.leftMargin;
    margins[2] = margins[3] = instance->state.saved.rightMargin;
}

int32_t PfsWriteHeaderInfo(VwInstance *instance)
{
    FilterState &state = instance->state;
    state.footerAttrs = 0;
    state.headerAttrs = 0;
    state.headerAlign = alignment_left;
    state.footerAlign = alignment_left;
    read_margins(instance);
    copy_margins_to_header_footer(instance);
    if (state.formatType != format_professional_write_2) {
        read_ruler(instance);
    }
    read_header_footer_lengths(instance, line_length_offsets);
    if (state.formatType == format_write_a) {
        state.headerAlign = alignment_centred;
        state.footerAlign = alignment_centred;
        return 0;
    }
    read_alignments(instance);
    if (state.formatType >= format_professional_write_1) {
        read_attributes(instance);
    }
    if (state.formatType == format_professional_write_2) {
        read_further_margins(instance);
    }
    return 0;
}

} // namespace vs_pfs

// Recognising a document and reading its header, records and rulers.
#pragma once

#include "vs_pfs/filter_interface.h"

namespace vs_pfs {

// Values of formatType.
enum FormatType : uint8_t {
    format_none = 0,
    format_write_a = 1,
    format_write_b = 2,
    format_writing_assistant = 3,
    format_professional_write_1 = 4,
    format_professional_write_2 = 5,
    format_first_choice = 6
};

// Values of fcVersion. 2 means every generation but the third.
inline constexpr uint16_t choice_generation_2 = 2;
inline constexpr uint16_t choice_generation_3 = 3;

// Format detection (format_detection.cpp). Sets formatType and fcVersion. 0 when the
// document is known, the stream then at offset 0; else 1, the stream wherever it stopped.
int32_t PfsGetVersion(VwInstance *instance);

// Headers (write_header.cpp, choice_header.cpp). They set margins, the tab table, and the
// position, look and presence of header and footer lines. Always 0: a short file reads as -1.
int32_t PfsWriteHeaderInfo(VwInstance *instance);
int32_t PfsChoiceHeaderInfo(VwInstance *instance);

// A 16-bit number, low byte first; a missing byte counts as -1.
int16_t GetValue(VwInstance *instance);
// Reads and drops `count` bytes, none if it is 0 or less. Always 0.
int32_t PfsSkipBytes(int16_t count, VwInstance *instance);
// Merges two ascending lists of columns into the tab table, decimal stops first where they
// share a column; at most 77 stops. Always 0.
int32_t MergeTabStops(int16_t normalCount, int16_t decimalCount, const int16_t *normalList,
                      const int16_t *decimalList, VwInstance *instance);

// Reads the lengths of the header and footer lines and marks those pending that have text.
void read_header_footer_lengths(VwInstance *instance, const formats::LineTable &offsets);
// Copies the margins into both pairs of hfMargins.
void copy_margins_to_header_footer(VwInstance *instance);

// A 0x07 record of a Write-family document, its 0x07 already read (margin_record.cpp).
void MarginsFontRecord(VwInstance *instance);

// A ruler line of a First Choice 3 text, read from after its line header byte
// (choice3_ruler.cpp). Replaces and reports tab stops and margins. Always 0.
int32_t Fc3GetRuler(VwCharStream *stream, VwInstance *instance);

} // namespace vs_pfs

// The instance record and the calls out to the host.
//
// All state of one document lives in one record. It has four regions: the filter state, of
// which the host saves and restores the first 328 bytes; the host's output routines; the
// host's two words; and what the lookahead remembers. The sizes of the first region are
// part of the interface (VwGetInfo returns them), so its layout is the same on every machine.
// Tests: tests/module/instance_test.cpp, tests/module/output_routines_test.cpp.
#pragma once

#include "formats/text.h"
#include "vs_pfs.h"
#include "vs_pfs/char_stream.h"

#include <cstddef>
#include <cstdint>

namespace vs_pfs {

inline constexpr int tab_table_slots = 100;

// The last slot of the tab table is kept for the terminator.
inline constexpr int most_tab_stops = tab_table_slots - 1;
inline constexpr uint16_t tab_table_end = 0xFFFF;
inline constexpr uint8_t tab_kind_ordinary = 0x00;
inline constexpr uint8_t tab_kind_decimal = 0x2E;

// Texts in the order of formats: header lines 1 and 2, footer lines 1 and 2.
using formats::header_footer_lines;

// Bits of hfPending. Footer line 2 is marked with three bits, two of which are those of
// header line 2 and header line 1: see "footer line 2" in docs/quirks.md.
inline constexpr uint16_t hf_owed_close = 0x01;
inline constexpr uint16_t hf_header_1 = 0x02;
inline constexpr uint16_t hf_header_2 = 0x04;
inline constexpr uint16_t hf_footer_1 = 0x08;
inline constexpr uint16_t hf_footer_2 = 0x16;

// The 328 bytes that VwGetData copies. Columns are 0-based; a margin of 0xFFFF is -1.
struct SavedState {
    uint32_t seekPos; // where the body was last left or begun; written, never read
    uint16_t leftMargin;
    uint16_t rightMargin;
    int16_t pwReaderWord; // left indent last reported by the Professional Write reader
    uint16_t hfPending;   // header and footer lines still to report
    uint16_t tabCount;
    uint8_t attrState;       // attributes the host knows to be on
    uint8_t hfAttrState;     // the same for the header or footer line being reported
    uint8_t skipFirstReturn; // 1: the next 0x0D of a Write body is swallowed
    uint8_t pwReaderFlag;    // 2 or more: a suppressed stretch of a Professional Write body
    uint8_t openEndFlag;     // no body found, or byte 836 set; written, never read
    uint8_t hfReaderFlag;    // 1: a header or footer block is open
    uint8_t fontValue;
    uint16_t tabPos[tab_table_slots];
    uint8_t tabKind[tab_table_slots];
    uint8_t reserved[4];
};
static_assert(sizeof(SavedState) == VW_SAVED_STATE_SIZE);

// The saved state and what is fixed once a document is open. Packed to 4 bytes and with a
// pointer field of 8 so that it measures 380 bytes with pointers of either size.
#pragma pack(push, 4)
struct FilterState {
    SavedState saved;
    uint8_t formatType;                      // FormatType, 0 before detection
    uint32_t hfTextPos[header_footer_lines]; // file positions of the four texts
    uint16_t hfLength[header_footer_lines];  // their lengths, 0 for an absent line
    union {
        VwCharStream *stream;
        uint64_t streamBits;
    };
    uint8_t footerAttrs;
    uint8_t headerAttrs;
    uint8_t headerAlign;
    uint8_t footerAlign;
    uint16_t hfMargins[4]; // first left, second left, first right, second right; never read
    uint16_t fcVersion;    // First Choice generation, 2 or 3
};
#pragma pack(pop)
inline constexpr std::size_t filter_state_size = 380;
static_assert(sizeof(FilterState) == filter_state_size);

// What the last lookahead learned of the word that runs on from `position`: how long it is
// and where it stops. See word_lookahead.h.
struct LookaheadMemo {
    VwCharStream *stream; // null: nothing is known
    uint32_t position;
    uint32_t stop;
    uint16_t wordLength;
};

} // namespace vs_pfs

struct VwInstance {
    vs_pfs::FilterState state;
    VwRoutine routines[VW_OUTPUT_ROUTINES]; // by slot, not by id: see output_slot
    uint32_t user1;
    uint32_t user2;
    vs_pfs::LookaheadMemo lookahead;
};

namespace vs_pfs {

// Index into VwInstance::routines of an id from 1 to 65. Ids 14, 15 and 16 stand in a
// circle: see "swapped slots" in docs/quirks.md.
constexpr int output_slot(int id)
{
    switch (id) {
    case 14: return 16 - 1;
    case 15: return 14 - 1;
    case 16: return 15 - 1;
    default: return id - 1;
    }
}

// Calls the output routine `Id` of type `Routine`. SODummy has a type of its own, so it is
// never called through another: its answer, the first argument, is given instead.
template <VwOutputId Id, typename Routine, typename... Arguments>
inline int32_t call_output(const VwInstance *instance, int32_t dummy_answer, Arguments... arguments)
{
    const VwRoutine routine = instance->routines[output_slot(Id)];
    if (routine == reinterpret_cast<VwRoutine>(&SODummy)) {
        return dummy_answer;
    }
    return reinterpret_cast<Routine>(routine)(arguments..., instance->user1, instance->user2);
}

inline constexpr int32_t special_character_type = 7;
inline constexpr int32_t page_break_type = 4;
inline constexpr int32_t header_footer_type = 3;

inline void put_character(const VwInstance *instance, int32_t character)
{
    call_output<VW_SO_CHARACTER, VwOutput1>(instance, character, character);
}

inline void put_special_character(const VwInstance *instance, int32_t character)
{
    call_output<VW_SO_SPECIAL_CHARACTER, VwOutput2>(instance, character, character,
                                                    special_character_type);
}

inline void put_page_break(const VwInstance *instance)
{
    call_output<VW_SO_PAGE_BREAK, VwOutput2>(instance, page_break_type, page_break_type, 0);
}

inline void put_attribute(const VwInstance *instance, int32_t code, bool on)
{
    call_output<VW_SO_ATTRIBUTE, VwOutput2>(instance, code, code, on ? 1 : 0);
}

inline void put_font(const VwInstance *instance)
{
    const int32_t font = instance->state.saved.fontValue;
    call_output<VW_SO_FONT, VwOutput1>(instance, font, font);
}

inline void put_alignment(const VwInstance *instance, VwAlignment alignment)
{
    call_output<VW_SO_ALIGNMENT, VwOutput1>(instance, alignment, int32_t{alignment});
}

// Reports indents given in columns; the right indent is always 0.
inline void put_indents(const VwInstance *instance, int32_t left, int32_t first_line)
{
    call_output<VW_SO_INDENTS, VwOutput3>(instance, left * VW_TWIPS_PER_COLUMN,
                                          left * VW_TWIPS_PER_COLUMN, 0,
                                          first_line * VW_TWIPS_PER_COLUMN);
}

// Reports the margins in force; a margin word above 32767 is a negative column.
inline void put_margins(const VwInstance *instance)
{
    const SavedState &saved = instance->state.saved;
    const int32_t left = static_cast<int16_t>(saved.leftMargin) * VW_TWIPS_PER_COLUMN;
    const int32_t right = static_cast<int16_t>(saved.rightMargin) * VW_TWIPS_PER_COLUMN;
    call_output<VW_SO_MARGINS, VwOutput2>(instance, left, left, right);
}

inline void put_tab_stops_begin(const VwInstance *instance)
{
    call_output<VW_SO_TAB_STOPS_BEGIN, VwOutput0>(instance, 0);
}

inline void put_tab_stops_end(const VwInstance *instance)
{
    call_output<VW_SO_TAB_STOPS_END, VwOutput0>(instance, 0);
}

inline void put_tab_stop(const VwInstance *instance, const VwTabStop &stop)
{
    call_output<VW_SO_TAB_STOP, VwOutputTabStop>(instance, 0, &stop);
}

inline constexpr int32_t header_block = 1;
inline constexpr int32_t footer_block = 2;

inline void put_header_footer_kind(const VwInstance *instance, int32_t kind)
{
    call_output<VW_SO_HEADER_FOOTER, VwOutput2>(instance, kind, kind, header_footer_type);
}

// Reports a break and returns the host's result, which matters after paragraphs only.
inline int32_t put_break(const VwInstance *instance, VwBreak code)
{
    return call_output<VW_SO_BREAK, VwOutput2>(instance, code, int32_t{code}, 0);
}

// Ends a paragraph, or a header or footer line. True: the host wants the read call to end.
inline bool put_paragraph_end(const VwInstance *instance)
{
    constexpr int32_t stop_reading = 1;
    return put_break(instance, VW_BREAK_PARAGRAPH) == stop_reading;
}

inline void put_section_start(const VwInstance *instance)
{
    call_output<VW_SO_SECTION_START, VwOutput1>(instance, 0, 0);
}

inline void put_line_spacing(const VwInstance *instance, int32_t twips)
{
    call_output<VW_SO_LINE_SPACING, VwOutput4>(instance, 1, 1, twips, 0, 0);
}

} // namespace vs_pfs

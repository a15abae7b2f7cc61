// What all line readers share: attributes, tab stops, embedded commands, header and footer
// lines, and the announcements that open a read call.
#pragma once

#include "formats/first_choice.h"
#include "formats/text.h"
#include "vs_pfs/filter_interface.h"

namespace vs_pfs {

// The internal attribute set: one bit for each attribute code of the host, the one that the
// Write family's attribute bytes have for it.
inline constexpr uint8_t attr_code_4 = formats::underline;
inline constexpr uint8_t attr_code_2 = formats::bold;
inline constexpr uint8_t attr_code_3 = formats::italic;
inline constexpr uint8_t attr_code_11 = formats::superscript;
inline constexpr uint8_t attr_code_10 = formats::subscript;
inline constexpr uint8_t attr_all =
    attr_code_4 | attr_code_2 | attr_code_3 | attr_code_11 | attr_code_10;

// How a document stores the attributes of a character.
inline constexpr uint8_t attr_form_plain = 0; // one byte: the Write family
inline constexpr uint8_t attr_form_pair = 1;  // one or two bytes: First Choice
inline constexpr uint8_t attributes_of_first_byte = attr_code_4 | attr_code_2 | attr_code_3;

// Attributes (attributes.cpp). All return 0.
//
// Adds the attributes that the stored bytes carry to *target; clears none.
inline int32_t SetAttr(uint8_t first, uint8_t second, uint8_t pairForm, uint8_t *target,
                       VwInstance *)
{
    if (pairForm == attr_form_plain) {
        *target |= first & attr_all;
        return 0;
    }
    *target |= first & attributes_of_first_byte;
    if ((second & formats::choice::second_subscript) != 0) {
        *target |= attr_code_10;
    }
    if ((second & formats::choice::second_superscript) != 0) {
        *target |= attr_code_11;
    }
    return 0;
}
// Reports all five attributes again, on or off.
int32_t PutAttributes(VwInstance *instance);

inline bool attributes_in_force(uint8_t set, const VwInstance *instance)
{
    return ((instance->state.saved.attrState ^ set) & attr_all) == 0;
}
// What check_attributes does once something changes.
void change_attributes(uint8_t newSet, VwInstance *instance);
// Reports what changes from attrState to newSet, and makes newSet the state.
inline int32_t check_attributes(uint8_t newSet, VwInstance *instance)
{
    if (!attributes_in_force(newSet, instance)) {
        change_attributes(newSet, instance);
    }
    return 0;
}

// Reports that the attributes of hfAttrState begin, or end.
void put_header_footer_attributes(VwInstance *instance, bool on);
// put_header_footer_attributes with false.
int32_t TurnOffAttr(VwInstance *instance);

// Tab stops (tab_stops.cpp): the first 30 stops of the table. Always 0.
int32_t PutTabStops(VwInstance *instance);

// Embedded commands (text_commands.cpp).
inline constexpr int command_buffer_size = 10;
inline constexpr uint8_t command_mark = formats::asterisk;

// Reads what follows a '*'. 1: it was a command, now reported and passed, *column advanced
// by each byte of it. 0: it was not; nothing was reported, the stream is after the '*'.
int32_t PfsTextCommand(VwCharStream *stream, int16_t *column, VwInstance *instance);
// Reads one keyword into buffer (command_buffer_size bytes) and returns its code, 1 to 18,
// or 0; the stream is left after the last byte read.
int32_t PfsGetCommand(VwCharStream *stream, char *buffer, VwInstance *instance);

// Headers and footers (headers_footers.cpp). Reports one pending line, or a block end that
// is still owed. hfPending must not be 0.
inline constexpr int32_t header_footer_stop = 0; // the host wants the read call to end
inline constexpr int32_t header_footer_go_on = 1;
int32_t ProcHeaderFooter(VwInstance *instance);

// The start of a read call (call_start.cpp): takes over the stream, reports the
// attributes and margins in force, reports header and footer lines that are pending, and
// resets indents, alignment, font and line spacing. False: the host wants the call to end.
bool start_call(VwCharStream *stream, VwInstance *instance);
// The same with margins before attributes, as Professional Write has it.
bool start_call_margins_first(VwCharStream *stream, VwInstance *instance);

} // namespace vs_pfs

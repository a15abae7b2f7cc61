// What the model's files share: byte names, 16-bit counting, and the services.
#pragma once

#include "tests/model/model.h"

#include <cstdint>

namespace tests::model {

constexpr uint8_t record_mark = 0x07;
constexpr uint8_t form_feed = 0x0C;
constexpr uint8_t carriage_return = 0x0D;
constexpr uint8_t document_end = 0x0E;
constexpr uint8_t space = 0x20;
constexpr uint8_t star = 0x2A;
constexpr uint8_t prefixed = 0x80; // an attribute byte follows
constexpr uint8_t blank_byte = 0xFF;

constexpr int32_t special_type = 7;

// Counters are 16 bits wide and wrap around.
inline void count_up(int16_t &counter)
{
    counter = static_cast<int16_t>(static_cast<uint16_t>(counter) + 1);
}

inline int32_t twips(int16_t columns)
{
    return VW_TWIPS_PER_COLUMN * columns;
}

// Headers.
bool PfsGetVersion(Model &model);
void PfsWriteHeaderInfo(Model &model);
void PfsChoiceHeaderInfo(Model &model);
void MarginsFontRecord(Model &model);
void Fc3GetRuler(Model &model);
int16_t GetValue(Model &model);

// Services of the line readers.
enum class PairForm : uint8_t { write = 0, choice = 1 };
void SetAttr(uint8_t first, uint8_t second, PairForm form, uint8_t &target);
void PutAttributes(Model &model);
void check_attributes(Model &model, uint8_t new_set);
void TurnOffAttr(Model &model);
void PutTabStops(Model &model);
// Whether a command followed the asterisk and has been echoed, counted in the column.
bool PfsTextCommand(Model &model, int16_t &column);
// Whether to continue: false if the host stopped at the line end.
bool ProcHeaderFooter(Model &model);

// The announcements that all readers share.
void report_margins(Model &model);
bool report_pending_headers(Model &model); // false when the host stopped
void report_line_defaults(Model &model);
void report_indents(Model &model, int16_t left, int16_t first_line);
void report_no_indents(Model &model);
void report_single_spacing(Model &model);
void report_double_spacing(Model &model);
void report_character(Model &model, uint8_t character);
// One special space for each leading space of a line that holds nothing else.
void report_leading_spaces(Model &model, int16_t leading_spaces);

// The line readers.
void read_pfs_line(Model &model);
void read_pfs_12_line(Model &model);
void read_choice_line(Model &model);
void read_choice3_line(Model &model);

// A character of First Choice text with the attributes that its attribute bytes give it.
struct ChoiceCharacter {
    uint8_t character = 0;
    uint8_t attributes = 0;
};
ChoiceCharacter choice_character(Model &model, uint8_t stored);

// The part of a First Choice line's state that its characters change.
struct ChoiceLine {
    int16_t column = 0;
    int16_t leadingSpaces = 0;
    bool atLineStart = true;
    bool lastWasSpace = false;
};
struct ChoiceParagraph {
    int16_t firstLineSpaces = 0;
    bool paragraphStart = true;
};
void report_choice_character(Model &model, uint8_t stored, ChoiceLine &line,
                             ChoiceParagraph &paragraph);
// The announcements that start a read; false if the host stopped in a header or footer.
bool announce_choice_read(Model &model);

} // namespace tests::model

// What all readers do alike with a decoded character, and at the end of a call.
#pragma once

#include "formatting.h"

namespace vs_pfs {

inline constexpr uint8_t space = 0x20;
inline constexpr uint8_t document_end = 0x0E;
inline constexpr uint8_t high_bit = 0x80;
inline constexpr uint8_t low_seven_bits = 0x7F;

// A character that has no picture in the documents' character set; shown as a space.
inline constexpr uint8_t blank_character = 0xFF;

inline void advance_column(int16_t &column)
{
    column = static_cast<int16_t>(column + 1);
}

// Reports a character other than a space and moves the column past it. A '*' that opens a
// command gives way to the command, which moves the column itself.
inline void put_text(VwCharStream *stream, uint8_t character, int16_t &column, VwInstance *instance)
{
    if (character == command_mark && PfsTextCommand(stream, &column, instance) != 0) {
        return;
    }
    put_character(instance, character == blank_character ? space : character);
    advance_column(column);
}

// What a piece of the text means for the read call.
enum class Progress { go_on, document_done, host_stopped };

// Ends a read call, whose result is always 0.
inline int32_t end_call(Progress progress, const VwInstance *instance)
{
    if (progress == Progress::document_done) {
        put_break(instance, VW_BREAK_END_OF_DOCUMENT);
    }
    return 0;
}

} // namespace vs_pfs

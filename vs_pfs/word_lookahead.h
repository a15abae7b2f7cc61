// The length of the word that follows a line end, by which two of the readers tell a
// wrapped line from one that was ended on purpose.
#pragma once

#include "filter_interface.h"

namespace vs_pfs {

// What the lookahead makes of one stored character, its attribute bytes included.
enum class Token { word, blank, stop };

// Reads one stored character. Must pass at least one byte, or answer stop.
using ReadToken = Token (*)(VwCharStream *);

// The number of characters of the first word from the stream's position on, its leading
// blanks left out, as a signed 16-bit counter that wraps. The stream stays where it is,
// which must be just after a line end byte.
int16_t next_word_length(VwCharStream *stream, VwInstance *instance, ReadToken read_token);

// Whether a word of that length, put at `column`, would have passed the right margin.
bool word_would_wrap(int16_t column, int16_t word_length, const VwInstance *instance);

} // namespace vs_pfs

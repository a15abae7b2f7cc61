// The readers of the text, one for each generation. Each reads from the stream's position
// until the host returns 1 at a paragraph end, or to the document's end byte, or to the
// end of the data. They always return 0: routine 13 reports the reason for stopping.
#pragma once

#include "vs_pfs/filter_interface.h"

namespace vs_pfs {

int32_t read_pfs_line(VwCharStream *stream, VwInstance *instance);
int32_t read_pfs_12_line(VwCharStream *stream, VwInstance *instance);
int32_t read_choice_line(VwCharStream *stream, VwInstance *instance);
int32_t read_choice3_line(VwCharStream *stream, VwInstance *instance);

// Whether the line that has just ended at `column` was wrapped: it was if the first word of
// the next line would not have fitted. Clears the flag then, and never sets it. The stream
// stays where it is. Always 0.
int32_t PfsDetermineEnder(VwCharStream *stream, int16_t column, uint16_t *hardEnd,
                          VwInstance *instance);
int32_t FcDetermineEnder(VwCharStream *stream, int16_t column, uint16_t *endsHere,
                         VwInstance *instance);

} // namespace vs_pfs

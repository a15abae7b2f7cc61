// Buffered bytes over the host's block file: what the filter's own files share beside the
// operations that vs_pfs.h declares. Tests: tests/module/char_stream_test.cpp.
#pragma once

#include "vs_pfs.h"

namespace vs_pfs {

// What VwCharGet delivers when there is no byte left.
inline constexpr int32_t end_of_data = -1;

inline constexpr int32_t seek_absolute = 0;
inline constexpr int32_t seek_relative = 1;
inline constexpr int32_t seek_from_end = 2;

// The next byte's position. Wraps after the largest one.
inline uint32_t position_of(const VwCharStream *stream)
{
    return static_cast<uint32_t>(int64_t{stream->bufferBase} + stream->bufferLength -
                                 stream->remaining);
}

// Whether the position is that of a buffered byte, or the first one after them.
inline bool buffer_reaches(const VwCharStream *stream, uint32_t position)
{
    return stream->bufferBase <= position && position - stream->bufferBase <= stream->bufferLength;
}

// Gives up the buffered bytes: the next read fills the buffer from the stream's position on.
void begin_buffer_here(VwCharStream *stream);

} // namespace vs_pfs

// The buffered, seekable byte reader over the host's block file.
//
// One buffer of 2048 bytes holds the stretch of the file that starts at bufferBase. Small
// jumps stay inside it and cost nothing; any other empties it, and the next read refills it
// from the new position. VwCharGet and VwCharUnget are in vs_pfs.h.
//
// The host's answers are not trusted: a read that claims more bytes than it was asked for
// counts as failed, and wherever the buffer is empty the cursor stands at its start, so
// that no order of calls takes it outside. Test: tests/module/char_stream_test.cpp.
#include "vs_pfs/char_stream.h"

#include <algorithm>
#include <cstdlib>
#include <iterator>

using namespace vs_pfs;

namespace {

void empty_buffer(VwCharStream *stream)
{
    stream->remaining = 0;
    stream->bufferLength = 0;
    stream->cursor = stream->buffer;
}

// Positions the buffer's cursor; `distance` is less than bufferLength.
void place_cursor(VwCharStream *stream, uint32_t distance)
{
    stream->remaining = static_cast<int16_t>(stream->bufferLength - distance);
    stream->cursor = stream->buffer + distance;
}

bool is_buffered(const VwCharStream *stream, uint32_t position)
{
    return stream->bufferBase <= position && position < stream->bufferBase + stream->bufferLength;
}

// The number of bytes read into the buffer, 0 when there are none.
uint32_t read_buffer(VwCharStream *stream)
{
    VwBlockFile *file = stream->blockFile;
    uint32_t count = 0;
    const int32_t result = file->read(file, stream->buffer, VW_STREAM_BUFFER_SIZE, &count);
    return result == 0 && count <= VW_STREAM_BUFFER_SIZE ? count : 0;
}

// Resolves a position counted from the end of the file. False when the file refuses.
bool resolve_from_end(VwBlockFile *file, uint32_t *position)
{
    constexpr uint32_t origin_end = 2;
    return file->seek(file, origin_end, static_cast<int32_t>(*position)) == 0 &&
           file->tell(file, position) == 0;
}

} // namespace

void vs_pfs::begin_buffer_here(VwCharStream *stream)
{
    const uint32_t position = position_of(stream);
    empty_buffer(stream);
    VwCharSeek(stream, position, seek_absolute);
}

extern "C" {

VwCharStream *VwBlockToChar(VwBlockFile *file)
{
    // By malloc, as the instance is, so that a host that replaces one function has both.
    auto *stream = static_cast<VwCharStream *>(std::malloc(sizeof(VwCharStream)));
    if (stream != nullptr) {
        // Not even a host that claims unread bytes makes the text unforeseeable.
        std::fill(std::begin(stream->buffer), std::end(stream->buffer), uint8_t{0});
        empty_buffer(stream);
        stream->bufferBase = 0;
        stream->blockFile = file;
    }
    return stream;
}

VwBlockFile *VwCharToBlock(VwCharStream *stream)
{
    VwBlockFile *file = stream->blockFile;
    std::free(stream);
    return file;
}

int32_t vxfilbuf(VwCharStream *stream)
{
    VwBlockFile *file = stream->blockFile;
    stream->bufferBase += stream->bufferLength;
    stream->cursor = stream->buffer;
    // A seek from the end moves the file but not the buffer: bring them together again.
    uint32_t position = stream->bufferBase;
    file->tell(file, &position);
    if (position != stream->bufferBase) {
        file->seek(file, seek_absolute, static_cast<int32_t>(stream->bufferBase));
    }
    stream->bufferLength = read_buffer(stream);
    if (stream->bufferLength == 0) {
        return end_of_data;
    }
    place_cursor(stream, 1);
    return stream->buffer[0];
}

int32_t VwCharSeek(VwCharStream *stream, uint32_t position, int32_t origin)
{
    VwBlockFile *file = stream->blockFile;
    switch (static_cast<int16_t>(origin)) {
    case seek_relative: // wraps
        position = static_cast<uint32_t>(uint64_t{position} + VwCharTell(stream));
        break;
    case seek_from_end:
        if (!resolve_from_end(file, &position)) {
            return -1;
        }
        break;
    default: break;
    }
    if (is_buffered(stream, position)) {
        place_cursor(stream, position - stream->bufferBase);
        return 0;
    }
    empty_buffer(stream);
    stream->bufferBase = position;
    return file->seek(file, seek_absolute, static_cast<int32_t>(position)) == 0 ? 0 : -1;
}

uint32_t VwCharTell(VwCharStream *stream)
{
    return position_of(stream);
}

} // extern "C"

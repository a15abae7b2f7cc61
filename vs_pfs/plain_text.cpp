// Runs of plain text. Most of a document is such text; known to be so beforehand, it leaves
// nothing to decide between two calls out. Test: tests/module/plain_text_test.cpp.
#include "line_text.h"

#include <bit>
#include <cstddef>
#include <cstring>

namespace vs_pfs {
namespace {

// Eight bytes looked at together, the first in the lowest place.
using Bytes = uint64_t;
constexpr Bytes each_byte = 0x0101010101010101;

Bytes load_bytes(const uint8_t *at)
{
    Bytes bytes;
    std::memcpy(&bytes, at, sizeof bytes);
    return std::endian::native == std::endian::little ? bytes : __builtin_bswap64(bytes);
}

// Marks, by their highest bits, the bytes that are below `lowest`, above 0x7F or asterisks.
// Only the first mark counts: what is borrowed for it may mark bytes behind it.
constexpr Bytes mark_others(Bytes bytes, uint8_t lowest)
{
    const Bytes below = bytes - each_byte * lowest;
    const Bytes asterisks = (bytes ^ (each_byte * command_mark)) - each_byte;
    return (bytes | below | asterisks) & (each_byte * high_bit);
}

// Calls out for the bytes up to `end`, and returns where it stopped: earlier if the host moved
// the stream in its routine, or set another one. By itself, so that the loop is short and all
// that it needs stays in registers across the calls.
[[gnu::noinline]] uint8_t *put_bytes(VwCharStream *stream, const VwInstance *instance,
                                     const uint8_t *end)
{
    const VwRoutine &routine = instance->routines[output_slot(VW_SO_CHARACTER)];
    const VwRoutine first_routine = routine;
    uint8_t *next = stream->cursor;
    while (next != end && stream->cursor == next && routine == first_routine) {
        --stream->remaining;
        stream->cursor = ++next;
        reinterpret_cast<VwOutput1>(first_routine)(next[-1], instance->user1, instance->user2);
    }
    return next;
}

} // namespace

int count_plain(const VwCharStream *stream, uint8_t lowest)
{
    const uint8_t *const bytes = stream->cursor;
    const int remaining = stream->remaining;
    int count = 0;
    for (; count + int{sizeof(Bytes)} <= remaining; count += int{sizeof(Bytes)}) {
        const Bytes others = mark_others(load_bytes(bytes + count), lowest);
        if (others != 0) {
            return count + std::countr_zero(others) / 8;
        }
    }
    while (count < remaining && is_plain(bytes[count]) && bytes[count] >= lowest) {
        ++count;
    }
    return count;
}

uint8_t put_plain_text(VwCharStream *stream, const VwInstance *instance, int16_t &column)
{
    uint8_t *const start = stream->cursor;
    const int count = count_plain(stream, space);
    if (count == 0) {
        return 0;
    }
    uint8_t *end = start + count;
    if (instance->routines[output_slot(VW_SO_CHARACTER)] == reinterpret_cast<VwRoutine>(&SODummy)) {
        stream->remaining = static_cast<int16_t>(stream->remaining - count);
        stream->cursor = end;
    } else {
        end = put_bytes(stream, instance, end);
    }
    column = static_cast<int16_t>(column + (end - start));
    return end[-1];
}

} // namespace vs_pfs

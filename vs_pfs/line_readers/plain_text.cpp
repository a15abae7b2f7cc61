// Runs of plain text. Most of a document is such text; known to be so beforehand, it leaves
// nothing to decide between two calls out. Test: tests/module/plain_text_test.cpp.
#include "vs_pfs/line_readers/line_text.h"

#include <bit>
#include <cstddef>
#include <cstring>

namespace vs_pfs {
namespace {

// Eight bytes looked at together, the first in the lowest byte.
using Word = uint64_t;
constexpr int word_size = sizeof(Word);
constexpr int block_size = 64;
constexpr Word each_byte = 0x0101010101010101;

Word load_word(const uint8_t *at)
{
    Word word;
    std::memcpy(&word, at, sizeof word);
    return std::endian::native == std::endian::little ? word : __builtin_bswap64(word);
}

// Marks, by their highest bits, the bytes that are below `lowest`, above 0x7F or asterisks.
// Only the first mark counts: borrows for it may mark bytes after it.
constexpr Word mark_others(Word word, uint8_t lowest)
{
    const Word below = word - each_byte * lowest;
    const Word asterisks = (word ^ (each_byte * command_mark)) - each_byte;
    return (word | below | asterisks) & (each_byte * high_bit);
}

// The same for 64 bytes, a bit for each, the lowest for the first.
uint64_t mark_others_of_block(const uint8_t *at)
{
    constexpr Word gather = 0x0102040810204080; // takes the bytes' lowest bits to the top byte
    uint64_t marks = 0;
    for (int i = 0; i < block_size; i += word_size) {
        const Word others = mark_others(load_word(at + i), space) >> 7;
        marks |= (others * gather >> 56) << i;
    }
    return marks;
}

// Continues counting plain bytes after the first `count` in the buffer.
int count_on(const VwCharStream *stream, int count, uint8_t lowest)
{
    const uint8_t *const bytes = stream->cursor;
    const int remaining = stream->remaining;
    for (; count + word_size <= remaining; count += word_size) {
        const Word others = mark_others(load_word(bytes + count), lowest);
        if (others != 0) {
            return count + std::countr_zero(others) / 8;
        }
    }
    while (count < remaining && is_plain(bytes[count]) && bytes[count] >= lowest) {
        ++count;
    }
    return count;
}

// The number of plain bytes that lie next in the buffer. Where a line ends cannot be foreseen,
// and a search that branches at each word would pay for that; 64 bytes hold most lines.
int count_run(const VwCharStream *stream)
{
    const uint8_t *const bytes = stream->cursor;
    int count = 0;
    while (count + block_size <= stream->remaining &&
           mark_others(load_word(bytes + count), space) == 0) {
        const uint64_t others = mark_others_of_block(bytes + count);
        if (others != 0) {
            return count + std::countr_zero(others);
        }
        count += block_size;
    }
    return count_on(stream, count, space);
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
    return count_on(stream, 0, lowest);
}

uint8_t put_plain_text(VwCharStream *stream, const VwInstance *instance, int16_t &column)
{
    uint8_t *const start = stream->cursor;
    const int count = count_run(stream);
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

// What all readers do alike with a decoded character, and at the end of a call.
#pragma once

#include "vs_pfs/formatting.h"

namespace vs_pfs {

using formats::document_end;
using formats::high_bit;
using formats::low_seven_bits;
using formats::no_glyph;
using formats::space;

// A character and its internal attribute set, out of one to three stored bytes.
struct Decoded {
    uint8_t character;
    uint8_t attributes;
};
inline constexpr int longest_character = 3;

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
    put_character(instance, character == no_glyph ? space : character);
    advance_column(column);
}

// Whether a decoded character within a line is reported as it is and moves the column by one.
constexpr bool is_ordinary(uint8_t character)
{
    return character >= space && character != command_mark && character != no_glyph;
}

// Whether a stored byte is such a character by itself, without attributes.
constexpr bool is_plain(uint8_t byte)
{
    return byte < high_bit && is_ordinary(byte);
}

// The number of plain bytes, none below `lowest`, that lie next in the buffer
// (plain_text.cpp).
int count_plain(const VwCharStream *stream, uint8_t lowest);

// Reports the plain bytes that lie next in the buffer (plain_text.cpp); no attribute may
// be in force. Returns the last of them, or 0 when there are none.
uint8_t put_plain_text(VwCharStream *stream, const VwInstance *instance, int16_t &column);

// Whether put_ordinary_text may go on from here. While spaces count as indent, only a byte
// that is text by itself will do.
inline bool text_follows(const VwCharStream *stream, bool spaces_are_indent)
{
    return stream->remaining > 0 &&
           (!spaces_are_indent || (is_plain(*stream->cursor) && *stream->cursor != space));
}

// Reports the ordinary characters that lie next in the buffer, whatever their attributes.
// `decode` takes a character's first byte, the result, and what delivers the bytes after it.
// Returns the last of them, or 0 when there are none. Not inlined, so that what the loop needs
// stays in registers across the calls.
template <typename Decode>
[[gnu::noinline]] uint8_t put_ordinary_text(VwCharStream *stream, VwInstance *instance,
                                            int16_t &column, Decode decode)
{
    uint8_t last = 0;
    if (is_plain(*stream->cursor) && attributes_in_force(0, instance)) {
        last = put_plain_text(stream, instance, column);
    }
    while (stream->remaining >= longest_character) {
        uint8_t *next = stream->cursor;
        Decoded decoded;
        const uint8_t byte = *next++;
        decode(byte, decoded, [&next] { return int32_t{*next++}; });
        if (!is_ordinary(decoded.character)) {
            break;
        }
        stream->remaining = static_cast<int16_t>(stream->remaining - (next - stream->cursor));
        stream->cursor = next;
        last = decoded.character;
        const bool changed = !attributes_in_force(decoded.attributes, instance);
        if (changed) [[unlikely]] {
            change_attributes(decoded.attributes, instance);
        }
        put_character(instance, last);
        advance_column(column);
        if (changed && decoded.attributes == 0) [[unlikely]] {
            const uint8_t last_plain = put_plain_text(stream, instance, column);
            last = last_plain != 0 ? last_plain : last;
        }
    }
    return last;
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

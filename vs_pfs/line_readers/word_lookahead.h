// The length of the word that follows a line end, by which two of the readers
// distinguish a wrapped line from one that was ended on purpose.
//
// It scans the first word of the next line. That is a few bytes in a document that someone
// wrote. But the lookahead takes more bytes for attribute bytes than the readers do, and
// so may take the next line end for one and run on: in a hostile document each line end
// would scan all that follows.
//
// What saves it: a scan that passes a later line end does so with that byte as the last
// byte of a character, so a character of the scan begins right after it, inside the word.
// The scan from there is the rest of the same scan. One finished scan, remembered with
// where it stopped, therefore answers for every line end that it ran across: only the
// characters between the two line ends have to be counted off. So each byte is looked at
// twice at most, in order, however long the word.
//
// Nearly every word lies in the buffer as a whole. It is looked at there, and the stream never
// moves; only a word that runs past the buffer's end is read.
// Test: tests/module/word_lookahead_test.cpp, which compares it with the plain scan.
#pragma once

#include "vs_pfs/line_readers/line_text.h"

#include <algorithm>

namespace vs_pfs {

// What the lookahead makes of one stored character, its attribute bytes included. A reader's
// own ReadToken, called with a source of bytes, reads one stored character: it passes at least
// one byte, or answers stop. Its function stops() says which first bytes do that.
enum class Token { word, gap, stop };

// Bytes as the stream delivers them. The stream follows when its buffer is used up; afterwards
// it has to be positioned.
class StreamBytes {
public:
    explicit StreamBytes(VwCharStream *stream) : stream_(stream)
    {
        take_buffer();
    }

    int32_t operator()()
    {
        return next_ != end_ ? *next_++ : refill();
    }
    void skip(int count)
    {
        if (count <= end_ - next_) {
            next_ += count;
            return;
        }
        for (; count > 0; --count) {
            operator()();
        }
    }
    uint32_t position() const
    {
        return static_cast<uint32_t>(position_of(stream_) + (next_ - stream_->cursor));
    }

private:
    void take_buffer()
    {
        next_ = stream_->cursor;
        end_ = next_ + std::max<int>(stream_->remaining, 0);
    }
    int32_t refill()
    {
        stream_->remaining = std::min<int16_t>(stream_->remaining, 0); // all have been taken
        const int32_t byte = VwCharGet(stream_);
        take_buffer();
        return byte;
    }

    VwCharStream *stream_;
    uint8_t *next_;
    uint8_t *end_;
};

// The bytes from a position on that lie in the buffer, which must hold the position. The
// stream stays where it is.
class BufferedBytes {
public:
    BufferedBytes(const VwCharStream *stream, uint32_t position)
        : stream_(stream), next_(stream->buffer + (position - stream->bufferBase))
    {
    }

    int32_t operator()()
    {
        if (next_ == end()) {
            ran_out_ = true;
            return end_of_data;
        }
        return *next_++;
    }
    void skip(int count)
    {
        ran_out_ = ran_out_ || end() - next_ < count;
        next_ += ran_out_ ? 0 : count;
    }
    uint32_t position() const
    {
        return static_cast<uint32_t>(stream_->bufferBase + (next_ - stream_->buffer));
    }
    bool ran_out() const
    {
        return ran_out_;
    }

private:
    const uint8_t *end() const
    {
        return stream_->buffer + stream_->bufferLength;
    }

    const VwCharStream *stream_;
    const uint8_t *next_;
    bool ran_out_ = false;
};

// A word that goes past the end of the buffer is read twice, for the lookahead and for the
// text. Where little is left of the buffer, it begins again at the word.
inline constexpr int common_word_length = 32;

// Scans the word that `bytes` begin with.
template <typename ReadToken, typename Bytes>
LookaheadMemo scan_word(VwCharStream *stream, Bytes &bytes)
{
    LookaheadMemo memo = {stream, bytes.position(), 0, 0};
    bool leading = true;
    for (;;) {
        memo.stop = bytes.position();
        const Token token = ReadToken()(bytes);
        if (token == Token::stop || (token == Token::gap && !leading)) {
            return memo;
        }
        if (token == Token::word) {
            leading = false;
            memo.wordLength = static_cast<uint16_t>(memo.wordLength + 1);
        }
    }
}

inline bool covers(const LookaheadMemo &memo, const VwCharStream *stream, uint32_t position)
{
    return memo.stream == stream && memo.position <= position && position < memo.stop;
}

// Counts characters off the remembered scan, from whose position `bytes` go on, until it
// begins at `position`. False if it does not come by there, as when a failing file delivers
// other bytes than before.
template <typename ReadToken, typename Bytes>
bool advance(LookaheadMemo &memo, Bytes &bytes, uint32_t position)
{
    while (memo.position < position) {
        const Token token = ReadToken()(bytes);
        if (token == Token::stop) {
            return false;
        }
        if (token == Token::word) {
            memo.wordLength = static_cast<uint16_t>(memo.wordLength - 1);
        }
        memo.position = bytes.position();
    }
    return memo.position == position;
}

// Makes the memo's scan, which covers `position`, begin there.
template <typename ReadToken>
[[gnu::noinline]] bool recall(LookaheadMemo &memo, VwCharStream *stream, uint32_t position)
{
    if (buffer_reaches(stream, memo.position)) {
        BufferedBytes bytes(stream, memo.position);
        return advance<ReadToken>(memo, bytes, position);
    }
    VwCharSeek(stream, memo.position, seek_absolute);
    StreamBytes bytes(stream);
    const bool came_by = advance<ReadToken>(memo, bytes, position);
    VwCharSeek(stream, position, seek_absolute);
    return came_by;
}

// Scans the word at `position`, the stream's.
template <typename ReadToken>
[[gnu::noinline]] LookaheadMemo look_ahead(VwCharStream *stream, uint32_t position)
{
    if (buffer_reaches(stream, position)) {
        BufferedBytes bytes(stream, position);
        const LookaheadMemo memo = scan_word<ReadToken>(stream, bytes);
        if (!bytes.ran_out()) {
            return memo;
        }
    }
    if (stream->remaining < common_word_length) {
        begin_buffer_here(stream);
    }
    StreamBytes bytes(stream);
    const LookaheadMemo memo = scan_word<ReadToken>(stream, bytes);
    VwCharSeek(stream, position, seek_absolute);
    return memo;
}

inline constexpr int not_plain = -1;

// The length of the next word if it is of plain letters and lies in the buffer with what ends
// it, as nearly every one; else not_plain.
template <typename ReadToken> int count_letters(const VwCharStream *stream)
{
    const int letters = count_plain(stream, space + 1);
    if (letters >= stream->remaining) {
        return not_plain;
    }
    const uint8_t end = stream->cursor[letters];
    return (end == space && letters > 0) || ReadToken::stops(end) ? letters : not_plain;
}

// The number of characters of the first word from the stream's position on, its leading
// spaces left out, as a signed 16-bit counter that wraps. The stream stays where it is,
// which must be just after a line end byte.
template <typename ReadToken> int16_t next_word_length(VwCharStream *stream, VwInstance *instance)
{
    LookaheadMemo &memo = instance->lookahead;
    const uint32_t position = position_of(stream);
    if (!covers(memo, stream, position) || !recall<ReadToken>(memo, stream, position)) {
        const int letters = count_letters<ReadToken>(stream);
        if (letters != not_plain) {
            return static_cast<int16_t>(letters);
        }
        memo = look_ahead<ReadToken>(stream, position);
    }
    return static_cast<int16_t>(memo.wordLength);
}

// Whether a word of that length, put at `column`, would have passed the right margin.
inline bool word_would_wrap(int16_t column, int16_t word_length, const VwInstance *instance)
{
    const auto right_margin = static_cast<int16_t>(instance->state.saved.rightMargin);
    return word_length != 0 && column + word_length > right_margin;
}

} // namespace vs_pfs

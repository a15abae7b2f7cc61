// The lookahead at a line end, at a cost that stays proportional to the document.
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
// Test: tests/module/word_lookahead_test.cpp, which compares it with the plain scan.
#include "word_lookahead.h"

namespace vs_pfs {
namespace {

// Scans the word from the stream's position; the stream is left behind what stopped it.
LookaheadMemo scan_word(VwCharStream *stream, ReadToken read_token)
{
    LookaheadMemo memo = {stream, VwCharTell(stream), 0, 0};
    bool leading = true;
    for (;;) {
        memo.stop = VwCharTell(stream);
        const Token token = read_token(stream);
        if (token == Token::stop || (token == Token::blank && !leading)) {
            return memo;
        }
        if (token == Token::word) {
            leading = false;
            memo.wordLength = static_cast<uint16_t>(memo.wordLength + 1);
        }
    }
}

bool covers(const LookaheadMemo &memo, const VwCharStream *stream, uint32_t position)
{
    return memo.stream == stream && memo.position <= position && position < memo.stop;
}

// Counts characters off the remembered scan until it begins at `position`. False if it
// does not come by there, as when a failing file delivers other bytes than before.
bool advance(LookaheadMemo &memo, VwCharStream *stream, uint32_t position, ReadToken read_token)
{
    if (memo.position == position) {
        return true;
    }
    VwCharSeek(stream, memo.position, seek_absolute);
    while (memo.position < position) {
        const Token token = read_token(stream);
        if (token == Token::stop) {
            return false;
        }
        if (token == Token::word) {
            memo.wordLength = static_cast<uint16_t>(memo.wordLength - 1);
        }
        memo.position = VwCharTell(stream);
    }
    return memo.position == position;
}

} // namespace

int16_t next_word_length(VwCharStream *stream, VwInstance *instance, ReadToken read_token)
{
    LookaheadMemo &memo = instance->lookahead;
    const uint32_t position = VwCharTell(stream);
    if (!covers(memo, stream, position) || !advance(memo, stream, position, read_token)) {
        VwCharSeek(stream, position, seek_absolute);
        memo = scan_word(stream, read_token);
    }
    VwCharSeek(stream, position, seek_absolute);
    return static_cast<int16_t>(memo.wordLength);
}

bool word_would_wrap(int16_t column, int16_t word_length, const VwInstance *instance)
{
    const auto right_margin = static_cast<int16_t>(instance->state.saved.rightMargin);
    return word_length != 0 && column + word_length > right_margin;
}

} // namespace vs_pfs

#include "lib/explain/next_word.h"

#include "formats/first_choice.h"

namespace pfsdoc::explaining {

using namespace formats;

// Every byte from 0x80 up takes the next one with it, also in IBM Writing Assistant, whose
// characters do so from 0xC0 only.
NextWord::Token NextWord::read_write(reading::ByteWindow &bytes, uint32_t &position) const
{
    const int32_t byte = bytes.at(position);
    if (byte == reading::ByteWindow::no_byte || byte == carriage_return || byte == document_end) {
        return Token::stop;
    }
    position += (byte & high_bit) != 0 ? 2 : 1;
    return byte == space ? Token::space : Token::word;
}

// Attribute bytes are chained without limit, where a character has two at most.
NextWord::Token NextWord::read_choice(reading::ByteWindow &bytes, uint32_t &position) const
{
    int32_t byte = bytes.at(position);
    if (byte == reading::ByteWindow::no_byte || byte == form_feed || byte == carriage_return ||
        byte == document_end) {
        return Token::stop;
    }
    ++position;
    if ((byte & high_bit) != 0) {
        const int32_t first = bytes.at(position);
        int32_t last = first;
        for (++position;
             last != reading::ByteWindow::no_byte && (last & choice::more_attributes) != 0;) {
            last = bytes.at(position++);
        }
        if (last == reading::ByteWindow::no_byte) {
            return Token::stop;
        }
        byte = (first & choice::keep_high_bit) != 0 ? byte : byte & low_seven_bits;
    }
    return byte == space ? Token::space : Token::word;
}

NextWord::Token NextWord::read(reading::ByteWindow &bytes, uint32_t &position) const
{
    return kind_ == DocumentKind::first_choice_2 ? read_choice(bytes, position)
                                                 : read_write(bytes, position);
}

void NextWord::scan(uint32_t position)
{
    begin_ = position;
    length_ = 0;
    bool leading = true;
    for (;;) {
        stop_ = position;
        const Token token = read(ahead_, position);
        if (token == Token::stop || (token == Token::space && !leading)) {
            return;
        }
        if (token == Token::word) {
            leading = false;
            length_ = static_cast<uint16_t>(length_ + 1);
        }
    }
}

// Counts characters off the last scan until it begins at a position. False if it did not come
// by there.
bool NextWord::recall(uint32_t position)
{
    if (position < begin_ || position >= stop_) {
        return false;
    }
    while (begin_ < position) {
        const Token token = read(behind_, begin_);
        if (token == Token::stop) {
            return false;
        }
        length_ = static_cast<uint16_t>(length_ - (token == Token::word ? 1 : 0));
    }
    return begin_ == position;
}

int16_t NextWord::length_at(uint32_t position)
{
    if (!recall(position)) {
        scan(position);
    }
    return static_cast<int16_t>(length_);
}

} // namespace pfsdoc::explaining

// How long the first word of the next line is: what distinguishes wrapped lines from finished ones
// in the kinds that store all line ends alike. The same count as the module's, made a second time
// so that a line end can be given its reason.
//
// The scan may take attribute bytes that the reader does not take for such, and so run over
// line ends. Each later one is then within the word, where a character begins: the scan that
// has been made answers for it as well, less the characters before it. So every byte is
// looked at twice at most. Tests: tests/lib/explain/next_word_test.cpp, line_end_test.cpp.
#pragma once

#include "lib/reading/byte_window.h"
#include "pfsdoc/identify.h"

#include <cstdint>

namespace pfsdoc::explaining {

class NextWord {
public:
    NextWord(ByteSource &source, DocumentKind kind) : ahead_(source), behind_(source), kind_(kind)
    {
    }

    // Of the word behind a line end: in columns, counted in 16 bits that wrap.
    int16_t length_at(uint32_t position);

private:
    enum class Token { word, space, stop };

    // Passes one character of the scan.
    Token read(reading::ByteWindow &bytes, uint32_t &position) const;
    Token read_write(reading::ByteWindow &bytes, uint32_t &position) const;
    Token read_choice(reading::ByteWindow &bytes, uint32_t &position) const;
    bool recall(uint32_t position);
    void scan(uint32_t position);

    reading::ByteWindow ahead_;  // where a scan is
    reading::ByteWindow behind_; // where characters are counted off
    DocumentKind kind_;
    // The last scan, as from begin_ on.
    uint32_t begin_ = 0;
    uint32_t stop_ = 0;
    uint16_t length_ = 0;
};

} // namespace pfsdoc::explaining

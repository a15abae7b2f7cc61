// Bodies in which each line end's lookahead would run to the end of the file.
//
// The lookahead takes more bytes for attribute bytes than the reader does, and so takes a
// line end for one: in IBM Writing Assistant a byte from 0x80 to 0xBF and the next byte, in
// First Choice 2 any chain of bytes with bit 0x40 and the byte after it. The reader sees a line
// end; the lookahead sees one word, or one run of spaces, that never ends. The other bodies cost
// a lookahead as much as a document can without this: words and runs of spaces that do not fit
// into the stream's buffer.
#pragma once

#include "builder/document.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace bench {

struct HostileBody {
    const char *name;
    pfs_builder::Kind kind;
    bool endless; // each line end's scan runs to the end of the file, or nearly
    std::string (*make)(std::size_t size);
};

const std::vector<HostileBody> &hostile_bodies();

// Margins as the header stores them, counted from 1; values above 32768 are negative.
struct StoredMargins {
    const char *name;
    uint16_t left;
    uint16_t right;
};
const std::vector<StoredMargins> &hostile_margins();

// The whole file.
std::string hostile_document(const HostileBody &body, const StoredMargins &margins,
                             std::size_t size);

} // namespace bench

// Bodies in which each line end's lookahead would run on to the end of the file.
//
// The lookahead takes more bytes for attribute bytes than the reader does, and so takes a
// line end for one: in IBM Writing Assistant a byte from 0x80 to 0xBF with what follows it,
// in First Choice 2 any chain of bytes with bit 0x40 and the byte behind it. What the reader
// sees is a line end; what the lookahead sees is one word, or one run of blanks, that never
// ends. The bodies that are not hostile in this way cost a lookahead as much as a document
// can without it: words and blanks that do not fit into the stream's buffer.
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

// Margins as the header stores them, counted from 1; what is above 32768 is negative.
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

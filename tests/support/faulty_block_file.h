// Sits between a character stream and its block file and injects faults into the operations that
// a test selects: they fail, deliver nothing, claim too much or report a wrong position.
#pragma once

#include "vs_pfs.h"

#include <cstdint>
#include <functional>

namespace tests {

struct Fault {
    enum class Kind {
        none,
        fails,           // nothing is done
        fails_afterward, // the file is read or moved nevertheless
        no_bytes,        // a read that succeeds and delivers nothing
        claims,          // a read reports `value` bytes, whatever it delivered
        misreports       // tell stores `value`, whatever the position
    };
    Kind kind = Kind::none;
    uint32_t value = 0;
};

enum class BlockOperation { read, seek, tell };

// Decides on operation `number`, counted from 1 over reads, seeks and tells together.
using FaultPlan = std::function<Fault(unsigned number, BlockOperation operation)>;

// Replaces the stream's block file until it is destroyed.
struct FaultyBlockFile : VwBlockFile {
    FaultyBlockFile(VwCharStream *stream, FaultPlan plan);
    ~FaultyBlockFile();
    FaultyBlockFile(const FaultyBlockFile &) = delete;
    FaultyBlockFile &operator=(const FaultyBlockFile &) = delete;

    VwCharStream *stream;
    VwBlockFile *inner;
    FaultPlan plan;
    unsigned operations = 0; // so far
};

} // namespace tests

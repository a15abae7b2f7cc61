// A block file over bytes in memory that a test controls: it delivers few bytes at a time, fails,
// claims too much, and logs every operation.
#pragma once

#include "vs_pfs.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace tests {

// One call of the open operation.
struct OpenRequest {
    uint32_t code = 0;
    std::string name;                // the path, or the name beside an open file
    VwBlockFile *existing = nullptr; // VW_OPEN_BESIDE only
    uint32_t one = 0;
};

// Derives from the interface record, so that its first bytes are the table of operations.
struct MemoryBlockFile : VwBlockFile {
    explicit MemoryBlockFile(std::string bytes);
    MemoryBlockFile(const MemoryBlockFile &) = delete;
    MemoryBlockFile &operator=(const MemoryBlockFile &) = delete;

    // The log as one line, such as "tell, seek 0 12, read 2048"; empties it.
    std::string take_log();

    std::string bytes;
    uint64_t position = 0;

    uint32_t most_per_read = UINT32_MAX;
    bool fail_reads = false;
    bool fail_seeks = false;
    bool fail_tells = false;
    // Added to the count that a read reports, without storing a byte more.
    uint32_t claimed_excess = 0;
    int32_t close_result = 0;

    unsigned reads = 0;
    unsigned seeks = 0;
    unsigned tells = 0;
    unsigned closes = 0;
    bool keep_log = true;
    std::vector<std::string> log;
};

// The open operation has no file of its own to log to, so all files share one log.
struct OpenRecord {
    std::vector<OpenRequest> requests;
    // Decides what a request opens; null refuses it.
    std::function<VwBlockFile *(const OpenRequest &)> answer;
};
OpenRecord &open_record();

} // namespace tests

// A block file over bytes in memory that counts its operations.
#pragma once

#include "vs_pfs.h"

#include <cstdint>
#include <string_view>

namespace bench {

// Derives from the interface record, so that its first bytes are the table of operations.
// The bytes must outlive it.
struct MemoryFile : VwBlockFile {
    explicit MemoryFile(std::string_view bytes);
    MemoryFile(const MemoryFile &) = delete;
    MemoryFile &operator=(const MemoryFile &) = delete;

    std::string_view bytes;
    uint32_t position = 0;
    uint64_t reads = 0; // that delivered something
    uint64_t bytes_read = 0;
    uint64_t seeks = 0;
};

} // namespace bench

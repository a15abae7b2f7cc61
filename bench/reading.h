// Reads a whole document through the module's entry points, as a program would.
#pragma once

#include "bench/memory_file.h"
#include "pfsdoc/module.h"

#include <cstdint>

namespace bench {

// One open document, with no routine registered yet. The user words of its output calls are the
// address given here.
class Reading {
public:
    Reading(const pfsdoc::ModuleEntries &entries, MemoryFile &file, void *user);
    ~Reading();
    Reading(const Reading &) = delete;
    Reading &operator=(const Reading &) = delete;

    template <typename Routine> void on(VwOutputId id, Routine routine)
    {
        entries.set_so_rtn(id, reinterpret_cast<VwRoutine>(routine), instance);
    }

    // Exits if the document is of no known kind.
    void open();

    const pfsdoc::ModuleEntries &entries;
    VwInstance *instance;
    VwCharStream *stream = nullptr;
};

// The address from the two words.
template <typename T> T *user_of(uint32_t low, uint32_t high)
{
    const uint64_t address = (uint64_t{high} << 32) | low;
    return reinterpret_cast<T *>(static_cast<std::uintptr_t>(address));
}

} // namespace bench

#include "bench/reading.h"

#include <cstdio>
#include <cstdlib>

namespace bench {

namespace {

constexpr int32_t any_file_id = 1013; // only the display name depends on it

[[noreturn]] void give_up(const char *why)
{
    static_cast<void>(std::fprintf(stderr, "bench: %s\n", why));
    std::exit(EXIT_FAILURE);
}

} // namespace

Reading::Reading(const pfsdoc::ModuleEntries &module_entries, MemoryFile &file, void *user)
    : entries(module_entries), instance(entries.alloc_proc())
{
    if (instance != nullptr) {
        entries.local_up(&file, &stream, instance);
    }
    if (stream == nullptr) {
        give_up("no memory for an instance");
    }
    const auto address = uint64_t{reinterpret_cast<std::uintptr_t>(user)};
    entries.set_user(static_cast<uint32_t>(address), static_cast<uint32_t>(address >> 32),
                     instance);
}

Reading::~Reading()
{
    VwBlockFile *file = nullptr;
    entries.local_down(stream, &file, instance);
    entries.free_proc(instance);
}

void Reading::open()
{
    if (entries.stream_open(stream, any_file_id, nullptr, nullptr, instance) != 0) {
        give_up("the module does not recognise a document");
    }
}

} // namespace bench

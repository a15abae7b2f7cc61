// The program's own malloc, calloc and realloc replace the C library's for everything that it
// loads. They count each call and forward it to the GNU C library.
#include "bench/allocation_count.h"

#include <atomic>
#include <cstddef>

namespace {

std::atomic<uint64_t> allocations;

} // namespace

extern "C" {

void *__libc_malloc(std::size_t size);
void *__libc_calloc(std::size_t count, std::size_t size);
void *__libc_realloc(void *block, std::size_t size);

void *malloc(std::size_t size)
{
    allocations.fetch_add(1, std::memory_order_relaxed);
    return __libc_malloc(size);
}

void *calloc(std::size_t count, std::size_t size)
{
    allocations.fetch_add(1, std::memory_order_relaxed);
    return __libc_calloc(count, size);
}

void *realloc(void *block, std::size_t size)
{
    allocations.fetch_add(1, std::memory_order_relaxed);
    return __libc_realloc(block, size);
}

} // extern "C"

namespace bench {

uint64_t allocation_count()
{
    return allocations.load(std::memory_order_relaxed);
}

} // namespace bench

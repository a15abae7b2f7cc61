// Whole, untrusted files.
#include "fuzz/fuzz_host.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, std::size_t size)
{
    const std::string document(data, data + size);
    constexpr uint32_t odd_piece = 3;
    fuzz::read_both_ways(document, odd_piece, true);
    fuzz::read_both_ways(document, UINT32_MAX, false);
    return 0;
}

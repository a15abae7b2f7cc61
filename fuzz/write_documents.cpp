// The text of PFS: WRITE and IBM Writing Assistant: a frame, then the text.
#include "fuzz/fuzz_host.h"
#include "fuzz/fuzz_input.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, std::size_t size)
{
    fuzz::Input input(data, size);
    const fuzz::Frame frame = fuzz::take_frame(input);
    const std::string document = fuzz::write_family_document(frame, 1, 3, input.rest());
    fuzz::read_both_ways(document, frame.most_per_read(), frame.stop());
    return 0;
}

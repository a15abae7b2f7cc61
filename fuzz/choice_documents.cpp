// The text of First Choice up to generation 2: a frame, then the text.
#include "fuzz/fuzz_host.h"
#include "fuzz/fuzz_input.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, std::size_t size)
{
    fuzz::Input input(data, size);
    const fuzz::Frame frame = fuzz::take_frame(input);
    constexpr char generations[] = {'1', '2', '\0'};
    const char generation = generations[frame.kind % sizeof generations];
    const std::string document = fuzz::choice_family_document(frame, generation, input.rest());
    fuzz::read_both_ways(document, frame.most_per_read(), frame.stop());
    return 0;
}

// Any 328 bytes as the saved state, and any position: the text may be nonsense, but it ends.
// A frame, the position, the state, then the text.
#include "fuzz/fuzz_host.h"
#include "fuzz/fuzz_input.h"

#include <algorithm>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, std::size_t size)
{
    fuzz::Input input(data, size);
    const fuzz::Frame frame = fuzz::take_frame(input);
    const uint32_t position = input.word();
    const std::string state = input.take(VW_SAVED_STATE_SIZE);
    fuzz::Host host(fuzz::document_of_any_kind(frame, input.rest()));
    host.file.most_per_read = frame.most_per_read();
    host.answer = [&](const fuzz::Call &) { return frame.stop() ? 1 : 0; };
    fuzz::require(host.open(), "a document that is not known");
    fuzz::Checkpoint checkpoint = host.checkpoint();
    std::copy(state.begin(), state.end(), checkpoint.state.begin());
    checkpoint.position = position;
    checkpoint.guard.expect_foreign_state();
    host.go_to(checkpoint);
    host.read_all();
    return 0;
}

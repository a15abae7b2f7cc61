// A block file that fails and lies as the input directs: a frame, the length of the list of
// faults, one byte for each of the first operations, then the text.
#include "fuzz/fuzz_host.h"
#include "fuzz/fuzz_input.h"
#include "tests/support/faulty_block_file.h"

namespace {

using tests::Fault;

constexpr uint32_t claims[] = {1, 2047, 2048, 2049, 65535, UINT32_MAX};
constexpr uint32_t positions[] = {0, 1, 511, 2048, 65535, UINT32_MAX};
// Of the eight kinds that an input byte selects, the last two leave the operation alone.
constexpr Fault::Kind kinds[] = {Fault::Kind::none,     Fault::Kind::fails,
                                 Fault::Kind::no_bytes, Fault::Kind::fails_afterward,
                                 Fault::Kind::claims,   Fault::Kind::misreports,
                                 Fault::Kind::none,     Fault::Kind::none};

template <std::size_t Size> uint32_t pick(const uint32_t (&values)[Size], unsigned index)
{
    return values[index % Size];
}

Fault fault_of(uint8_t byte)
{
    Fault fault = {kinds[byte & 7], 0};
    const unsigned index = byte >> 3;
    if (fault.kind == Fault::Kind::claims) {
        fault.value = pick(claims, index);
    } else if (fault.kind == Fault::Kind::misreports) {
        fault.value = pick(positions, index);
    }
    return fault;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, std::size_t size)
{
    fuzz::Input input(data, size);
    const fuzz::Frame frame = fuzz::take_frame(input);
    const std::string script = input.take(input.byte());
    // Each fault may make the stream read a buffer's worth again, or from nothing.
    fuzz::Host host(fuzz::document_of_any_kind(frame, input.rest()),
                    script.size() * VW_STREAM_BUFFER_SIZE);
    host.file.most_per_read = frame.most_per_read();
    host.answer = [&](const fuzz::Call &) { return frame.stop() ? 1 : 0; };
    const tests::FaultyBlockFile faulty(host.stream, [&](unsigned number, tests::BlockOperation) {
        return number <= script.size() ? fault_of(static_cast<uint8_t>(script[number - 1]))
                                       : Fault{};
    });
    if (host.open()) {
        host.read_all();
    }
    return 0;
}

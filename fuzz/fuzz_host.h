// A host for the fuzz targets: a document in memory, an instance and its stream, and the
// guard over every output call. Without gtest, so that it builds for any fuzzing engine.
#pragma once

#include "fuzz/call_guard.h"
#include "tests/support/memory_block_file.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace fuzz {

// A position where reading can be resumed, with what is open there.
struct Checkpoint {
    std::array<uint8_t, VW_SAVED_STATE_SIZE> state;
    uint32_t position;
    CallGuard guard;
};

class Host {
public:
    // Host operations that lie may deliver `claimed_bytes` more than the document holds.
    explicit Host(std::string document, std::size_t claimed_bytes = 0);
    ~Host();
    Host(const Host &) = delete;
    Host &operator=(const Host &) = delete;

    // VwStreamOpen and VwStreamSection. False: not a document.
    bool open();
    // One read call, whose calls are added to `recorded`.
    void read();
    // Until the end of the document is reported, which must come.
    void read_all();

    Checkpoint checkpoint() const;
    void go_to(const Checkpoint &checkpoint);
    void unregister(int32_t id);
    void register_routines();

    // What routine 13 returns at a paragraph end, and what every other call returns.
    std::function<int32_t(const Call &)> answer;

    tests::MemoryBlockFile file;
    VwInstance *instance = nullptr;
    VwCharStream *stream = nullptr;
    CallGuard guard;
    bool document_ended = false;
    std::vector<Call> recorded;

    // For the output routines.
    int32_t record(const Call &call);

private:
    std::size_t most_reads;
};

// Reads the document in large pieces, with a lookahead that remembers nothing; and again in small
// pieces, each read call in the other of two instances, resumed from the saved position: the
// calls must be the same. `stop` is what routine 13 returns at paragraph ends.
void read_both_ways(const std::string &document, uint32_t most_per_read, bool stop);

} // namespace fuzz

// A host for tests: owns a document, an instance and its stream, records every output call
// and has each checked. See notation.h for how recorded calls are written down.
#pragma once

#include "tests/support/call_checker.h"
#include "tests/support/memory_block_file.h"
#include "tests/support/notation.h"

#include <cstdint>
#include <string>
#include <vector>

namespace tests {

// A position in a document where reading can be resumed, by the same host or another.
struct Place {
    std::vector<uint8_t> state;
    uint32_t position = 0;
    CallChecker checker; // which knows what was open there
};

class RecordingHost {
public:
    explicit RecordingHost(std::string document);
    ~RecordingHost();
    RecordingHost(const RecordingHost &) = delete;
    RecordingHost &operator=(const RecordingHost &) = delete;

    // Calls VwStreamOpen and, if it succeeds, nothing more.
    int32_t open(int32_t file_id = 1013);
    int32_t section();

    // One read call; returns what it reported. read_all continues until the end of the document has
    // been reported, and fails the test if it is not.
    Calls read();
    Calls read_all();
    // All calls since the last take.
    Calls take();

    Place place() const;
    void go_to(const Place &place);

    // What routine 13 returns at paragraph ends, which are counted from 1 over the host's life: 1
    // at all, at none, or at one. At other breaks it always returns 1, as does every other routine,
    // since that must have no effect.
    void stop_at_all();
    void stop_at_none();
    void stop_at(unsigned number);

    void unregister(int32_t id);

    VwInstance *instance = nullptr;
    VwCharStream *stream = nullptr;
    MemoryBlockFile file;
    CallChecker checker;
    bool document_ended = false; // break 2 was reported
    unsigned reads = 0;

    // For the output routines.
    int32_t record(const Call &call);

private:
    void register_routines();

    enum class Stop { none, all, one } stop = Stop::none;
    unsigned stop_number = 0;
    unsigned paragraph_ends = 0;
    Calls recorded;
};

// What a read reported after its announcements, the last of which is the line spacing.
Calls after_announcements(const Calls &calls);

} // namespace tests

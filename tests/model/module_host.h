// A host that only records what the module reports, with the position in the document and the
// saved state at each call. RecordingHost checks more and is slower; this one is for millions of
// documents.
#pragma once

#include "tests/model/answers.h"
#include "tests/model/model.h"
#include "tests/model/saved_state.h"
#include "tests/support/memory_block_file.h"

#include <cstdint>
#include <string>

namespace tests::model {

class ModuleHost {
public:
    // Each read of the file delivers at most most_per_read bytes.
    ModuleHost(const std::string &document, uint32_t most_per_read, const Answers &host_answers);
    ~ModuleHost();
    ModuleHost(const ModuleHost &) = delete;
    ModuleHost &operator=(const ModuleHost &) = delete;

    bool open();
    void section();
    void read();

    uint32_t position() const;
    // At most the end: past it all positions are equal.
    uint32_t clamped_position() const;
    SavedBytes saved() const;
    void go_to(const SavedBytes &state, uint32_t to);

    // For the output routines.
    int32_t record(const Call &call);
    void forget_calls();

    Answers answers;
    Events events; // since they were last cleared
    States states; // at these events

private:
    void register_routines();
    void note_state();

    SavedBytes last_noted{};

    MemoryBlockFile file;
    VwInstance *instance = nullptr;
    VwCharStream *stream = nullptr;
};

} // namespace tests::model

// The members of an archive, in its own order, as another process reads them.
//
// Links are an error, since what they lead to has a name of its own or is none of ours, and so
// are encrypted members and devices; folders have no input. When the reader dies or the archive
// breaks off, one error with the archive's name stands for the rest. A member is not known to
// be whole before its end, so each is kept until then (member_store.h). Tests:
// tests/batch/archive_inputs_test.cpp.
#pragma once

#include "batch/inputs/archive_messages.h"
#include "batch/inputs/names.h"

#include "batch/inputs/inputs.h"

#include <sys/types.h>

namespace pfsdoc::batch {

// An archive of very many empty members would have no other end, and each name costs memory.
constexpr uint64_t most_members = 1'000'000;

class ArchiveMembers {
public:
    // All but the archive must outlive this.
    ArchiveMembers(const OpenFile &archive, std::string name, const InputOptions &options,
                   NameSet &names, ForkServer &server);
    // Ends the reader.
    ~ArchiveMembers();
    ArchiveMembers(const ArchiveMembers &) = delete;
    ArchiveMembers &operator=(const ArchiveMembers &) = delete;

    std::optional<BatchInput> next();

private:
    void start(const OpenFile &archive);
    void stop();
    std::optional<BatchInput> end(ArchiveOutcome outcome);
    std::optional<BatchInput> member(const std::string &path);

    std::string name_;
    const InputOptions &options_;
    NameSet &names_;
    ForkServer &server_;
    OpenFile messages_;
    pid_t reader_ = -1; // or none
    uint64_t members_ = 0;
    uint64_t bytes_ = 0;         // of all members
    std::optional<Error> error_; // why no reader was started
};

} // namespace pfsdoc::batch

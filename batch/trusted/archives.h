// The members of an archive, in its own order, as another process reads them.
//
// Links are an error, since what they lead to has a name of its own or is none of ours, and so
// are encrypted members and devices; folders have no input. When the reader dies or the archive
// breaks off, one error with the archive's name stands for the rest. A member is not known to
// be whole before its end, so each is kept until then. Tests:
// tests/batch/trusted/archive_inputs_test.cpp.
#pragma once

#include "batch/trusted/child_process.h"
#include "batch/trusted/inputs.h"
#include "batch/trusted/names.h"
#include "batch/wire/archive_messages.h"

#include <chrono>

namespace pfsdoc::batch {

// An archive of very many empty members would have no other end, and each name costs memory.
constexpr uint64_t most_members = 1'000'000;

class ArchiveMembers {
public:
    // All but the archive must outlive this.
    ArchiveMembers(const base::Descriptor &archive, std::string name, std::string source,
                   const InputOptions &options, NameSet &names);
    // Ends the reader.
    ~ArchiveMembers();
    ArchiveMembers(const ArchiveMembers &) = delete;
    ArchiveMembers &operator=(const ArchiveMembers &) = delete;

    std::optional<BatchInput> next();

private:
    using Clock = std::chrono::steady_clock;

    void start(const base::Descriptor &archive);
    void stop();
    bool wait(int descriptor);
    std::optional<Message> receive();
    ArchiveOutcome fault_of(const std::optional<Message> &message) const;
    std::optional<BatchInput> end(ArchiveOutcome outcome);
    std::optional<BatchInput> member(const std::string &path);

    std::string name_;
    std::string source_;
    const InputOptions &options_;
    NameSet &names_;
    base::Descriptor messages_;
    ChildProcess reader_;
    uint64_t members_ = 0;       // that have begun
    uint64_t whole_ = 0;         // of them, those that were read to their end
    uint64_t bytes_ = 0;         // of all members
    Clock::duration patience_{}; // for how long the reader may still be waited for
    std::optional<Error> error_; // why no reader was started
};

} // namespace pfsdoc::batch

// What the process that reads an archive tells the one that started it, through a pipe.
//
//     archive = member* archive_end
//     member  = member (its name) bytes* member_end
//
// The reader may be in a stranger's hands: whoever receives this believes nothing but lengths
// that it can take. So the messages bring no words, only which of our own sentences is true.
// Tests: tests/batch/wire/archive_messages_test.cpp.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace pfsdoc::batch {

enum class MessageKind : uint32_t { member, bytes, member_end, archive_end };

enum class ArchiveOutcome : uint32_t {
    whole,
    link,
    special, // a device or a pipe
    encrypted,
    too_large,
    damaged,
    repeated, // lists bytes of another member
    not_an_archive,
    too_many_members,
    too_many_bytes,
    no_sandbox,
    memory,      // --max-memory
    no_progress, // --max-time
    reader_ended // by a crash, or by saying what it must not say
};

struct MessageHead {
    MessageKind kind;
    uint32_t value; // the length of what follows, or the outcome at an end
};

constexpr std::size_t longest_message = 65536;
// Of a member. No file system takes one as long, and a line of the manifest has it escaped.
constexpr std::size_t longest_member_name = 16384;

struct Message {
    MessageKind kind;
    ArchiveOutcome outcome = ArchiveOutcome::whole; // of an end
    std::string bytes;                              // of the others
};

// Each part of it is waited for by `wait`, which says false when no more is wanted. Nothing then,
// and where the other side is gone or says something else.
std::optional<Message> receive_message(int descriptor, const std::function<bool(int)> &wait);

// No more than the longest message's bytes. False where the other side is gone.
bool send_bytes(int descriptor, MessageKind kind, std::string_view bytes);
bool send_end(int descriptor, MessageKind kind, ArchiveOutcome outcome);

} // namespace pfsdoc::batch

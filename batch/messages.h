// What goes between the parent and a worker: one message for a file, with its descriptors, and
// one back. Each is a record of a fixed size over a socket that keeps messages apart. Test:
// tests/batch/run/canary_test.cpp.
#pragma once

#include "outcome.h"
#include "sandbox/sandbox.h"

#include <cstdint>
#include <optional>
#include <span>
#include <type_traits>
#include <vector>

namespace pfsdoc {

// The first message of a worker: whether the sandbox holds it.
struct Hello {
    uint32_t failed = 0;
    BoundedText<256> words; // of the sandbox, or of what went wrong
    BoundedText<256> remedy;
};
static_assert(std::is_trivially_copyable_v<Hello>);

// One file. Its descriptors: the input, the output, and where has_earlier_output is set the
// output of an earlier run.
struct Job {
    uint64_t size = 0;
    // What an earlier run found: if it is still so, the answer is FileStatus::unchanged.
    uint32_t has_earlier = 0;
    uint32_t has_earlier_output = 0;
    Digest earlier_input{};
    Digest earlier_output{};
    BoundedText<256> title;
};
static_assert(std::is_trivially_copyable_v<Job>);

inline constexpr std::size_t max_descriptors = 3;

// Whether it went out whole.
bool send_message(int socket, std::span<const std::byte> bytes,
                  std::span<const int> descriptors = {});
// Whether a message of just this size came. Appends the descriptors that came with it.
bool receive_message(int socket, std::span<std::byte> bytes, std::vector<int> *descriptors);

template <typename Record>
bool send_record(int socket, const Record &record, std::span<const int> descriptors = {})
{
    return send_message(socket, std::as_bytes(std::span(&record, 1)), descriptors);
}

template <typename Record>
std::optional<Record> receive_record(int socket, std::vector<int> *descriptors = nullptr)
{
    Record record;
    const bool received =
        receive_message(socket, std::as_writable_bytes(std::span(&record, 1)), descriptors);
    return received ? std::optional<Record>(record) : std::nullopt;
}

} // namespace pfsdoc

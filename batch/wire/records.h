// Records of a fixed size between processes, with descriptors, over a socket that keeps messages
// apart (SOCK_SEQPACKET). Nothing in them is a length or a position to be believed. Test:
// tests/batch/wire/records_test.cpp.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <type_traits>
#include <vector>

namespace pfsdoc::batch {

// That one record can bring.
inline constexpr std::size_t max_descriptors = 3;

// Whether it went out whole.
bool send_message(int socket, std::span<const std::byte> bytes,
                  std::span<const int> descriptors = {});
// Whether a message of just this size came. The descriptors that came with it, which are the
// caller's from then on, replace those that are there.
bool receive_message(int socket, std::span<std::byte> bytes, std::vector<int> *descriptors);

template <typename Record>
bool send_record(int socket, const Record &record, std::span<const int> descriptors = {})
{
    static_assert(std::is_trivially_copyable_v<Record>);
    return send_message(socket, std::as_bytes(std::span(&record, 1)), descriptors);
}

// Nothing where the other end is closed, too.
template <typename Record>
std::optional<Record> receive_record(int socket, std::vector<int> *descriptors = nullptr)
{
    static_assert(std::is_trivially_copyable_v<Record>);
    Record record;
    const bool received =
        receive_message(socket, std::as_writable_bytes(std::span(&record, 1)), descriptors);
    return received ? std::optional<Record>(record) : std::nullopt;
}

} // namespace pfsdoc::batch

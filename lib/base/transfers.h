// Reading and writing descriptors where a signal may interrupt: every call goes on until it has
// done what its name says or has failed, and then errno says why.
// Test: tests/lib/base/transfers_test.cpp.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <sys/types.h>

namespace pfsdoc::base {

// The number of bytes read: 0 at the end, below 0 where it failed. The first one reads from
// where the descriptor stands, the second at an offset.
ssize_t read_some(int descriptor, void *destination, std::size_t size);
ssize_t read_some_at(int descriptor, void *destination, std::size_t size, uint64_t offset);

// Reads until the destination is full or the file ends: the number of bytes, or nothing where
// it failed.
std::optional<std::size_t> read_full(int descriptor, void *destination, std::size_t size);
std::optional<std::size_t> read_full_at(int descriptor, void *destination, std::size_t size,
                                        uint64_t offset);

bool write_all(int descriptor, std::string_view bytes);
bool write_all_at(int descriptor, std::string_view bytes, uint64_t offset);

} // namespace pfsdoc::base

// Bytes that are written first and read later, and need not fit in memory: the first half a
// megabyte is held, which is more than a letter takes; beyond that all of them are in a file
// without a name. Test: tests/lib/base/spill_store_test.cpp.
#pragma once

#include "lib/base/descriptor.h"
#include "pfsdoc/error.h"
#include "pfsdoc/output.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace pfsdoc::base {

class SpillStore final : public Output {
public:
    static constexpr std::size_t most_in_memory = std::size_t{512} << 10;

    // What a failure is to its user, by the system's error number.
    using ErrorOf = Error (*)(int error_number);

    // No file is opened before one is needed.
    SpillStore();
    explicit SpillStore(ErrorOf error_of) : error_of_(error_of) {}
    // For a process that can open none: a descriptor that stays the caller's. Whatever the
    // file holds does not matter; it is left empty.
    explicit SpillStore(int file);
    ~SpillStore() override;
    SpillStore(const SpillStore &) = delete;
    SpillStore &operator=(const SpillStore &) = delete;

    // These throw ReadingStopped where the file cannot be made, written or read.
    void write(std::string_view bytes) override;
    void copy_to(Output &output) const;
    // All of it as a file without a name that stands at its start: one in memory where it
    // is small. The store is done with then. Not for a store that was given its file.
    Descriptor take();

    uint64_t size() const
    {
        return size_;
    }
    bool is_in_memory() const
    {
        return !is_in_file_;
    }

private:
    void move_to_file();
    void write_to_file(std::string_view bytes);
    void copy_file_to(Output &output) const;
    [[noreturn]] void fail(int error_number) const;

    static constexpr int none = -1;

    ErrorOf error_of_;
    std::string memory_;
    Descriptor own_file_;
    int file_ = none; // that one, or the one that was given
    bool is_in_file_ = false;
    uint64_t size_ = 0;
};

} // namespace pfsdoc::base

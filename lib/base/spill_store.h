// Bytes that are written first and read later, and need not fit in memory: the first half a
// megabyte is held, which is more than a letter takes; beyond that all of them are in a file
// without a name. Test: tests/lib/base/spill_store_test.cpp.
#pragma once

#include "pfsdoc/output.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace pfsdoc::base {

class SpillStore final : public Output {
public:
    static constexpr std::size_t most_in_memory = std::size_t{512} << 10;

    // No file is opened before one is needed.
    SpillStore() = default;
    // For a process that can open none: a descriptor that stays the caller's. Whatever the
    // file holds does not matter; it is left empty.
    explicit SpillStore(int file) : file_(file), file_is_given_(true) {}
    ~SpillStore() override;
    SpillStore(const SpillStore &) = delete;
    SpillStore &operator=(const SpillStore &) = delete;

    // These throw ReadingStopped where the file cannot be made, written or read.
    void write(std::string_view bytes) override;
    void copy_to(Output &output) const;

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

    static constexpr int none = -1;

    std::string memory_;
    int file_ = none;
    bool file_is_given_ = false;
    bool is_in_file_ = false;
    uint64_t size_ = 0;
};

} // namespace pfsdoc::base

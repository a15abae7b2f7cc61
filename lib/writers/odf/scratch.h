// Bytes that are written first and wanted later, and need not fit in memory: the first half
// a megabyte is held, which is more than a letter takes; beyond that all of them are in a file
// without a name. Test: tests/lib/base/scratch_test.cpp.
#pragma once

#include "pfsdoc/output.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace pfsdoc::writers {

// The file cannot be made, written or read.
struct ScratchFailure {
    int error_number;
};

class Scratch {
public:
    static constexpr std::size_t most_in_memory = std::size_t{512} << 10;

    // No file is opened before one is needed.
    Scratch() = default;
    // For a process that can open none: a descriptor that stays the caller's. Whatever the
    // file holds is of no matter; it is left empty.
    explicit Scratch(int file) : file_(file), file_is_given_(true) {}
    ~Scratch();
    Scratch(const Scratch &) = delete;
    Scratch &operator=(const Scratch &) = delete;

    // These throw ScratchFailure. What was not written before the offset is zeros.
    void write_at(uint64_t offset, std::string_view bytes);
    void append(std::string_view bytes)
    {
        write_at(size_, bytes);
    }
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
    void write_to_file(uint64_t offset, std::string_view bytes) const;

    static constexpr int none = -1;

    std::string memory_;
    int file_ = none;
    bool file_is_given_ = false;
    bool is_in_file_ = false;
    uint64_t size_ = 0;
};

} // namespace pfsdoc::writers

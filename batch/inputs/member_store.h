// Keeps the bytes of an archive's member while they come: in memory, and from some size on in a
// file that has no name and goes with its descriptor. Test: tests/batch/archive_inputs_test.cpp.
#pragma once

#include "batch/inputs/inputs.h"

#include <string_view>

namespace pfsdoc::batch {

// Documents of these kinds are far smaller: they never touch the disk.
constexpr uint64_t largest_in_memory = uint64_t{16} << 20;

class MemberStore {
public:
    MemberStore();
    void write(std::string_view bytes);
    uint64_t size() const
    {
        return size_;
    }
    // All of it, positioned at its start; or why it could not be kept.
    Result<OpenFile> take();

private:
    void move_to_disk();
    void append(std::string_view bytes);

    OpenFile file_;
    uint64_t size_ = 0;
    bool on_disk_ = false;
    int error_number_ = 0; // the first failure; nothing is written after it
};

} // namespace pfsdoc::batch

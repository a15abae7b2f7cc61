// Single bytes of a source at positions that mostly go forwards. A window of the file is kept;
// a position outside of it moves it there. Test: tests/lib/reading/byte_window_test.cpp.
#pragma once

#include "pfsdoc/byte_source.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace pfsdoc::reading {

class ByteWindow {
public:
    static constexpr int32_t no_byte = -1;

    explicit ByteWindow(ByteSource &source) : source_(source) {}

    // 0 to 255, or no_byte behind the end of the file or where it cannot be read.
    int32_t at(uint32_t position)
    {
        if (position >= source_.size()) {
            return no_byte;
        }
        if (position < begin_ || position - begin_ >= count_) {
            move_to(position);
        }
        return position - begin_ < count_ ? bytes_[position - begin_] : no_byte;
    }
    uint32_t size() const
    {
        return source_.size();
    }

private:
    static constexpr uint32_t window_size = 4096; // a header lies in it as a whole

    void move_to(uint32_t position);

    ByteSource &source_;
    uint32_t begin_ = 0;
    uint32_t count_ = 0;
    std::array<uint8_t, window_size> bytes_;
};

} // namespace pfsdoc::reading

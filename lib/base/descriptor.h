// Owns a file descriptor, which is closed with its object.
// Test: tests/lib/base/descriptor_test.cpp.
#pragma once

#include <utility>

namespace pfsdoc::base {

class Descriptor {
public:
    Descriptor() = default;
    // A negative number is no descriptor: what a failed open answers may be passed as it is.
    explicit Descriptor(int number) : number_(number) {}
    ~Descriptor();
    Descriptor(Descriptor &&other) noexcept : number_(other.release()) {}
    // Keeps errno, so that a failed open may be assigned and then asked for its reason.
    Descriptor &operator=(Descriptor &&other) noexcept;

    bool is_open() const
    {
        return number_ >= 0;
    }
    int get() const
    {
        return number_;
    }
    // The caller closes it from now on.
    int release()
    {
        return std::exchange(number_, -1);
    }

private:
    int number_ = -1;
};

} // namespace pfsdoc::base

// A descriptor that is closed with its object. Tests: those of all that open files.
#pragma once

namespace pfsdoc::batch {

class OpenFile {
public:
    explicit OpenFile(int descriptor = -1) : descriptor_(descriptor) {}
    ~OpenFile();
    OpenFile(OpenFile &&other) noexcept : descriptor_(other.release()) {}
    OpenFile &operator=(OpenFile &&other) noexcept;

    int get() const
    {
        return descriptor_;
    }
    int release();

private:
    int descriptor_;
};

} // namespace pfsdoc::batch

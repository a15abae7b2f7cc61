// The document as the model reads it: all its bytes in memory, and a position.
#pragma once

#include <cstdint>
#include <string>

namespace tests::model {

// Thrown at the end byte, or at the end of the data where a byte of the text is needed.
struct EndOfDocument {};

class Text {
public:
    explicit Text(const std::string &document) : bytes(&document) {}

    // The next byte, or -1 past the end; the position advances in either case.
    int32_t get()
    {
        const uint32_t at = position++;
        return at < bytes->size() ? static_cast<uint8_t>((*bytes)[at]) : -1;
    }

    // The next byte, where there must be one.
    uint8_t next()
    {
        const int32_t byte = get();
        if (byte < 0) {
            throw EndOfDocument{};
        }
        return static_cast<uint8_t>(byte);
    }

    void put_back()
    {
        --position;
    }

    void skip(int32_t count)
    {
        for (int32_t i = 0; i < count; ++i) {
            get();
        }
    }

    uint32_t tell() const
    {
        return position;
    }

    void seek(uint32_t to)
    {
        position = to;
    }

    // At most the end: past it all positions are equal.
    uint32_t clamped_position() const
    {
        const auto size = static_cast<uint32_t>(bytes->size());
        return position < size ? position : size;
    }

private:
    const std::string *bytes;
    uint32_t position = 0;
};

} // namespace tests::model

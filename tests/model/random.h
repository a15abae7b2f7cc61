// Pseudorandom numbers that depend only on a seed, the same on every machine.
#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string_view>

namespace tests::model {

class Random {
public:
    explicit Random(uint64_t seed) : state(seed) {}

    // splitmix64: every seed is good, including consecutive ones.
    uint64_t next()
    {
        state += 0x9E3779B97F4A7C15U;
        uint64_t mixed = state;
        mixed = (mixed ^ (mixed >> 30)) * 0xBF58476D1CE4E5B9U;
        mixed = (mixed ^ (mixed >> 27)) * 0x94D049BB133111EBU;
        return mixed ^ (mixed >> 31);
    }

    // 0 to limit - 1; 0 when the limit is 0.
    uint32_t below(std::size_t limit)
    {
        return static_cast<uint32_t>(((next() >> 32) * limit) >> 32);
    }

    uint32_t between(uint32_t first, uint32_t last)
    {
        return first + below(last - first + std::size_t{1});
    }

    bool percent(uint32_t share)
    {
        return below(100) < share;
    }

    char byte()
    {
        return static_cast<char>(below(256));
    }

    char one_of(std::string_view bytes)
    {
        return bytes[below(bytes.size())];
    }

    template <typename T> T one_of(std::initializer_list<T> values)
    {
        return values.begin()[below(values.size())];
    }

private:
    uint64_t state;
};

} // namespace tests::model

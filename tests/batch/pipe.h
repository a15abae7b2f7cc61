// A pipe, whose ends are closed with it or before it.
#pragma once

#include "lib/base/descriptor.h"

#include <gtest/gtest.h>

#include <array>
#include <fcntl.h>
#include <string>
#include <unistd.h>

namespace tests {

struct Pipe {
    Pipe()
    {
        std::array<int, 2> ends{};
        EXPECT_EQ(::pipe2(ends.data(), O_CLOEXEC), 0);
        reading = pfsdoc::base::Descriptor(ends[0]);
        writing = pfsdoc::base::Descriptor(ends[1]);
    }
    std::string read_some() const
    {
        std::array<char, 100> buffer{};
        const ssize_t count = ::read(reading.get(), buffer.data(), buffer.size());
        return count < 0 ? "nothing" : std::string(buffer.data(), static_cast<std::size_t>(count));
    }
    // Waits until nobody can write any more.
    std::string read_all()
    {
        writing = pfsdoc::base::Descriptor();
        std::string all;
        for (std::string some = read_some(); !some.empty(); some = read_some()) {
            all += some;
        }
        return all;
    }
    pfsdoc::base::Descriptor reading;
    pfsdoc::base::Descriptor writing;
};

} // namespace tests

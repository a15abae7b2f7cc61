// A descriptor is closed once, by whoever owns it last.
#include "lib/base/descriptor.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <fcntl.h>
#include <optional>
#include <unistd.h>
#include <utility>

namespace {

using pfsdoc::base::Descriptor;

int open_null()
{
    const int number = ::open("/dev/null", O_RDWR | O_CLOEXEC);
    EXPECT_GE(number, 0);
    return number;
}

bool is_open(int number)
{
    return ::fcntl(number, F_GETFD) >= 0;
}

TEST(Descriptor, IsClosedWithItsObject)
{
    const int number = open_null();
    {
        const Descriptor descriptor(number);
        EXPECT_TRUE(descriptor.is_open());
        EXPECT_EQ(descriptor.get(), number);
        EXPECT_TRUE(is_open(number));
    }
    EXPECT_FALSE(is_open(number));
}

TEST(Descriptor, IsNotOpenByDefault)
{
    EXPECT_FALSE(Descriptor().is_open());
    EXPECT_FALSE(Descriptor(-1).is_open());
    EXPECT_TRUE(Descriptor(::dup(STDERR_FILENO)).is_open());
}

TEST(Descriptor, IsHandedOn)
{
    const int number = open_null();
    {
        Descriptor first(number);
        Descriptor second(std::move(first));
        EXPECT_FALSE(first.is_open()); // NOLINT: its state after the move is what is asked for
        EXPECT_EQ(second.release(), number);
        EXPECT_FALSE(second.is_open());
    }
    ASSERT_TRUE(is_open(number));
    ::close(number);
}

TEST(Descriptor, ClosesWhatItHeldWhenAnotherIsAssigned)
{
    const int first = open_null();
    const int second = open_null();
    Descriptor descriptor(first);
    descriptor = Descriptor(second);
    EXPECT_FALSE(is_open(first));
    EXPECT_TRUE(is_open(second));
    EXPECT_EQ(descriptor.get(), second);
    Descriptor &itself = descriptor;
    descriptor = std::move(itself);
    EXPECT_TRUE(is_open(second));
}

TEST(Descriptor, LeavesTheErrorNumberOfAFailedOpen)
{
    std::optional<Descriptor> closed_already(open_null());
    ::close(closed_already->get());
    errno = ENOENT;
    closed_already.reset(); // its close fails
    EXPECT_EQ(errno, ENOENT);
}

} // namespace

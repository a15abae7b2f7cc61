// Records between processes: whole or not at all, with the descriptors that belong to them.
#include "batch/wire/records.h"
#include "lib/base/descriptor.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>
#include <vector>

namespace {

using pfsdoc::base::Descriptor;
using pfsdoc::batch::max_descriptors;
using pfsdoc::batch::receive_record;
using pfsdoc::batch::send_record;

class Records : public testing::Test {
protected:
    void SetUp() override
    {
        std::array<int, 2> ends{};
        ASSERT_EQ(::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends.data()), 0);
        one = Descriptor(ends[0]);
        other = Descriptor(ends[1]);
    }

    Descriptor one;
    Descriptor other;
};

TEST_F(Records, ComeOneByOne)
{
    EXPECT_TRUE(send_record(one.get(), uint64_t{1}));
    EXPECT_TRUE(send_record(one.get(), uint64_t{2}));
    EXPECT_EQ(receive_record<uint64_t>(other.get()), 1U);
    EXPECT_EQ(receive_record<uint64_t>(other.get()), 2U);
}

TEST_F(Records, OfAnotherSizeAreNone)
{
    EXPECT_TRUE(send_record(one.get(), uint32_t{1}));
    EXPECT_FALSE(receive_record<uint64_t>(other.get()));
    EXPECT_TRUE(send_record(one.get(), uint64_t{1}));
    EXPECT_FALSE(receive_record<uint32_t>(other.get()));
}

TEST_F(Records, EndWithTheOtherSide)
{
    one = Descriptor();
    EXPECT_FALSE(receive_record<uint64_t>(other.get()));
    EXPECT_FALSE(send_record(other.get(), uint64_t{1}));
}

TEST_F(Records, AreReceivedFromAnEndThatWasClosedWithoutReading)
{
    EXPECT_TRUE(send_record(one.get(), uint64_t{1}));
    EXPECT_TRUE(send_record(other.get(), uint64_t{2}));
    one = Descriptor();
    EXPECT_EQ(receive_record<uint64_t>(other.get()), 1U);
    EXPECT_FALSE(receive_record<uint64_t>(other.get()));
}

TEST_F(Records, BringDescriptors)
{
    for (std::size_t count = 0; count <= max_descriptors; ++count) {
        const std::vector<int> sent(count, one.get());
        EXPECT_TRUE(send_record(one.get(), count, sent));
        std::vector<int> received;
        EXPECT_EQ(receive_record<std::size_t>(other.get(), &received), count);
        EXPECT_EQ(received.size(), count);
        for (const int descriptor : received) {
            EXPECT_NE(::fcntl(descriptor, F_GETFD) & FD_CLOEXEC, 0);
            ::close(descriptor);
        }
    }
}

// Nothing is left open where nobody wants them.
TEST_F(Records, BringNoneThatAreNotWanted)
{
    const std::array<int, 1> sent = {one.get()};
    EXPECT_TRUE(send_record(one.get(), 1, sent));
    one = Descriptor();
    EXPECT_EQ(receive_record<int>(other.get()), 1);
    EXPECT_FALSE(receive_record<int>(other.get())) << "the other end is still open";
}

} // namespace

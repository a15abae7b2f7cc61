// What the reader of an archive may say, and that nothing else is believed.
#include "batch/wire/archive_messages.h"

#include "lib/base/descriptor.h"

#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <unistd.h>

namespace {

using pfsdoc::batch::ArchiveOutcome;
using pfsdoc::batch::MessageHead;
using pfsdoc::batch::MessageKind;

class Messages : public ::testing::Test {
protected:
    void SetUp() override
    {
        std::array<int, 2> ends{};
        ASSERT_EQ(::pipe(ends.data()), 0);
        input = pfsdoc::base::Descriptor(ends[0]);
        output = pfsdoc::base::Descriptor(ends[1]);
    }

    // As a reader that has been taken over would say it, and nothing behind it.
    void say(uint32_t kind, uint32_t value, const std::string &bytes = "")
    {
        std::string said(sizeof(MessageHead), '\0');
        const std::array<uint32_t, 2> head = {kind, value};
        static_assert(sizeof head == sizeof(MessageHead));
        std::memcpy(said.data(), head.data(), sizeof head);
        said += bytes;
        ASSERT_EQ(::write(output.get(), said.data(), said.size()),
                  static_cast<ssize_t>(said.size()));
        output = pfsdoc::base::Descriptor();
    }

    std::optional<pfsdoc::batch::Message> received() const
    {
        return pfsdoc::batch::receive_message(input.get(), [](int) { return true; });
    }

    pfsdoc::base::Descriptor input;
    pfsdoc::base::Descriptor output;
};

TEST_F(Messages, come_as_they_were_sent)
{
    EXPECT_TRUE(send_bytes(output.get(), MessageKind::member, "a.doc"));
    EXPECT_TRUE(send_bytes(output.get(), MessageKind::bytes, ""));
    EXPECT_TRUE(send_end(output.get(), MessageKind::member_end, ArchiveOutcome::encrypted));
    const auto member = received();
    ASSERT_TRUE(member && member->kind == MessageKind::member);
    EXPECT_EQ(member->bytes, "a.doc");
    const auto bytes = received();
    ASSERT_TRUE(bytes && bytes->kind == MessageKind::bytes);
    EXPECT_EQ(bytes->bytes, "");
    const auto end = received();
    ASSERT_TRUE(end && end->kind == MessageKind::member_end);
    EXPECT_EQ(end->outcome, ArchiveOutcome::encrypted);
}

TEST_F(Messages, end_with_the_other_side)
{
    output = pfsdoc::base::Descriptor();
    EXPECT_FALSE(received().has_value());
}

TEST_F(Messages, are_not_waited_for_when_no_more_is_wanted)
{
    EXPECT_TRUE(send_bytes(output.get(), MessageKind::member, "a.doc"));
    EXPECT_FALSE(
        pfsdoc::batch::receive_message(input.get(), [](int) { return false; }).has_value());
}

TEST_F(Messages, are_described_by_two_numbers)
{
    say(static_cast<uint32_t>(MessageKind::bytes), 5, "12345");
    EXPECT_EQ(received()->bytes, "12345");
}

// Each of these: the kind and the value that are said, and what follows them.
TEST_F(Messages, that_nobody_may_say_are_refused)
{
    const auto member = static_cast<uint32_t>(MessageKind::member);
    const auto bytes = static_cast<uint32_t>(MessageKind::bytes);
    const auto archive_end = static_cast<uint32_t>(MessageKind::archive_end);
    const auto last_outcome = static_cast<uint32_t>(ArchiveOutcome::reader_ended);
    struct Refused {
        const char *told;
        uint32_t kind;
        uint32_t value;
        std::string bytes;
    };
    const Refused all[] = {
        {"too long a name", member, pfsdoc::batch::longest_member_name + 1, ""},
        {"all of the memory", bytes, UINT32_MAX, ""},
        {"less than was told", bytes, 5, "1234"},
        {"an outcome that there is not", archive_end, last_outcome + 1, ""},
        {"a kind that there is not", archive_end + 1, 0, ""},
    };
    for (const Refused &each : all) {
        SetUp();
        say(each.kind, each.value, each.bytes);
        EXPECT_FALSE(received().has_value()) << each.told;
    }
}

} // namespace

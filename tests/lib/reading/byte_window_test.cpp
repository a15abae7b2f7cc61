// Single bytes of a source, at any offset.
#include "lib/reading/byte_window.h"

#include "tests/lib/reading/host_bench.h"

namespace {

using namespace tests;
using namespace pfsdoc;

// Long enough for several windows; each byte shows its position.
std::string long_text()
{
    std::string text;
    for (uint32_t i = 0; i < 20000; ++i) {
        text.push_back(static_cast<char>(i % 251));
    }
    return text;
}

TEST(ByteWindow, DeliversEveryByteForwards)
{
    const auto source = source_from(long_text());
    reading::ByteWindow window(*source);
    for (uint32_t i = 0; i < window.size(); ++i) {
        ASSERT_EQ(window.at(i), static_cast<int32_t>(i % 251));
    }
}

TEST(ByteWindow, DeliversEveryByteBackwards)
{
    const auto source = source_from(long_text());
    reading::ByteWindow window(*source);
    for (uint32_t i = window.size(); i-- > 0;) {
        ASSERT_EQ(window.at(i), static_cast<int32_t>(i % 251));
    }
}

TEST(ByteWindow, HasNoByteAfterTheEnd)
{
    const auto source = source_from("ab");
    reading::ByteWindow window(*source);
    EXPECT_EQ(window.at(1), 'b');
    EXPECT_EQ(window.at(2), reading::ByteWindow::no_byte);
    EXPECT_EQ(window.at(UINT32_MAX), reading::ByteWindow::no_byte);
    EXPECT_EQ(window.at(0), 'a');
}

TEST(ByteWindow, HasNoByteInAnEmptyFile)
{
    const auto source = source_from("");
    reading::ByteWindow window(*source);
    EXPECT_EQ(window.at(0), reading::ByteWindow::no_byte);
}

TEST(ByteWindow, HasNoByteThatCannotBeRead)
{
    DescriptorSource source(-1, 100);
    reading::ByteWindow window(source);
    EXPECT_EQ(window.at(0), reading::ByteWindow::no_byte);
    EXPECT_FALSE(source.failure().ok());
}

} // namespace

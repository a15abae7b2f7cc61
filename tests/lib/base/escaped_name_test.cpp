// That a name comes back out of its escaped form, whatever bytes it is made of.
#include "lib/base/escaped_name.h"

#include "lib/base/printable.h"

#include <gtest/gtest.h>
#include <random>

namespace {

using pfsdoc::base::escaped_name;
using pfsdoc::base::printable;
using pfsdoc::base::unescaped_name;

TEST(EscapedName, LeavesPlainNamesAlone)
{
    for (const std::string name :
         {"", "letter.pfs", "a/b (2)", "\u00FCber \u20AC \U0001F600 \"'<&"}) {
        EXPECT_EQ(escaped_name(name), name);
        EXPECT_EQ(unescaped_name(name), name);
    }
}

TEST(EscapedName, WritesBytesOutThatAreNoText)
{
    EXPECT_EQ(escaped_name("caf\x82.pfs"), "caf\\x82.pfs");
    EXPECT_EQ(escaped_name("a\nb"), "a\\x0Ab");
    EXPECT_EQ(escaped_name("\u202Etxt"), "\\xE2\\x80\\xAEtxt");
    EXPECT_EQ(escaped_name("\uFFFE"), "\\xEF\\xBF\\xBE");
}

// Else the name "caf", backslash, "x82" and the name "caf", byte 82 would look the same.
TEST(EscapedName, WritesTheBackslashOut)
{
    EXPECT_EQ(escaped_name("caf\\x82"), "caf\\x5Cx82");
    EXPECT_EQ(unescaped_name("caf\\x5Cx82"), "caf\\x82");
}

TEST(EscapedName, RefusesWhatIsNoEscapedName)
{
    for (const std::string text : {"\\", "\\x", "\\x8", "\\xGG", "\\y82", "\\xfe", "\\x41", "a\nb",
                                   "\xFF", "\\x+1", "\\\\"}) {
        EXPECT_EQ(unescaped_name(text), std::nullopt) << text;
    }
}

// All that is escaped comes back, and what came out is what a terminal may show.
TEST(EscapedName, TurnsBackWhateverBytesThereAre)
{
    std::mt19937 random(20); // always the same names
    constexpr std::string_view awkward = "\\xE2\x80\xAE\xEF\xBB\xBF/\n\xC3\xA9";
    for (int trial = 0; trial < 20000; ++trial) {
        std::string name;
        for (std::size_t length = random() % 12; name.size() < length;) {
            name.push_back(random() % 2 == 0 ? static_cast<char>(random())
                                             : awkward[random() % awkward.size()]);
        }
        const std::string escaped = escaped_name(name);
        ASSERT_EQ(unescaped_name(escaped), name) << printable(name);
        ASSERT_EQ(printable(escaped), escaped);
    }
}

} // namespace

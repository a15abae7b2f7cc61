// What part of an untrusted text may reach a terminal.
#include "lib/base/printable.h"

#include <gtest/gtest.h>

namespace {

using pfsdoc::base::base_name;
using pfsdoc::base::hex_byte;
using pfsdoc::base::printable;

TEST(Printable, LeavesTextAlone)
{
    for (const std::string text :
         {"", "letter.pfs", "a b\\c \"d\" ~", "\u00FCber \u20AC \U0001F600", "\u00A0"}) {
        EXPECT_EQ(printable(text), text);
    }
}

TEST(Printable, WritesControlCharactersOut)
{
    EXPECT_EQ(printable("a\x1B[31mb"), "a\\x1B[31mb");
    EXPECT_EQ(printable(std::string("\0\n\r\t\x7F", 5)), "\\x00\\x0A\\x0D\\x09\\x7F");
}

TEST(Printable, WritesTheSecondControlRangeOut)
{
    EXPECT_EQ(printable("\u0080\u009B2J\u009F"), "\\xC2\\x80\\xC2\\x9B2J\\xC2\\x9F");
}

TEST(Printable, WritesBytesOutThatAreNoUtf8)
{
    EXPECT_EQ(printable("\x9B"
                        "2J"),
              "\\x9B2J");
    EXPECT_EQ(printable("caf\xE9"), "caf\\xE9");
    EXPECT_EQ(printable("\xC3"), "\\xC3");
    EXPECT_EQ(printable("\xE2\x82"), "\\xE2\\x82");
    EXPECT_EQ(printable("\xF5\x80\x80\x80"), "\\xF5\\x80\\x80\\x80");
}

// Some programs decode overlong forms.
TEST(Printable, WritesOverlongFormsOut)
{
    EXPECT_EQ(printable("\xC0\x9B"), "\\xC0\\x9B");
    EXPECT_EQ(printable("\xE0\x82\x9B"), "\\xE0\\x82\\x9B");
    EXPECT_EQ(printable("\xF0\x80\x82\x9B"), "\\xF0\\x80\\x82\\x9B");
}

TEST(Printable, WritesSurrogatesAndTooLargeValuesOut)
{
    EXPECT_EQ(printable("\xED\xA0\x80"), "\\xED\\xA0\\x80");
    EXPECT_EQ(printable("\xF4\x90\x80\x80"), "\\xF4\\x90\\x80\\x80");
}

// A name with one of them would show text that is not the name's, or end a document of XML.
TEST(Printable, WritesOutWhatTurnsTextAroundOrIsNoCharacter)
{
    for (const std::string character :
         {"\u061C", "\u200E", "\u200F", "\u2028", "\u2029", "\u202A", "\u202E", "\u2066", "\u2069",
          "\uFEFF", "\uFDD0", "\uFDEF", "\uFFFE", "\uFFFF", "\U0001FFFE", "\U0010FFFF"}) {
        std::string escaped;
        for (const char byte : character) {
            escaped += "\\x" + hex_byte(static_cast<unsigned char>(byte));
        }
        EXPECT_EQ(printable("a" + character + "b"), "a" + escaped + "b");
    }
    for (const std::string neighbour :
         {"\u061B", "\u061D", "\u200D", "\u2010", "\u2027", "\u202F", "\u2065", "\u206A", "\uFDCF",
          "\uFDF0", "\uFFFD", "\uFF00", "\U00010000", "\U0010FFFD"}) {
        EXPECT_EQ(printable(neighbour), neighbour);
    }
}

TEST(Printable, WritesTwoHexadecimalDigits)
{
    EXPECT_EQ(hex_byte(0), "00");
    EXPECT_EQ(hex_byte(0xAF), "AF");
}

TEST(Printable, NamesAFileWithoutItsFolders)
{
    EXPECT_EQ(base_name("letter.pfs"), "letter.pfs");
    EXPECT_EQ(base_name("/mnt/a/letter.pfs"), "letter.pfs");
    EXPECT_EQ(base_name("letters/"), "");
    EXPECT_EQ(base_name(""), "");
}

} // namespace

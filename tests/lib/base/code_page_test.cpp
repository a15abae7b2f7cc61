// The code page's characters.
#include "formats/code_page_437.h"
#include "pfsdoc/code_page.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace {

using formats::code_page_437;

std::string utf8(std::string_view bytes)
{
    std::string encoded;
    pfsdoc::CodePage::ibm437().append_utf8(encoded, bytes);
    return encoded;
}

TEST(CodePage437, LeavesPrintableAsciiAlone)
{
    for (unsigned byte = 0x20; byte < 0x7F; ++byte) {
        EXPECT_EQ(code_page_437[byte], byte);
    }
}

TEST(CodePage437, HasGraphicsWhereOthersHaveControlCodes)
{
    EXPECT_EQ(utf8("\x01\x02\x03\x04\x05\x06\x07\x08\x09\x0A\x0B\x0C\x0D\x0E\x0F"),
              "☺☻♥♦♣♠•◘○◙♂♀♪♫☼");
    EXPECT_EQ(utf8("\x10\x11\x12\x13\x14\x15\x16\x17\x18\x19\x1A\x1B\x1C\x1D\x1E\x1F\x7F"),
              "►◄↕‼¶§▬↨↑↓→←∟↔▲▼⌂");
}

TEST(CodePage437, HasLettersSignsFramesAndFormulasInItsUpperHalf)
{
    EXPECT_EQ(utf8("\x80\x81\x82\x83\x84\x85\x86\x87\x88\x89\x8A\x8B\x8C\x8D\x8E\x8F"),
              "ÇüéâäàåçêëèïîìÄÅ");
    EXPECT_EQ(utf8("\x90\x91\x92\x93\x94\x95\x96\x97\x98\x99\x9A\x9B\x9C\x9D\x9E\x9F"),
              "ÉæÆôöòûùÿÖÜ¢£¥₧ƒ");
    EXPECT_EQ(utf8("\xA0\xA1\xA2\xA3\xA4\xA5\xA6\xA7\xA8\xA9\xAA\xAB\xAC\xAD\xAE\xAF"),
              "áíóúñÑªº¿⌐¬½¼¡«»");
    EXPECT_EQ(utf8("\xB0\xB1\xB2\xB3\xB4\xB5\xB6\xB7\xB8\xB9\xBA\xBB\xBC\xBD\xBE\xBF"),
              "░▒▓│┤╡╢╖╕╣║╗╝╜╛┐");
    EXPECT_EQ(utf8("\xC0\xC1\xC2\xC3\xC4\xC5\xC6\xC7\xC8\xC9\xCA\xCB\xCC\xCD\xCE\xCF"),
              "└┴┬├─┼╞╟╚╔╩╦╠═╬╧");
    EXPECT_EQ(utf8("\xD0\xD1\xD2\xD3\xD4\xD5\xD6\xD7\xD8\xD9\xDA\xDB\xDC\xDD\xDE\xDF"),
              "╨╤╥╙╘╒╓╫╪┘┌█▄▌▐▀");
    EXPECT_EQ(utf8("\xE0\xE1\xE2\xE3\xE4\xE5\xE6\xE7\xE8\xE9\xEA\xEB\xEC\xED\xEE\xEF"),
              "αßΓπΣσµτΦΘΩδ∞φε∩");
    EXPECT_EQ(utf8("\xF0\xF1\xF2\xF3\xF4\xF5\xF6\xF7\xF8\xF9\xFA\xFB\xFC\xFD\xFE"),
              "≡±≥≤⌠⌡÷≈°∙·√ⁿ²■");
}

// These have look-alikes in Unicode, so the right ones are given by number.
TEST(CodePage437, IsExactAboutLookAlikes)
{
    EXPECT_EQ(code_page_437[0xE1], 0x00DF); // sharp s, not beta
    EXPECT_EQ(code_page_437[0xE4], 0x03A3); // sigma, not the sum sign
    EXPECT_EQ(code_page_437[0xE6], 0x00B5); // micro sign, not mu
    EXPECT_EQ(code_page_437[0xEA], 0x03A9); // omega, not the ohm sign
    EXPECT_EQ(code_page_437[0xEE], 0x03B5); // epsilon, not "element of"
    EXPECT_EQ(code_page_437[0xFF], 0x00A0); // no-break space
}

TEST(CodePage437, MapsTheZeroByteToASpace)
{
    EXPECT_EQ(utf8(std::string_view("\0", 1)), " ");
}

// Bytes are processed eight at a time: no byte may be missed at any position, or misread because
// of its neighbours.
TEST(CodePage437, ConvertsAByteTheSameAtEveryPosition)
{
    const std::string around = " AZaz~! ~ ";
    for (unsigned byte = 0; byte < code_page_437.size(); ++byte) {
        const std::string one(1, static_cast<char>(byte));
        for (std::size_t before = 0; before <= around.size(); ++before) {
            const std::string front = around.substr(0, before);
            const std::string back = around.substr(before) + around;
            EXPECT_EQ(utf8(front + one + back), front + utf8(one) + back);
            EXPECT_EQ(utf8(front + one + one + back), front + utf8(one) + utf8(one) + back);
        }
    }
}

TEST(CodePage437, HasNoCharacterTwiceButTheSpace)
{
    const std::set<char16_t> distinct(code_page_437.begin(), code_page_437.end());
    EXPECT_EQ(distinct.size(), 255U);
}

TEST(CodePage437, HasNoControlCharacter)
{
    for (const char16_t character : code_page_437) {
        EXPECT_GE(character, 0x20);
        EXPECT_TRUE(character < 0x7F || character > 0x9F) << std::hex << unsigned{character};
    }
}

std::string in_code_page(const std::string &name, std::string_view bytes)
{
    const auto page = pfsdoc::CodePage::named(name);
    EXPECT_TRUE(page.ok()) << name;
    std::string encoded;
    if (page.ok()) {
        page.value().append_utf8(encoded, bytes);
    }
    return encoded;
}

TEST(CodePage, HasTheCharactersOfItsNumber)
{
    EXPECT_EQ(in_code_page("437", "\x9B\xB5\xF8"), "¢╡°");
    EXPECT_EQ(in_code_page("850", "\x9B\xB5\xF8"), "øÁ°");
    EXPECT_EQ(in_code_page("852", "\x9B\xB5\xF8"), "ŤÁ°");
    EXPECT_EQ(in_code_page("866", "\x80\x9F\xF8"), "АЯ°");
    EXPECT_EQ(in_code_page("CP865", "\x9B\x9D"), "øØ");
    EXPECT_EQ(in_code_page("ISO-8859-1", "\xE9"), "é");
}

TEST(CodePage, HasGraphicsForControlCodesWhateverItsNumber)
{
    EXPECT_EQ(in_code_page("850", "\x01\x1B\x7F"), "☺←⌂");
    EXPECT_EQ(in_code_page("ISO-8859-1", "\x07\x9B"), "•\uFFFD");
}

TEST(CodePage, MarksUndefinedBytes)
{
    const auto page = pfsdoc::CodePage::named("857");
    ASSERT_TRUE(page.ok());
    EXPECT_FALSE(page.value().is_complete());
    EXPECT_FALSE(page.value().defines(0xD5));
    EXPECT_TRUE(page.value().defines(0x80));
    EXPECT_TRUE(pfsdoc::CodePage::ibm437().is_complete());
    EXPECT_EQ(in_code_page("857", "\xD5"), "\uFFFD");
}

TEST(CodePage, IsRefusedIfItIsNotASingleByteExtensionOfAscii)
{
    for (const char *name : {"", "no such set", "99999", "UTF-8", "UTF-16", "UCS-4", "EBCDIC-US",
                             "932", "SHIFT_JIS", "850//TRANSLIT", "437/"}) {
        const auto page = pfsdoc::CodePage::named(name);
        ASSERT_FALSE(page.ok()) << name;
        EXPECT_EQ(page.error().kind, pfsdoc::ErrorKind::usage) << name;
        EXPECT_FALSE(page.error().remedy.empty()) << name;
    }
}

} // namespace

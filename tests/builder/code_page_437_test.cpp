#include "builder/code_page_437.h"

#include <gtest/gtest.h>

#include <set>

using namespace pfs_builder;

TEST(BuilderCodePage437, KeepsAsciiAndTab)
{
    for (char32_t character = 0x20; character <= 0x7E; ++character) {
        EXPECT_EQ(to_code_page_437(character), character);
    }
    EXPECT_EQ(to_code_page_437(0x09), 0x09);
}

TEST(BuilderCodePage437, HasOneCharacterForEveryByteButNul)
{
    std::set<uint8_t> bytes;
    for (char32_t character = 0; character <= 0xFFFF; ++character) {
        if (const auto byte = to_code_page_437(character)) {
            EXPECT_TRUE(bytes.insert(*byte).second) << unsigned{*byte};
        }
    }
    EXPECT_EQ(bytes.size(), 255U);
    EXPECT_EQ(bytes.count(0), 0U);
}

TEST(BuilderCodePage437, PlacesWellKnownCharacters)
{
    struct {
        const char *utf8;
        const char *byte;
    } const rows[] = {{"Ç", "\x80"}, {"é", "\x82"},      {"ñ", "\xA4"}, {"│", "\xB3"},
                      {"┼", "\xC5"}, {"α", "\xE0"},      {"ß", "\xE1"}, {"≡", "\xF0"},
                      {"■", "\xFE"}, {"\u00A0", "\xFF"}, {"☺", "\x01"}, {"♪", "\x0D"},
                      {"⌂", "\x7F"}, {"½", "\xAB"}};
    for (const auto &row : rows) {
        EXPECT_EQ(utf8_to_code_page_437(row.utf8).bytes, row.byte) << row.utf8;
    }
}

TEST(BuilderCodePage437, NamesTheCharacterItDoesNotHave)
{
    EXPECT_EQ(utf8_to_code_page_437("\u25CB").rejected, "character U+25CB"); // a tab has its byte
    EXPECT_EQ(utf8_to_code_page_437("12 €").rejected, "character U+20AC");
    EXPECT_EQ(utf8_to_code_page_437("\U0001F600").rejected, "character U+1F600");
}

TEST(BuilderCodePage437, RefusesWhatIsNotUtf8)
{
    const char *const faulty[] = {"\xC3",             // cut
                                  "\xC3(",            // the second byte is not a continuation byte
                                  "\x82",             // a continuation byte alone
                                  "\xC1\x81",         // longer than needed
                                  "\xE0\x80\x80",     // the same
                                  "\xED\xA0\x80",     // half of a surrogate pair
                                  "\xF4\x90\x80\x80", // above the last character
                                  "\xFF"};
    for (const char *const text : faulty) {
        const std::string rejected = utf8_to_code_page_437(text).rejected;
        EXPECT_NE(rejected.find("that is not UTF-8"), std::string::npos) << rejected;
    }
}

TEST(BuilderCodePage437, TakesNothingThatItCannotConvert)
{
    std::string_view text = "€uro";
    EXPECT_FALSE(take_code_page_437(text).rejected.empty());
    EXPECT_EQ(text, "€uro");
    EXPECT_FALSE(take_utf8(text = ""));
}

// First Choice before its third generation, and the header that it shares with the third.
#include "tests/builder/descriptions.h"

using namespace builder_tests;

namespace {

std::string choice(const std::string &body, const std::string &header = "")
{
    return body_of("kind: 1017\n" + header + "---\n" + body);
}

} // namespace

TEST(BuilderChoiceHeader, PutsEverythingAtItsOffset)
{
    const std::string file =
        file_of("kind: 1017\nmargins: 11 71\nheader: Letters\n"
                "header 2: Second\nfooter: Café\nfooter 2: Page\n"
                "header align: right\nfooter align: centre\n"
                "header style: bold underline\nfooter style: underline\n---\n");
    EXPECT_TRUE(holds(at(file, 0, 19), "0B 00 47 00 00x5 'GERBILDOC2'"));
    EXPECT_TRUE(holds(at(file, 28, 8), "07 'Letters'"));
    EXPECT_TRUE(holds(at(file, 110, 7), "06 'Second'"));
    EXPECT_TRUE(holds(at(file, 192, 5), "04 'Caf' 82"));
    EXPECT_TRUE(holds(at(file, 274, 5), "04 'Page'"));
    EXPECT_TRUE(holds(at(file, 356, 2), "'RC'"));
    EXPECT_TRUE(holds(at(file, 359, 2), "' U'")); // the footer's letters come first
    EXPECT_TRUE(holds(at(file, 363, 2), "'BU'"));
    EXPECT_TRUE(holds(at(file, 512, 1), "0E"));
    EXPECT_EQ(file.size(), 513U);
}

TEST(BuilderChoiceHeader, AlignsLeftByDefault)
{
    EXPECT_TRUE(holds(at(file_of("kind: 1017\n---\n"), 356, 2), "'LL'"));
}

TEST(BuilderChoiceHeader, HasARulerOfBitsForGenerations2And3)
{
    const char *const ruler = "00 00 05 00x27 80";
    EXPECT_TRUE(holds(at(file_of("kind: 1017\ntabs: 17 19 248\n---\n"), 366, 31), ruler));
    EXPECT_TRUE(holds(at(file_of("kind: 1058\ntabs: 17 19 248\n---\n"), 366, 31), ruler));
}

TEST(BuilderChoiceHeader, HasARulerOfBytesForOthers)
{
    const std::string file = file_of("kind: 1017\ngeneration: 1\ntabs: 5 99\n---\n");
    EXPECT_TRUE(holds(at(file, 18, 1), "'1'"));
    EXPECT_TRUE(holds(at(file, 366, 99), "00x4 01 00x93 01"));
    EXPECT_TRUE(holds(at(file_of("kind: 1017\ngeneration: 00\n---\n"), 18, 1), "00"));
}

TEST(BuilderChoiceHeader, FillsEachTextToItsLimit)
{
    for (const std::string key : {"header", "header 2", "footer", "footer 2"}) {
        const std::string start = "kind: 1017\n" + key + ": ";
        EXPECT_EQ(fault_of(start + std::string(81, 'x') + "\n---\n"), "");
        EXPECT_EQ(fault_of(start + std::string(82, 'x') + "\n---\n"),
                  "letter:2: this line has 82 characters; shorten it to 81");
    }
}

TEST(BuilderChoiceEncoder, EndsLinesBySpacing)
{
    EXPECT_TRUE(holds(choice("a\n@double\nb\n\n@single\nc\n"), "'a' 0C 'b' 0D 0D 'c' 0C 0E"));
}

TEST(BuilderChoiceEncoder, WrapsWithoutStoringTheSpace)
{
    EXPECT_TRUE(
        holds(choice("@double\nabcd efghij\n", "margins: 1 10\n"), "'abcd' 0D 'efghij' 0D 0E"));
    EXPECT_TRUE(holds(choice("abcd.  efghij\n", "margins: 1 10\n"), "'abcd.  ' 0C 'efghij' 0C 0E"));
}

TEST(BuilderChoiceEncoder, PutsAttributeBytesAfterAStyledCharacter)
{
    EXPECT_TRUE(holds(choice("{u}a{/u}{b}b{/b}{i}c{/i}{u}{b} {/b}{/u}d"),
                      "E1 01 E2 02 E3 04 A0 03 'd' 0C 0E"));
}

TEST(BuilderChoiceEncoder, RaisesAndLowersByASecondByte)
{
    EXPECT_TRUE(holds(choice("{sup}2{/sup}{sub}2{/sub}{b}{sub}2{/sub}{/b}{sup}{sub}x{/sub}{/sup}"),
                      "B2 40 04 B2 40 02 B2 42 02 F8 40 06 0C 0E"));
}

TEST(BuilderChoiceEncoder, KeepsTheHighBitByAnAttribute)
{
    EXPECT_TRUE(holds(choice("é{b}é{/b}{sup}é{/sup}\u00A0"), "82 08 82 0A 82 48 04 FF 08 0C 0E"));
}

TEST(BuilderChoiceEncoder, HidesControlBytesInPairs)
{
    EXPECT_TRUE(holds(choice("♀♪♫"), "8C 00 8D 00 8E 00 0C 0E"));
}

TEST(BuilderChoiceEncoder, StoresIndentsCommandsAndRawBytes)
{
    EXPECT_TRUE(holds(choice("  *N*a\n@raw 05\nb{x07}\n"), "'  *N*a' 0C 05 'b' 07 0C 0E"));
    EXPECT_TRUE(holds(choice("{u}a b{/u}", "spaces: plain\n"), "E1 01 20 E2 01 0C 0E"));
}

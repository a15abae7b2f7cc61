// Bodies of First Choice 3. A line's header is 50 01 where its paragraph ends, 10 where not.
#include "tests/builder/descriptions.h"

using namespace builder_tests;

namespace {

std::string choice3(const std::string &body, const std::string &header = "")
{
    return body_of("kind: 1058\n" + header + "---\n" + body);
}

} // namespace

TEST(BuilderChoice3Encoder, WritesItsGeneration)
{
    EXPECT_TRUE(holds(at(file_of("kind: 1058\n---\n"), 9, 10), "'GERBILDOC3'"));
}

TEST(BuilderChoice3Encoder, MarksTheEndOfAParagraphInTheLinesHeader)
{
    EXPECT_TRUE(
        holds(choice3("a\n\nb\\\nc\n"), "50 01 'a' 0D 50 01 0D 50 01 'b' 0D 50 01 'c' 0D 0E"));
    EXPECT_TRUE(
        holds(choice3("abcd efghij\n", "margins: 1 10\n"), "10 'abcd' 0D 50 01 'efghij' 0D 0E"));
}

TEST(BuilderChoice3Encoder, EndsAnEmptyDocumentAtOnce)
{
    EXPECT_TRUE(holds(choice3(""), "0E"));
}

TEST(BuilderChoice3Encoder, DrawsARulerInCharacters)
{
    EXPECT_TRUE(holds(choice3("@ruler [   T    T   ]\n"), "0C 00x3 '[   T    T   ]' 0D 0E"));
}

TEST(BuilderChoice3Encoder, GivesABoxCharacterOfARulerItsSecondByte)
{
    EXPECT_TRUE(holds(choice3("@ruler [─┬T┼]\n"), "0C 00x3 '[' C4 C2 08 'T' C5 08 ']' 0D 0E"));
}

TEST(BuilderChoice3Encoder, WrapsToTheMarginsOfARuler)
{
    EXPECT_TRUE(holds(choice3("@ruler [        ]\nabcd efghij\n"),
                      "0C 00x3 '[        ]' 0D 10 'abcd' 0D 50 01 'efghij' 0D 0E"));
    // A margin that the ruler does not mark stays as it was.
    EXPECT_TRUE(holds(choice3("@ruler          ]\nabcd efghij\n", "margins: 1 70\n"),
                      "0C 00x3 '         ]' 0D 10 'abcd' 0D 50 01 'efghij' 0D 0E"));
}

TEST(BuilderChoice3Encoder, StoresAPageBreakAsALine)
{
    EXPECT_TRUE(holds(choice3("@page-break\n@page-break New page\n"), "08 0D 08 'New page' 0D 0E"));
}

TEST(BuilderChoice3Encoder, SharesItsCharactersWithTheGenerationBefore)
{
    EXPECT_TRUE(holds(choice3("é{sub}2{/sub}{u}a b{/u}♪"),
                      "50 01 82 08 B2 40 02 E1 01 A0 01 E2 01 8D 00 0D 0E"));
    EXPECT_TRUE(holds(choice3("{u}a b{/u}", "spaces: plain\n"), "50 01 E1 01 20 E2 01 0D 0E"));
}

TEST(BuilderChoice3Encoder, StoresIndentsCommandsAndRawBytes)
{
    EXPECT_TRUE(
        holds(choice3("  *N*a\n@raw 18\nb{x0C}\n"), "50 01 '  *N*a' 0D 18 50 01 'b' 0C 0D 0E"));
}

// Bodies of Professional Write. The byte before each line is its type; the 00 before the 0E
// ends the last line.
#include "tests/builder/descriptions.h"

using namespace builder_tests;

namespace {

std::string professional(const std::string &body, const std::string &header = "")
{
    return body_of("kind: 1014\n" + header + "---\n" + body);
}

} // namespace

TEST(BuilderProfessionalWriteEncoder, BeginsEveryLineWithItsType)
{
    EXPECT_TRUE(holds(professional("One.\\\nTwo.\n"), "01 'One.' 01 'Two.' 00 0E"));
    EXPECT_TRUE(holds(professional("One.\n\nTwo.\n"), "01 'One.' 01 01 'Two.' 00 0E"));
    EXPECT_TRUE(holds(professional(""), "00 0E"));
}

TEST(BuilderProfessionalWriteEncoder, MarksWrappedLinesSoft)
{
    EXPECT_TRUE(
        holds(professional("abcd efghij\n", "margins: 1 10\n"), "00 'abcd' 01 'efghij' 00 0E"));
    // Readers add a space to every soft end, so one of two is stored.
    EXPECT_TRUE(
        holds(professional("abcd.  efghij\n", "margins: 1 10\n"), "00 'abcd. ' 01 'efghij' 00 0E"));
}

TEST(BuilderProfessionalWriteEncoder, MarksDoubleSpacing)
{
    EXPECT_TRUE(holds(professional("@double\na\n@single\nb\n"), "03 'a' 01 'b' 00 0E"));
}

TEST(BuilderProfessionalWriteEncoder, PutsRecordsAtTheNextLinesStart)
{
    EXPECT_TRUE(holds(professional("a\n@margins 12 60\n@font-record 02 18\nb\n"),
                      "01 'a' 01 07 05 01 0C 3C 07 04 02 18 'b' 00 0E"));
    // Spaces after a record would be read as characters, so it follows the indent.
    EXPECT_TRUE(holds(professional("@font-record 02\n  b\n"), "01 '  ' 07 03 02 'b' 00 0E"));
    EXPECT_TRUE(holds(professional("a\n@margins 12 60\n"), "01 'a' 00 07 05 01 0C 3C 0E"));
}

TEST(BuilderProfessionalWriteEncoder, WrapsToTheMarginsOfARecord)
{
    EXPECT_TRUE(holds(professional("@margins 1 10\nabcd efghij\n"),
                      "00 07 05 01 01 0A 'abcd' 01 'efghij' 00 0E"));
}

TEST(BuilderProfessionalWriteEncoder, SuppressesToTheEndOfALine)
{
    EXPECT_TRUE(holds(professional("ab{hide}cd e{/hide} fg\n"), "02 'ab' 02 'cd e' 01 'fg' 00 0E"));
    EXPECT_TRUE(holds(professional("{hide}all{/hide}\\\nb\n"), "02 02 'all' 01 'b' 00 0E"));
}

TEST(BuilderProfessionalWriteEncoder, KeepsTheHighBitByAnAttribute)
{
    EXPECT_TRUE(holds(professional("é{b}é{/b}{b}e{/b}"), "01 82 40 82 42 E5 02 00 0E"));
    EXPECT_TRUE(holds(professional("{sup}2{/sup}{sub}2{/sub}"), "01 B2 08 B2 10 00 0E"));
}

TEST(BuilderProfessionalWriteEncoder, HidesControlBytesInPairs)
{
    EXPECT_TRUE(holds(professional("☺☻♥•♀♫"), "01 81 00 82 00 83 00 87 00 8C 00 8E 00 00 0E"));
    EXPECT_TRUE(holds(professional("♦♪"), "01 04 0D 00 0E"));
}

TEST(BuilderProfessionalWriteEncoder, StoresIndentsCommandsAndRawBytes)
{
    EXPECT_TRUE(holds(professional("  *N*a\n@raw 05\nb{x0C}\n"), "01 '  *N*a' 05 01 'b' 0C 00 0E"));
    EXPECT_TRUE(holds(professional("@spaces 2\n"), "01 '  ' 00 0E"));
}

// Bodies of PFS: WRITE and IBM Writing Assistant. Margins are columns 10 to 70 unless a case
// states otherwise; the first 0D of a body is the one that readers swallow.
#include "tests/builder/descriptions.h"

using namespace builder_tests;

namespace {

std::string write_b(const std::string &body, const std::string &header = "")
{
    return body_of("kind: 1013\n" + header + "---\n" + body);
}

std::string writing_assistant(const std::string &body)
{
    return body_of("kind: 1016\n---\n" + body);
}

} // namespace

TEST(BuilderWriteEncoder, EndsEveryLineWithAReturn)
{
    EXPECT_TRUE(holds(write_b("One.\\\nTwo.\n"), "0D 'One.' 0D 'Two.' 0D 0E"));
}

TEST(BuilderWriteEncoder, StoresAnEmptyLineAsAnEmptyParagraph)
{
    EXPECT_TRUE(holds(write_b("One.\n\nTwo.\n"), "0D 'One.' 0D 0D 'Two.' 0D 0E"));
}

TEST(BuilderWriteEncoder, WrapsWithoutStoringTheSpace)
{
    EXPECT_TRUE(holds(write_b("abcd efghij\n", "margins: 1 10\n"), "0D 'abcd' 0D 'efghij' 0D 0E"));
    EXPECT_TRUE(
        holds(write_b("abcd.  efghij\n", "margins: 1 10\n"), "0D 'abcd.  ' 0D 'efghij' 0D 0E"));
}

TEST(BuilderWriteEncoder, WrapsToTheMarginsOfARecord)
{
    EXPECT_TRUE(holds(write_b("abcd efghij\n", "record: margins 1 10\n"),
                      "07 05 01 01 0A 0D 'abcd' 0D 'efghij' 0D 0E"));
}

TEST(BuilderWriteEncoder, StoresIndentsAsSpaces)
{
    EXPECT_TRUE(holds(write_b("   ab cd ef\n  gh\n", "margins: 1 10\n"),
                      "0D '   ab cd' 0D '  ef gh' 0D 0E"));
    EXPECT_TRUE(holds(write_b("@spaces 3\n"), "0D '   ' 0D 0E"));
}

TEST(BuilderWriteEncoder, PutsAnAttributeByteAfterAStyledCharacter)
{
    EXPECT_TRUE(holds(write_b("a{b}B{/b}{u}U{/u}{i}I{/i}{sup}2{/sup}{sub}3{/sub}{b}{i}x{/i}{/b}"),
                      "0D 'a' C2 02 D5 01 C9 04 B2 08 B3 10 F8 06 0D 0E"));
}

TEST(BuilderWriteEncoder, StylesSpacesUnlessTheyAreToBePlain)
{
    EXPECT_TRUE(holds(write_b("{u}a b{/u}"), "0D E1 01 A0 01 E2 01 0D 0E"));
    EXPECT_TRUE(holds(write_b("{u}a b{/u}", "spaces: plain\n"), "0D E1 01 20 E2 01 0D 0E"));
}

TEST(BuilderWriteEncoder, HidesControlBytesInPairs)
{
    EXPECT_TRUE(holds(write_b("♀♪♫"), "0D 8C 00 8D 00 8E 00 0D 0E"));
    EXPECT_TRUE(holds(write_b("a{tab}b☺"), "0D 'a' 09 'b' 01 0D 0E"));
}

TEST(BuilderWriteEncoder, StoresCommandsUnchanged)
{
    EXPECT_TRUE(holds(write_b("{b}*Center*x{/b}"), "0D '*Center*' F8 02 0D 0E"));
}

TEST(BuilderWriteEncoder, StoresRawBytes)
{
    EXPECT_TRUE(holds(write_b("a{xC1 05}b\n@raw 0C 0C\nc"), "0D 'a' C1 05 'b' 0D 0C 0C 'c' 0D 0E"));
}

TEST(BuilderWriteEncoder, PairsTheUpperHalfInWritingAssistant)
{
    EXPECT_TRUE(holds(writing_assistant("é"), "0D C2 20 0D 0E")); // 82: C2 AND BF
    EXPECT_TRUE(holds(writing_assistant("│"), "0D F0 20 0D 0E")); // B3: from B0
    EXPECT_TRUE(holds(writing_assistant("α"), "0D E0 00 0D 0E")); // E0 is kept as it is
    EXPECT_TRUE(holds(writing_assistant("ß"), "0D FD 20 0D 0E")); // E1: from BD
}

TEST(BuilderWriteEncoder, TranslatesIntoWritingAssistantsSet)
{
    EXPECT_TRUE(holds(writing_assistant("Σ■≡"), "0D 0F 1F 16 0D 0E"));
    EXPECT_TRUE(holds(writing_assistant("{b}■{/b}"), "0D DF 02 0D 0E")); // 1F, quarter 0
}

TEST(BuilderWriteEncoder, ChoosesTheQuarterOfAStyledCharacter)
{
    EXPECT_TRUE(holds(writing_assistant("{b}A{/b}{u}a{/u}{i}!{/i}{sup}é{/sup}"),
                      "0D C1 12 E1 11 E1 04 C2 28 0D 0E"));
    EXPECT_TRUE(holds(writing_assistant("{b}`{/b}{b}α{/b}"), "0D E0 12 E0 02 0D 0E"));
}

TEST(BuilderWriteEncoder, LeavesWritingAssistantsSpacesPlain)
{
    EXPECT_TRUE(holds(writing_assistant("{b}a b{/b}"), "0D E1 12 20 E2 12 0D 0E"));
}

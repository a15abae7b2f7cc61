// Line ends that readers would misread. Margins of 1 and 11 leave eleven
// columns, so that an end after six is a wrap before a word of five.
#include "tests/builder/descriptions.h"

using namespace builder_tests;

namespace {

std::string fault_in(const std::string &kind, const std::string &body,
                     const std::string &margins = "1 11")
{
    return fault_of("kind: " + kind + "\nmargins: " + margins + "\n---\n" + body);
}

std::string lost_end(int line, int word, int column)
{
    return "letter:" + std::to_string(line) +
           ": the end of this paragraph would be read as a wrap: the next line's first word has " +
           std::to_string(word) + " columns and this line ends in column " +
           std::to_string(column) +
           "; put an empty line after it, change its length, store styled spaces plainly with "
           "`spaces: plain`, or accept it with `joins: allowed`";
}

} // namespace

TEST(BuilderLineEnds, AreLostBeforeAWordThatWouldNotHaveFitted)
{
    for (const char *const kind : {"1012", "1013", "1016", "1017"}) {
        EXPECT_EQ(fault_in(kind, "abcdef\\\nghij\n"), "");
        EXPECT_EQ(fault_in(kind, "abcdef\\\nghij k\n"), "") << kind;
        EXPECT_EQ(fault_in(kind, "abcdef\\\nghijk\n"), lost_end(4, 5, 6)) << kind;
    }
}

TEST(BuilderLineEnds, AreNeverLostWhereLinesStoreTheirType)
{
    for (const char *const kind : {"1014", "1058"}) {
        EXPECT_EQ(fault_in(kind, "abcdef\\\nghijk\n"), "");
    }
}

TEST(BuilderLineEnds, AreKeptByAnEmptyLine)
{
    EXPECT_EQ(fault_in("1013", "abcdef\n\nghijk\n"), "");
    EXPECT_EQ(fault_in("1017", "abcdef\n\nghijk\n"), "");
}

TEST(BuilderLineEnds, AreLostOnPurpose)
{
    EXPECT_EQ(fault_of("kind: 1013\nmargins: 1 11\njoins: allowed\n---\nabcdef\\\nghijk\n"), "");
}

TEST(BuilderLineEnds, CountIndentsOnTheLineButNotBeforeTheNextWord)
{
    EXPECT_EQ(fault_in("1013", "  abcd\\\nghijk\n"), lost_end(4, 5, 6));
    EXPECT_EQ(fault_in("1013", "abcdef\\\n   ghij\n"), "");
}

TEST(BuilderLineEnds, CountAStyledCharacterOnce)
{
    EXPECT_EQ(fault_in("1013", "{b}abcdef{/b}\\\n{b}ghij{/b}\n"), "");
    EXPECT_EQ(fault_in("1017", "{sup}abcdef{/sup}\\\n{sup}ghij{/sup}\n"), "");
    EXPECT_EQ(fault_in("1016", "{b}abcdef{/b}\\\n{b}ghij{/b}\n"), "");
    EXPECT_EQ(fault_in("1016", "éééééé\\\néééé\n"), "");
    EXPECT_EQ(fault_in("1016", "éééééé\\\nééééé\n"), lost_end(4, 5, 6));
}

TEST(BuilderLineEnds, SeeNoStyledSpaceInPfsWrite)
{
    // The lookahead of PFS: WRITE recognises only the plain space, First Choice's both.
    EXPECT_EQ(fault_in("1013", "abcdef\\\n{u}gh ij{/u}\n"), lost_end(4, 5, 6));
    EXPECT_EQ(fault_of("kind: 1013\nmargins: 1 11\nspaces: plain\n---\nabcdef\\\n{u}gh ij{/u}\n"),
              "");
    EXPECT_EQ(fault_in("1017", "abcdef\\\n{u}gh ij{/u}\n"), "");
}

TEST(BuilderLineEnds, OfSpacesAloneCountFromTheirOwnStart)
{
    // In the Write family such a line begins in column 0, in First Choice at the margin.
    EXPECT_EQ(fault_in("1013", "@spaces 3\nabcdefgh\n", "3 10"), lost_end(4, 8, 3));
    EXPECT_EQ(fault_in("1013", "@spaces 3\nabcdef\n", "3 10"), "");
    EXPECT_EQ(fault_in("1017", "@spaces 3\nabcdef\n", "3 10"), lost_end(4, 6, 5));
}

TEST(BuilderLineEnds, OfEmptyLinesAreSafeExceptAfterAMarginInFirstChoice)
{
    EXPECT_EQ(fault_in("1013", "\nabcdefghijkl\n", "3 10"), "");
    EXPECT_EQ(fault_in("1017", "\nabcdefghijkl\n", "1 11"), "");
    EXPECT_EQ(fault_in("1017", "\nabcdefghijkl\n", "3 10"), lost_end(4, 12, 2));
}

TEST(BuilderLineEnds, ReadRawBytesAsReadersDo)
{
    // Plain bytes from 80 to BF are characters to the reader of IBM Writing Assistant, but its
    // lookahead takes each for the first of a pair and so does not see the space behind one.
    EXPECT_EQ(fault_in("1016", "abcdef\\\ngh{x82} ij\n"), lost_end(4, 5, 6));
    EXPECT_EQ(fault_in("1016", "{x82}{x82}{x82}{x82}{x82}{x82}\\\nghij\n"), "");
    // A form feed takes no column in PFS: WRITE.
    EXPECT_EQ(fault_in("1013", "abcdef{x0C}\\\nghij\n"), "");
    // First Choice's lookahead follows a chain of attribute bytes to its end.
    EXPECT_EQ(fault_in("1017", "abcdef\\\n{xE1 40 40 00}hij\n"), "");
    EXPECT_EQ(fault_in("1017", "abcdef\\\n{xE1 40 40 00}hijk\n"), lost_end(4, 5, 6));
}

TEST(BuilderLineEnds, ReportAWrapThatWouldBeReadAsAnEnd)
{
    // The form feed counts when wrapping but not when reading.
    EXPECT_EQ(
        fault_in("1013", "abcd{x0C} efghij\n"),
        "letter:4: a wrapped line would be read as the end of its paragraph: the next line's "
        "first word has 6 columns and this line ends in column 4; take the raw bytes out of the "
        "paragraph, or break it by hand");
}

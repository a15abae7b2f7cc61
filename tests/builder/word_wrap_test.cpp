// Lines are shown as stored, their indent as dots, a wrapped one followed by '~'.
#include "builder/description_parts.h"
#include "builder/word_wrap.h"

#include <gtest/gtest.h>

using namespace pfs_builder;

namespace {

Paragraph paragraph_of(const std::string &text, int first_indent = 0, int left_indent = 0)
{
    return {parse_text({{{0, 1}, text}}).cells, first_indent, left_indent, {0, 1}};
}

std::string wrapped(const Paragraph &paragraph, const WrapRules &rules)
{
    std::string all;
    for (const StoredLine &line : wrap_words(paragraph, rules)) {
        all.append(static_cast<std::size_t>(line.indent), '.');
        for (std::size_t i = line.begin; i < line.end; ++i) {
            all += paragraph.cells[i].hidden ? "#" : paragraph.cells[i].bytes;
        }
        all += line.wrapped ? "~|" : "|";
    }
    return all;
}

// Ten columns, 0 to 9.
constexpr WrapRules ten = {0, 9, false};
constexpr WrapRules ten_always = {0, 9, true};

} // namespace

TEST(BuilderWordWrap, FillsALineToItsLastColumn)
{
    EXPECT_EQ(wrapped(paragraph_of("abcd efghi"), ten), "abcd efghi|");
    EXPECT_EQ(wrapped(paragraph_of("abcd efghij"), ten), "abcd~|efghij|");
}

TEST(BuilderWordWrap, CountsFromTheLeftMargin)
{
    EXPECT_EQ(wrapped(paragraph_of("abcd efghi"), {1, 9, false}), "abcd~|efghi|");
}

TEST(BuilderWordWrap, CountsIndents)
{
    EXPECT_EQ(wrapped(paragraph_of("abcd ef gh ij kl", 3, 1), ten), "...abcd ef~|.gh ij kl|");
    EXPECT_EQ(wrapped(paragraph_of("abcd efg h i", 3, 1), ten), "...abcd~|.efg h i|");
}

TEST(BuilderWordWrap, StoresTheSpacesOfAWiderGap)
{
    // Two spaces are both stored: a reader adds none after a stored one.
    EXPECT_EQ(wrapped(paragraph_of("abcd.  efghij"), ten), "abcd.  ~|efghij|");
    // A reader that always adds one gets one less.
    EXPECT_EQ(wrapped(paragraph_of("abcd.  efghij"), ten_always), "abcd. ~|efghij|");
    EXPECT_EQ(wrapped(paragraph_of("abcd. efghij"), ten_always), "abcd.~|efghij|");
}

TEST(BuilderWordWrap, ChecksWhetherTheWordFitsAfterOneSpaceLess)
{
    // The gap's last space may stand in the margin, as it does with a gap of one.
    EXPECT_EQ(wrapped(paragraph_of("abcd  efgh"), ten), "abcd  efgh|");
    EXPECT_EQ(wrapped(paragraph_of("abcd  efghi"), ten), "abcd  ~|efghi|");
}

TEST(BuilderWordWrap, LetsALongWordRunOver)
{
    EXPECT_EQ(wrapped(paragraph_of("a incomprehensible b"), ten), "a~|incomprehensible~|b|");
}

TEST(BuilderWordWrap, KeepsTrailingSpaces)
{
    EXPECT_EQ(wrapped(paragraph_of("ab   "), ten), "ab   |");
}

TEST(BuilderWordWrap, DoesNotBreakACommandAndMeasuresItsFirstWord)
{
    // "*NEW" would fit after "abcd ", so a reader would take a line end there for a hard one.
    EXPECT_EQ(wrapped(paragraph_of("abcd *NEW PAGE* e"), ten), "abcd *NEW PAGE*~|e|");
    EXPECT_EQ(wrapped(paragraph_of("abcdef *NEW PAGE* e"), ten), "abcdef~|*NEW PAGE*~|e|");
}

TEST(BuilderWordWrap, BreaksAfterASuppressedStretch)
{
    EXPECT_EQ(wrapped(paragraph_of("ab{hide}xyz w{/hide} cd"), ten_always), "ab#####~|cd|");
    EXPECT_EQ(wrapped(paragraph_of("ab {hide}x{/hide} cd"), ten_always), "ab #~|cd|");
}

TEST(BuilderWordWrap, CountsNoColumnsForASuppressedStretch)
{
    EXPECT_EQ(wrapped(paragraph_of("abcdefgh i{hide}long words{/hide} cd"), ten_always),
              "abcdefgh i##########~|cd|");
    EXPECT_EQ(wrapped(paragraph_of("abcdefgh i {hide}x{/hide} cd"), ten_always),
              "abcdefgh i #~|cd|");
}

TEST(BuilderWordWrap, GivesAnEmptyParagraphOneLine)
{
    EXPECT_EQ(wrapped(paragraph_of(""), ten), "|");
    EXPECT_EQ(wrapped(Paragraph{{}, 3, 0, {0, 1}}, ten), "...|");
}

TEST(BuilderWordWrap, DetectsAMisplacedSuppressedStretch)
{
    struct {
        const char *text;
        bool possible;
    } const rows[] = {{"ab{hide}x{/hide} cd", true},
                      {"ab {hide}x{/hide} cd {hide}y{/hide} ef", true},
                      {"{hide}all of it{/hide}", true},
                      {"", true},
                      {"{hide}x{/hide} cd", false},                   // no text before it
                      {"ab{hide}x{/hide}", false},                    // none after it
                      {"ab{hide}x{/hide}cd", false},                  // no space
                      {"ab{hide}x{/hide}  cd", false},                // two of them
                      {"ab{hide}x{/hide} {hide}y{/hide} cd", false}}; // no text between
    for (const auto &row : rows) {
        EXPECT_EQ(misplaced_suppression(paragraph_of(row.text)) == nullptr, row.possible)
            << row.text;
    }
}

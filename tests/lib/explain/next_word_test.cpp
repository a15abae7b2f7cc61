// The length of the next line's first word: what counts as a word, and that remembering a scan
// changes no result.
#include "lib/explain/next_word.h"

#include "tests/lib/explain/explained.h"
#include "tests/model/random.h"

namespace {

using namespace tests;
using namespace pfsdoc;

constexpr auto write = DocumentKind::write_b;
constexpr auto choice = DocumentKind::first_choice_2;

int length_of(DocumentKind kind, const std::string &notation, uint32_t position = 0)
{
    const auto source = source_from(bytes(notation));
    explaining::NextWord word(*source, kind);
    return word.length_at(position);
}

TEST(NextWord, EndsAtASpaceOrALineEnd)
{
    EXPECT_EQ(length_of(write, "'word next'"), 4);
    EXPECT_EQ(length_of(write, "'word' 0D 'next'"), 4);
    EXPECT_EQ(length_of(write, "'word' 0E 'next'"), 4);
    EXPECT_EQ(length_of(write, "'word'"), 4);
    EXPECT_EQ(length_of(write, "'word' 0C 'next'"), 9);
    EXPECT_EQ(length_of(choice, "'word' 0C 'next'"), 4);
    EXPECT_EQ(length_of(choice, "'word' 0D 'next'"), 4);
}

TEST(NextWord, BeginsAfterLeadingSpaces)
{
    EXPECT_EQ(length_of(write, "'   word next'"), 4);
    EXPECT_EQ(length_of(write, "'    ' 0D 'next'"), 0);
    EXPECT_EQ(length_of(write, "0D 'next'"), 0);
    EXPECT_EQ(length_of(write, "'a word'", 1), 4);
    EXPECT_EQ(length_of(write, "'a'", 1), 0);
}

TEST(NextWord, TakesPairsForOneColumn)
{
    EXPECT_EQ(length_of(write, "C1 01 C2 01 'c'"), 3);
    EXPECT_EQ(length_of(write, "C1 0D C2 0E 'c'"), 3);
    EXPECT_EQ(length_of(write, "C1"), 1);
    // Only First Choice recognises a space with attributes.
    EXPECT_EQ(length_of(write, "'a' A0 01 'b'"), 3);
    EXPECT_EQ(length_of(choice, "'a' A0 01 'b'"), 1);
    EXPECT_EQ(length_of(choice, "'a' A0 08 'b'"), 3);
}

TEST(NextWord, TakesChainsForOneColumn)
{
    EXPECT_EQ(length_of(choice, "C1 40 40 40 01 'b' 0C"), 2);
    EXPECT_EQ(length_of(choice, "C1 4C 0C 'b' 0C"), 2);
    EXPECT_EQ(length_of(choice, "'a' C1 40 40"), 1);
}

TEST(NextWord, CountsInSixteenBits)
{
    EXPECT_EQ(length_of(write, "'x'x32768"), -32768);
    EXPECT_EQ(length_of(write, "'x'x65537"), 1);
}

std::string random_text(model::Random &random)
{
    std::string text;
    for (uint32_t i = random.between(1, 300); i > 0; --i) {
        text += random.percent(70) ? random.one_of("ab \x0C\x0D\x0E\x40\x80\xA0\xC1\x48\x4C\x4D")
                                   : random.byte();
    }
    return text;
}

// Queried at one line end after the other, as a walker does, and each time with a new object.
TEST(NextWord, AnswersTheSameWhateverItRemembers)
{
    model::Random random(5);
    for (int i = 0; i < 2000; ++i) {
        const std::string text = random_text(random);
        const auto source = source_from(text);
        const DocumentKind kind = i % 2 == 0 ? DocumentKind::writing_assistant : choice;
        explaining::NextWord remembering(*source, kind);
        for (uint32_t at = 0; at < text.size(); ++at) {
            if (text[at] == '\x0D' || text[at] == '\x0C') {
                explaining::NextWord anew(*source, kind);
                ASSERT_EQ(remembering.length_at(at + 1), anew.length_at(at + 1))
                    << "text " << i << " at " << at;
            }
        }
    }
}

} // namespace

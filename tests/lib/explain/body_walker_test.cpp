// A walker that receives events which contradict its kind's rules: it believes them and marks them
// as disputed. Without this, the absence of disputed spans would prove nothing.
#include "lib/explain/body_walker.h"

#include "lib/explain/choice3_walker.h"
#include "lib/explain/professional_write_walker.h"
#include "lib/explain/wrapped_text_walker.h"

#include "tests/lib/explain/explained.h"
#include "vs_pfs.h"

namespace {

using namespace tests;
using namespace pfsdoc;

constexpr Break paragraph_end{VW_BREAK_PARAGRAPH, 0};
constexpr Break document_end{VW_BREAK_END_OF_DOCUMENT, 0};

struct Told {
    Event event;
    uint32_t position;
};

// The spans of a text that is the whole file, with margins at columns 0 and 10, or of a kind that
// does not use margins.
std::string walked(DocumentKind kind, const std::string &text, const std::vector<Told> &events)
{
    const auto source = source_from(text);
    KeepingSpans sink;
    explaining::SpanBuilder builder(*source, sink);
    std::unique_ptr<explaining::BodyWalker> walker;
    switch (kind) {
    case DocumentKind::professional_write_1:
        walker = explaining::make_professional_write_walker(builder);
        break;
    case DocumentKind::first_choice_3: walker = explaining::make_choice3_walker(builder); break;
    default: walker = explaining::make_wrapped_text_walker(builder, *source, {kind, 0, 10});
    }
    for (const Told &told : events) {
        walker->on_event(told.event, told.position);
    }
    builder.finish();
    return summary(sink.spans, 0);
}

constexpr auto choice = DocumentKind::first_choice_2;

TEST(BodyWalker, DisputesNothingThatFollowsTheRules)
{
    EXPECT_EQ(
        walked(choice, bytes("'ab' 0C 0E"),
               {{Character{'a'}, 1}, {Character{'b'}, 2}, {paragraph_end, 3}, {document_end, 4}}),
        "0+2 text: text\n"
        "2+1 line_end: line end, hard: no word follows in the next line; single spacing\n"
        "3+1 end_mark: end of the document\n");
}

TEST(BodyWalker, DisputesAnotherCharacterThanTheStoredOne)
{
    EXPECT_EQ(walked(choice, "a", {{Character{'x'}, 1}}), "0+1 text: text DISPUTED\n");
}

TEST(BodyWalker, DisputesACharacterThatIsNotReported)
{
    EXPECT_EQ(walked(choice, "ab", {{Character{'b'}, 2}}), "0+2 text: text DISPUTED\n");
}

TEST(BodyWalker, DisputesALineEndThatDoesNotExist)
{
    EXPECT_EQ(walked(choice, "a", {{Character{'a'}, 1}, {paragraph_end, 1}}),
              "0+1 text: text DISPUTED\n");
    EXPECT_EQ(walked(choice, "a", {{Character{'a'}, 1}, {Character{' '}, 1}}),
              "0+1 text: text DISPUTED\n");
}

TEST(BodyWalker, DisputesASoftEndThatShouldBeHard)
{
    EXPECT_EQ(walked(choice, bytes("'a' 0C"), {{Character{'a'}, 1}, {Character{' '}, 2}}),
              "0+1 text: text\n"
              "1+1 line_end: line end, soft: no word follows in the next line; single spacing; "
              "becomes a space DISPUTED\n");
}

TEST(BodyWalker, DisputesAHardEndThatShouldBeSoft)
{
    EXPECT_EQ(walked(choice, bytes("'a' 0C 'longer than the margin'"),
                     {{Character{'a'}, 1}, {paragraph_end, 2}}),
              "0+1 text: text\n"
              "1+1 line_end: line end, hard: the next word would have fitted: 1 + 6 is not beyond "
              "10; single spacing\n");
    EXPECT_EQ(
        walked(choice, bytes("'a' 0C 'longerthan'"), {{Character{'a'}, 1}, {paragraph_end, 2}}),
        "0+1 text: text\n"
        "1+1 line_end: line end, hard: the next word would not have fitted: 1 + 10 is beyond "
        "10; single spacing DISPUTED\n");
}

TEST(BodyWalker, DisputesASoftEndWithoutTheSpaceThatItNeeds)
{
    EXPECT_EQ(
        walked(choice, bytes("'a' 0C 'longerthan'"), {{Character{'a'}, 1}, {Character{'l'}, 3}}),
        "0+1 text: text\n"
        "1+1 line_end: line end, soft: the next word would not have fitted: 1 + 10 is beyond "
        "10; single spacing; the line ends in a space already DISPUTED\n"
        "2+1 text: text\n");
}

TEST(BodyWalker, DisputesALineEndThatContradictsTheLinesHeader)
{
    EXPECT_EQ(
        walked(DocumentKind::first_choice_3, bytes("40 01 0D"), {{Character{' '}, 3}}),
        "0+2 line_type: line header: text that ends its paragraph\n"
        "2+1 line_end: line end, soft: the line's header says so; becomes a space DISPUTED\n");
}

TEST(BodyWalker, DisputesALineEndThatContradictsATypeByte)
{
    EXPECT_EQ(walked(DocumentKind::professional_write_1, bytes("00 'a' 00 0E"),
                     {{Character{'a'}, 2}, {paragraph_end, 2}, {document_end, 4}}),
              "0+1 line_type: line type: goes on in the next line\n"
              "1+1 text: text\n"
              "2+1 line_type: line type: goes on in the next line; the line before ends hard: its "
              "type says that it goes on DISPUTED\n"
              "3+1 end_mark: end of the document\n");
    // No event reports that the line ended.
    EXPECT_EQ(walked(DocumentKind::professional_write_1, bytes("00 'a' 00 0E"),
                     {{Character{'a'}, 2}, {document_end, 4}}),
              "0+1 line_type: line type: goes on in the next line\n"
              "1+1 text: text DISPUTED\n"
              "2+1 line_type: line type: goes on in the next line\n"
              "3+1 end_mark: end of the document\n");
}

// The module decides whether an asterisk opens a command, not the walker.
TEST(BodyWalker, BelievesWhatAnAsteriskIs)
{
    EXPECT_EQ(
        walked(choice, "*N*", {{Character{'*'}, 1}, {Character{'N'}, 2}, {Character{'*'}, 3}}),
        "0+3 text: text\n");
    EXPECT_EQ(walked(choice, "*x*",
                     {{SpecialCharacter{'*', 7}, 1},
                      {SpecialCharacter{'x', 7}, 2},
                      {SpecialCharacter{'*', 7}, 3}}),
              "0+3 command: command\n");
}

} // namespace

// Why a line end is soft or hard: a table for each way of storing lines. partition_test.cpp checks
// that the reasons agree with the module, for any document.
#include "tests/lib/explain/explained.h"

namespace {

using namespace tests;
using namespace pfsdoc;

// The words of the line ends, each on a line.
std::string line_ends(const std::string &document)
{
    std::string words;
    for (const Span &span : spans_of(document)) {
        if (span.line_end != LineEnd::none) {
            words.append(span.words).append("\n");
            EXPECT_FALSE(span.disputed);
        }
    }
    return words;
}

struct Case {
    const char *body; // in the notation for bytes
    const char *words;
};

TEST(LineEnds, OfWriteAskWhetherTheNextWordFits)
{
    const Case cases[] = {
        {"0D 'x'x60 0D 'abcd' 0D 0E",
         "line end, hard: the next word would have fitted: 60 + 4 is not beyond 64\n"
         "line end, hard: no word follows in the next line\n"},
        {"0D 'x'x60 0D 'abcde' 0D 0E",
         "line end, soft: the next word would not have fitted: 60 + 5 is beyond 64; becomes a "
         "space\n"
         "line end, hard: no word follows in the next line\n"},
        {"0D 'x'x59 ' ' 0D 'abcde' 0E",
         "line end, soft: the next word would not have fitted: 60 + 5 is beyond 64; the line ends "
         "in a space already\n"},
        {"0D 'x'x60 0D '   abcde fg' 0E",
         "line end, soft: the next word would not have fitted: 60 + 5 is beyond 64; becomes a "
         "space\n"},
        {"0D 'x'x60 0D E1 01 E2 01 C3 02 'd' 0E",
         "line end, hard: the next word would have fitted: 60 + 4 is not beyond 64\n"},
        {"0D 0D 'a' 0D 0D 0E", "line end, hard: the line is empty\n"
                               "line end, hard: no word follows in the next line\n"
                               "line end, hard: the line is empty\n"},
        {"0D '   ' 0D 'abc' 0E",
         "line end, hard: the next word would have fitted: 3 + 3 is not beyond 64\n"},
        {"0D '*PAGE*' 0D 'abc' 0E",
         "line end, hard: the next word would have fitted: 6 + 3 is not beyond 64\n"},
    };
    for (const Case &entry : cases) {
        EXPECT_EQ(line_ends(write_document(2, bytes(entry.body))), entry.words) << entry.body;
    }
}

// The lookahead takes bytes from 0x80 up for pairs, the text from 0xC0 up only.
TEST(LineEnds, OfWritingAssistantLookAheadInPairs)
{
    EXPECT_EQ(line_ends(write_document(3, bytes("0D 'x'x60 0D 80 'bcdef' 0E"))),
              "line end, soft: the next word would not have fitted: 60 + 5 is beyond 64; becomes "
              "a space\n");
    EXPECT_EQ(line_ends(write_document(3, bytes("0D 'x'x60 0D 80 0D 'ab' 0D 0E"))),
              "line end, hard: the next word would have fitted: 60 + 3 is not beyond 64\n"
              "line end, hard: the next word would have fitted: 1 + 2 is not beyond 64\n"
              "line end, hard: no word follows in the next line\n");
}

TEST(LineEnds, OfFirstChoiceGiveTheSpacingToo)
{
    const Case cases[] = {
        {"'x'x57 0C 'abcd' 0D 0E",
         "line end, soft: the next word would not have fitted: 57 + 4 is beyond 60; single "
         "spacing; becomes a space\n"
         "line end, hard: no word follows in the next line; double spacing\n"},
        {"'x'x56 0D 'abcd' 0E",
         "line end, hard: the next word would have fitted: 56 + 4 is not beyond 60; double "
         "spacing\n"},
        {"0C 0D 0E", "line end, hard: the line is empty; single spacing\n"
                     "line end, hard: the line is empty; double spacing\n"},
        // Attribute bytes that are chained over a line end.
        {"'x'x58 0C E1 40 4C 0C 'bc' 0C 0E",
         "line end, soft: the next word would not have fitted: 58 + 3 is beyond 60; single "
         "spacing; becomes a space\n"
         "line end, hard: the next word would have fitted: 1 + 2 is not beyond 60; single "
         "spacing\n"
         "line end, hard: no word follows in the next line; single spacing\n"},
    };
    for (const Case &entry : cases) {
        EXPECT_EQ(line_ends(choice_document('2', bytes(entry.body))), entry.words) << entry.body;
    }
}

TEST(LineEnds, OfFirstChoiceLookAheadEvenForAnEmptyLineWithinMargins)
{
    const std::string document =
        choice_document('2', bytes("0C 'abcdef' 0C 0E"), {choice_margins(5, 10)});
    EXPECT_EQ(line_ends(document),
              "line end, soft: the next word would not have fitted: 5 + 6 is beyond 10; single "
              "spacing; becomes a space\n"
              "line end, hard: no word follows in the next line; single spacing\n");
}

TEST(LineEnds, OfProfessionalWriteAreDeterminedByTheNextTypeByte)
{
    EXPECT_EQ(
        line_ends(write_document(4, bytes("01 'one' 00 'two' 02 'three' 03 '   ' 01 01 0E"))),
        "line type: goes on in the next line; the line before ends hard: its type says so\n"
        "line type: goes on, may hide text; the line before ends soft: its type says that it goes "
        "on, and becomes a space\n"
        "line type: ends its paragraph, single spacing; the line before ends soft: its type says "
        "that it goes on, and becomes a space\n"
        "line type: ends its paragraph, single spacing; the line before ends hard: its type says "
        "so\n");
    EXPECT_EQ(line_ends(write_document(4, bytes("'no type' 00 01 0E"))),
              "line type: goes on in the next line; the line before ends soft: it has no type, and "
              "becomes a space\n"
              "line type: ends its paragraph, single spacing; the line before ends hard: it has no "
              "text\n");
}

TEST(LineEnds, OfFirstChoice3AreDeterminedByTheLinesHeader)
{
    EXPECT_EQ(line_ends(choice_document(
                  '3', bytes("00 'soft' 0D 40 01 'hard' 0D 40 41 01 'three' 0D 00 'a ' 0D 0E"))),
              "line end, soft: the line's header says that it goes on; becomes a space\n"
              "line end, hard: the line's header says so\n"
              "line end, soft: the line's header says that it goes on; becomes a space\n"
              "line end, soft: the line's header says that it goes on; the line ends in a space "
              "already\n");
}

// The length of a header chain is counted in 16 bits.
TEST(LineEnds, OfFirstChoice3CountLongChainsAsTheModuleDoes)
{
    EXPECT_EQ(line_ends(choice_document('3', bytes("40x65537 01 'x' 0D 0E"))),
              "line end, hard: the line's header says so\n");
    EXPECT_EQ(line_ends(choice_document('3', bytes("40x65538 01 'x' 0D 0E"))),
              "line end, soft: the line's header says that it goes on; becomes a space\n");
}

// Counts the bytes requested, to distinguish linear work from quadratic.
class CountingSource final : public ByteSource {
public:
    explicit CountingSource(const std::string &text) : source_(source_from(text)) {}

    std::optional<uint32_t> read_at(uint32_t position, std::span<uint8_t> destination) override
    {
        const std::optional<uint32_t> count = source_->read_at(position, destination);
        read += count.value_or(0);
        return count;
    }
    uint32_t size() const override
    {
        return source_->size();
    }

    uint64_t read = 0;

private:
    std::unique_ptr<MemorySource> source_;
};

uint64_t bytes_read_for(const std::string &document)
{
    CountingSource source(document);
    const DocumentKind kind = identify(source).value().kind;
    KeepingSpans sink;
    EXPECT_TRUE(explain(linked_module(), source, kind, sink).ok());
    return source.read;
}

std::string repeated(const std::string &text, int count)
{
    std::string all;
    for (int i = 0; i < count; ++i) {
        all += text;
    }
    return all;
}

// Each line end begins a word that, for the lookahead, extends to the end of the file.
TEST(LineEnds, CostTheirShareOnlyWhereEveryWordReachesToTheEnd)
{
    const std::string hostile[] = {
        write_document(3, bytes("0D") + repeated(bytes("80 0D"), 100000) + bytes("0E")),
        choice_document('2', bytes("'x' 0C") + repeated(bytes("E1 40 40 0C"), 70000) + bytes("0E")),
    };
    for (const std::string &document : hostile) {
        EXPECT_LT(bytes_read_for(document), 12 * document.size());
    }
}

} // namespace

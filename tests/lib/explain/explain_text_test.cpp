// What a line of the annotated dump looks like.
#include "lib/explain/explain_text.h"

#include "tests/lib/explain/explained.h"

#include <sstream>

namespace {

using namespace tests;
using namespace pfsdoc;

std::string dump(const Span &span, explaining::Colours colours = explaining::Colours::off,
                 const CodePage &page = CodePage::ibm437())
{
    StringOutput output;
    explaining::ExplainTextWriter(output, page, colours, 200).span(span);
    return output.text;
}

// As in a window of so many columns.
std::string narrow_dump(const Span &span, std::size_t columns = explaining::usual_columns,
                        explaining::Colours colours = explaining::Colours::off)
{
    StringOutput output;
    explaining::ExplainTextWriter(output, CodePage::ibm437(), colours, columns).span(span);
    return output.text;
}

// Characters, with a line's escape sequences left out.
std::size_t columns_of(const std::string &line)
{
    std::size_t columns = 0;
    bool is_shown = true;
    for (const char byte : line) {
        is_shown = is_shown && byte != '\x1B';
        columns += is_shown && (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U ? 1 : 0;
        is_shown = is_shown || byte == 'm';
    }
    return columns;
}

TEST(ExplainText, HasPositionBytesGlyphsAndWords)
{
    EXPECT_EQ(dump(span_with(SpanKind::field, bytes("0A 00"), "left margin: column 10")),
              "     100  0A 00                                            |\u25D9 |"
              "                left margin: column 10\n");
}

TEST(ExplainText, GivesWordsOnTheFirstLineOnly)
{
    EXPECT_EQ(dump(span_with(SpanKind::unused, "0123456789abcdefXY", "not used")),
              "     100  30 31 32 33 34 35 36 37 38 39 61 62 63 64 65 66  |0123456789abcdef|"
              "  not used\n"
              "     116  58 59                                            |XY|\n");
}

TEST(ExplainText, GivesLinesThatAreAlikeOnce)
{
    const std::string line = "  2E 2E 2E 2E 2E 2E 2E 2E 2E 2E 2E 2E 2E 2E 2E 2E  "
                             "|................|";
    EXPECT_EQ(dump(span_with(SpanKind::padding, std::string(32, '.'), "dots")),
              "     100" + line + "  dots\n     116" + line + "\n");
    EXPECT_EQ(dump(span_with(SpanKind::padding, std::string(49, '.'), "dots")),
              "     100" + line +
                  "  dots\n"
                  "          the same 2 times more\n"
                  "     148  2E                                               |.|\n");
}

TEST(ExplainText, ShowsTheCharactersOfAttributedText)
{
    Span span = span_with(SpanKind::attributed_text,
                          bytes("C1 48 04 C2 48 04 C3 48 04 "
                                "C4 48 04 C5 48 04 C6 48 04"),
                          "text");
    span.characters = "ABCDEF";
    span.attribute_bytes = 2;
    EXPECT_EQ(dump(span), "     100  C1 48 04 C2 48 04 C3 48 04 C4 48 04 C5 48 04     |ABCDE|"
                          "             text\n"
                          "     115  C6 48 04                                         |F|\n");
}

TEST(ExplainText, MarksWhatIsDisputed)
{
    Span span = span_with(SpanKind::line_end, "\r", "line end, soft");
    span.disputed = true;
    EXPECT_NE(dump(span).find("line end, soft (disputed)\n"), std::string::npos);
}

TEST(ExplainText, FillsWordsBesideTheBytes)
{
    const std::string words = "line end, hard: the next word would have fitted: 9 + 10 is not "
                              "beyond 64";
    EXPECT_EQ(narrow_dump(span_with(SpanKind::line_end, "\r", words)),
              "     100  0D                       |\u266A|         line end, hard: the next word\n"
              "                                               would have fitted: 9 + 10 is not\n"
              "                                               beyond 64\n");
    EXPECT_EQ(narrow_dump(span_with(SpanKind::unused, "0123456789abcdefXY", words)),
              "     100  30 31 32 33 34 35 36 37  |01234567|  line end, hard: the next word\n"
              "     108  38 39 61 62 63 64 65 66  |89abcdef|  would have fitted: 9 + 10 is not\n"
              "     116  58 59                    |XY|        beyond 64\n");
}

TEST(ExplainText, FitsTheWindow)
{
    for (const std::string &words : {std::string(500, 'x'),
                                     std::string("a word and the next one, ") +
                                         std::string(100, 'y') + " and so on, with \u266A in it",
                                     std::string(250, ' ')}) {
        Span span = span_with(SpanKind::end_mark, std::string(100, '.') + "abcdefghijklm", words);
        span.disputed = true;
        for (const std::size_t columns : {70U, 80U, 110U, 111U, 112U, 150U}) {
            for (const auto colours : {explaining::Colours::off, explaining::Colours::on}) {
                std::istringstream lines(narrow_dump(span, columns, colours));
                for (std::string line; std::getline(lines, line);) {
                    EXPECT_LE(columns_of(line), columns) << line;
                }
            }
        }
    }
}

TEST(ExplainText, KeepsRoomForWordsInTheSmallestWindow)
{
    EXPECT_EQ(narrow_dump(span_with(SpanKind::line_end, "\r", "line end, soft"), 1),
              "     100  0D                       |\u266A|         line end, soft\n");
}

TEST(ExplainText, ColoursWordsOnlyWhenAsked)
{
    const Span end = span_with(SpanKind::end_mark, "\x0E", "end of the document");
    EXPECT_EQ(dump(end).find('\x1B'), std::string::npos);
    EXPECT_NE(dump(end, explaining::Colours::on).find("\x1B[31mend of the document\x1B[0m\n"),
              std::string::npos);
    const Span text = span_with(SpanKind::text, "", "text");
    EXPECT_EQ(dump(text, explaining::Colours::on).find('\x1B'), std::string::npos);
}

TEST(ExplainText, ShowsBytesInTheDocumentsCharacterSet)
{
    const Span span = span_with(SpanKind::header_text, "\xE9", "text");
    const Result<CodePage> latin = CodePage::named("ISO-8859-1");
    ASSERT_TRUE(latin.ok());
    EXPECT_NE(dump(span).find("|\u0398|"), std::string::npos);
    EXPECT_NE(dump(span, explaining::Colours::off, latin.value()).find("|\u00E9|"),
              std::string::npos);
}

// Whatever a document holds, a terminal gets nothing but printable characters and line ends.
TEST(ExplainText, HandsOnNoControlCharacter)
{
    std::string all;
    for (int byte = 0; byte < 256; ++byte) {
        all.push_back(static_cast<char>(byte));
    }
    for (const SpanKind kind : {SpanKind::text, SpanKind::unused, SpanKind::command}) {
        Span span = span_with(kind, all, "words");
        span.characters = all;
        for (const char byte : dump(span)) {
            const auto value = static_cast<unsigned char>(byte);
            EXPECT_TRUE(value == '\n' || (value >= 0x20 && value != 0x7F)) << unsigned{value};
        }
    }
}

} // namespace

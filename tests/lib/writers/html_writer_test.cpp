// Documents as HTML: the result for each block, escaping, and the cost of hostile documents.
// tests/judges/html.sh checks what browsers make of it.
#include "lib/writers/html_style.h"
#include "lib/writers/html_text.h"
#include "tests/lib/writers/written.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace {

using namespace pfsdoc;
using namespace tests;

std::string html(const TypedEvents &events, const WriterOptions &options = {})
{
    return written("html", events, options).text;
}

// Between the tags of the body.
std::string body(const TypedEvents &events, const WriterOptions &options = {})
{
    const std::string page = html(events, options);
    const std::size_t begin = page.find("<body>\n") + 7;
    return page.substr(begin, page.find("</body>") - begin);
}

// Between the tags of the main element: the document's own body.
std::string main_part(const TypedEvents &events, const WriterOptions &options = {})
{
    const std::string all = body(events, options);
    const std::size_t begin = all.find("<main>\n") + 7;
    return all.substr(begin, all.find("</main>\n") - begin);
}

// A line as a paragraph of 20 columns from the page's left edge.
std::string line(std::string_view bytes)
{
    return main_part(TypedEvents().margins(0, 19).line(bytes));
}

std::string html_line(const TypedEvents &events, std::size_t number)
{
    const std::string page = html(events);
    std::size_t begin = 0;
    for (; number > 1; --number) {
        begin = page.find('\n', begin) + 1;
    }
    return page.substr(begin, page.find('\n', begin) - begin);
}

WriterOptions with_commands()
{
    WriterOptions options;
    options.commands = true;
    return options;
}

// ------------------------------------------------------------------------------ page ---

TEST(HtmlPage, HoldsEverythingItNeedsAndAllowsNothingElse)
{
    const std::string head = "<!DOCTYPE html>\n"
                             "<html style=\"--left:9;--width:61\">\n"
                             "<head>\n"
                             "<meta charset=\"utf-8\">\n"
                             "<meta http-equiv=\"Content-Security-Policy\" content=\""
                             "default-src 'none'; style-src-elem 'sha256-" +
                             std::string(writers::html_stylesheet_hash) +
                             "'; style-src-attr 'unsafe-inline'; base-uri 'none'; "
                             "form-action 'none'\">\n"
                             "<meta name=\"viewport\" content=\"width=device-width, "
                             "initial-scale=1\">\n"
                             "<meta name=\"color-scheme\" content=\"light dark\">\n"
                             "<meta name=\"generator\" content=\"pfsdoc\">\n"
                             "<title>LETTER</title>\n"
                             "<style>" +
                             std::string(writers::html_stylesheet) +
                             "</style>\n"
                             "</head>\n";
    const std::string rest = "<body>\n"
                             "<main>\n"
                             "<p>Dear Sir</p>\n"
                             "</main>\n"
                             "</body>\n"
                             "</html>\n";
    EXPECT_EQ(html(TypedEvents().margins(9, 69).line("Dear Sir")), head + rest);
}

TEST(HtmlPage, IsWholeForAnEmptyDocument)
{
    EXPECT_EQ(html_line({}, 2), "<html style=\"--left:9;--width:61\">");
    EXPECT_EQ(body({}), "<main>\n</main>\n");
}

TEST(HtmlPage, HasTheMarginsOfTheBodysFirstParagraph)
{
    TypedEvents events;
    events.margins(9, 69).header().line("Header").close_block().margins(4, 14).line("Body");
    EXPECT_EQ(html_line(events, 2), "<html style=\"--left:4;--width:11\">");
}

struct TitleCase {
    std::string_view title;
    std::string_view element;
};

TEST(HtmlPage, HasAnEscapedTitleOrElseTheKindsName)
{
    for (const TitleCase &one : std::initializer_list<TitleCase>{
             {"R&D </title><script>", "<title>R&amp;D &lt;/title&gt;&lt;script&gt;</title>"},
             {"\"Fran\xC3\xA7ois\"", "<title>\"Fran\xC3\xA7ois\"</title>"},
             {"", "<title>Professional Write 1</title>"}}) {
        StringOutput output;
        const DocumentInfo info{DocumentKind::professional_write_1, std::string(one.title)};
        auto writer = find_format("html")->make_writer(output, info, {});
        ASSERT_TRUE(writer.ok());
        writer.value()->end_of_document();
        EXPECT_NE(output.text.find(one.element), std::string::npos) << one.title;
    }
}

// --------------------------------------------------------------------------- escaping ---

struct LineCase {
    std::string_view bytes;
    std::string_view html;
};

void expect_lines(std::initializer_list<LineCase> cases)
{
    for (const LineCase &one : cases) {
        EXPECT_EQ(line(one.bytes), "<p>" + std::string(one.html) + "</p>\n");
    }
}

TEST(HtmlEscaping, IsOfWhatMeansSomethingInText)
{
    expect_lines({
        {"a & b", "a &amp; b"},
        {"a < b > c", "a &lt; b &gt; c"},
        {"R&D", "R&amp;D"},
        {"&amp;", "&amp;amp;"},
        {"say \"yes\"", "say \"yes\""},
        {"it's", "it's"},
        {"-->", "<span class=\"word\">--&gt;</span>"},
        {"</main></p>", "<span class=\"word\">&lt;/main&gt;&lt;/p&gt;</span>"},
        {"<script>", "&lt;script&gt;"},
    });
}

TEST(HtmlEscaping, LeavesNoControlCharacterRaw)
{
    std::string bytes;
    for (int byte = 0; byte < 256; ++byte) {
        bytes.push_back(static_cast<char>(byte));
        bytes.push_back(' ');
    }
    const std::string written = line(bytes);
    EXPECT_EQ(std::count(written.begin(), written.end(), '\t'), 1);
    const bool any_control = std::any_of(written.begin(), written.end() - 1, [](char byte) {
        const auto value = static_cast<unsigned char>(byte);
        return (value < 0x20 && byte != '\t') || value == 0x7F;
    });
    EXPECT_FALSE(any_control);
    EXPECT_NE(written.find("\xE2\x98\xBA"), std::string::npos); // byte 1, a smiling face
}

TEST(HtmlEscaping, ReportsBytesThatTheCharacterSetLacks)
{
    const auto page = CodePage::named("ISO-8859-7");
    ASSERT_TRUE(page.ok());
    WriterOptions options;
    options.code_page = &page.value();
    const Written result = written("html", TypedEvents().line("a \xFF b"), options);
    EXPECT_NE(result.text.find("<p>a \xEF\xBF\xBD b</p>"), std::string::npos);
    ASSERT_EQ(result.losses.size(), 1U);
    EXPECT_EQ(result.losses[0].loss, Loss::character);
}

TEST(HtmlText, KeepsSpacesUnchanged)
{
    expect_lines({
        {"  a   b  ", "  a   b  "},
        {std::string_view("a\0b", 3), "a b"},
        {"   ", "   "},
    });
}

// ---------------------------------------------------------------------- line breaking ---

TEST(HtmlText, KeepsWordsWholeThatABrowserWouldBreak)
{
    expect_lines({
        {"a mother-in-law.", "a <span class=\"word\">mother-in-law.</span>"},
        {"and/or", "<span class=\"word\">and/or</span>"},
        {"ago--never mind", "<span class=\"word\">ago--never</span> mind"},
        {"\"--yes", "<span class=\"word\">\"--yes</span>"},
        {"what?no", "<span class=\"word\">what?no</span>"},
        {"#(1)", "<span class=\"word\">#(1)</span>"},
        {"7\xAB", "<span class=\"word\">7\xC2\xBD</span>"},
        {"50%", "<span class=\"word\">50%</span>"},
    });
}

TEST(HtmlText, LeavesOtherWordsAlone)
{
    expect_lines({
        {"What? \"No!\" (See f(x).)", "What? \"No!\" (See f(x).)"},
        {"a - b", "a - b"},
        {"well- and", "well- and"},
        {"caf\x82s, 1,234.5", "caf\xC3\xA9s, 1,234.5"},
        {"\xAB pound", "\xC2\xBD pound"},
        {"a@b.org: x='y';", "a@b.org: x='y';"},
    });
}

TEST(HtmlText, LetsAWordBeBrokenThatIsLongerThanALine)
{
    TypedEvents events;
    events.margins(0, 9).line("go mother-law").line("go mother-laws");
    EXPECT_EQ(main_part(events), "<p>go <span class=\"word\">mother-law</span></p>\n"
                                 "<p>go mother-laws</p>\n");
}

TEST(HtmlText, KeepsAWordWholeOverAChangeOfAttributes)
{
    TypedEvents events;
    events.margins(0, 19).text("a ").attribute(bold, true).text("mother");
    events.attribute(bold, false).text("-in-").attribute(italic, true).line("law too");
    EXPECT_EQ(main_part(events), "<p>a <span class=\"word\"><b>mother</b>-in-<i>law</i></span>"
                                 "<i> too</i></p>\n");
}

// ------------------------------------------------------------------------- attributes ---

struct AttributeCase {
    int32_t code;
    std::string_view html;
};

TEST(HtmlAttributes, AreElements)
{
    for (const AttributeCase &one : {AttributeCase{bold, "a<b>b</b>c"},
                                     {italic, "a<i>b</i>c"},
                                     {underline, "a<u>b</u>c"},
                                     {subscript, "a<sub>b</sub>c"},
                                     {superscript, "a<sup>b</sup>c"},
                                     {7, "abc"}}) {
        TypedEvents events;
        events.margins(0, 19).text("a").attribute(one.code, true).text("b");
        events.attribute(one.code, false).line("c");
        EXPECT_EQ(main_part(events), "<p>" + std::string(one.html) + "</p>\n");
    }
}

TEST(HtmlAttributes, NestWhateverTheirOrder)
{
    TypedEvents events;
    events.margins(0, 19).attribute(superscript, true).attribute(bold, true);
    events.attribute(subscript, true).attribute(underline, true).attribute(italic, true);
    events.line("all");
    EXPECT_EQ(main_part(events), "<p><b><i><u><sub><sup>all</sup></sub></u></i></b></p>\n");
}

TEST(HtmlAttributes, OverlapWithoutOverlappingElements)
{
    TypedEvents events;
    events.margins(0, 19).attribute(bold, true).text("bold ").attribute(italic, true);
    events.text("both ").attribute(bold, false).text("italic ").attribute(italic, false);
    events.line("none");
    EXPECT_EQ(main_part(events), "<p><b>bold <i>both </i></b><i>italic </i>none</p>\n");
}

TEST(HtmlAttributes, GoOnInTheNextParagraph)
{
    TypedEvents events;
    events.margins(0, 19).attribute(underline, true).line("One").line("").line("Two");
    EXPECT_EQ(main_part(events), "<p><u>One</u></p>\n"
                                 "<p><br></p>\n"
                                 "<p><u>Two</u></p>\n");
}

TEST(HtmlAttributes, LeaveNoEmptyElements)
{
    TypedEvents events;
    events.margins(0, 19).text("a").attribute(bold, true).attribute(bold, false);
    events.attribute(italic, true).special("*HIDDEN*").attribute(italic, false).line("b");
    EXPECT_EQ(main_part(events), "<p>ab</p>\n");
}

// ------------------------------------------------------------------------------- tabs ---

std::string tab(std::size_t columns, std::string_view blanks = "")
{
    return "<span class=\"tab\" style=\"--w:" + std::to_string(columns) + "\">\t" +
           std::string(blanks) + "</span>";
}

std::string tabbed(std::string_view bytes)
{
    TypedEvents events;
    events.margins(0, 19).tabs({5, 10}, {15}).line(bytes);
    return main_part(events);
}

struct TabCase {
    std::string_view bytes;
    std::string html;
};

TEST(HtmlTabs, AreAsWideAsTheWayToTheirStop)
{
    for (const TabCase &one : std::vector<TabCase>{
             {"\ta", tab(5) + "a"},
             {"ab\tc", "ab" + tab(3) + "c"},
             {"ab \tc", "ab " + tab(2) + "c"},
             {"abcde\tf", "abcde" + tab(5) + "f"},
             {"\t\ta", tab(5) + tab(5) + "a"},
             {"a\t b", "a" + tab(4) + " b"},
             // After the last stop, multiples of eight.
             {"0123456789012345\ta", "0123456789012345" + tab(4) + "a"},
         }) {
        EXPECT_EQ(tabbed(one.bytes), "<p>" + one.html + "</p>\n") << one.bytes;
    }
}

TEST(HtmlTabs, AlignNumbersAtADecimalStop)
{
    for (const TabCase &one : std::vector<TabCase>{
             {"\t\t\t1.25", tab(5) + tab(5) + tab(4) + "1.25"},
             {"\t\t\t12.5", tab(5) + tab(5) + tab(3) + "12.5"},
             {"\t\t\t123", tab(5) + tab(5) + tab(2) + "123"},
             {"\t\t\t  7", tab(5) + tab(5) + tab(4, "  ") + "7"},
             {"\t\t\t\ta", tab(5) + tab(5) + tab(5) + tab(1) + "a"},
             {"\t\t\t", tab(5) + tab(5) + tab(5)},
             // No room before the point: a space after the text.
             {"0123456789\t1234567.", "0123456789" + tab(1) + "1234567."},
         }) {
        EXPECT_EQ(tabbed(one.bytes), "<p>" + one.html + "</p>\n") << one.bytes;
    }
}

TEST(HtmlTabs, CountFromWhereTheirLineWasBroken)
{
    // The second line begins with "delta".
    EXPECT_EQ(tabbed("alpha beta gamma delta\te"),
              "<p>alpha beta gamma delta" + tab(5) + "e</p>\n");
    // The word after the tab goes to the second line, the tab stays.
    EXPECT_EQ(tabbed("alpha\tgamma delta\te"),
              "<p>alpha" + tab(5) + "gamma delta" + tab(5) + "e</p>\n");
}

TEST(HtmlTabs, ThatEndTheirLineTakeWhatIsLeftOfIt)
{
    TypedEvents events;
    events.margins(0, 19).line("01234567 01234567\t  next\tx");
    EXPECT_EQ(main_part(events),
              "<p>01234567 01234567" + tab(3, "  ") + "next" + tab(4) + "x</p>\n");
}

TEST(HtmlTabs, ThatWouldLeaveAnEmptyLineHaveNoWidth)
{
    EXPECT_EQ(tabbed("\t\t01234567890123"), "<p>" + tab(0) + tab(0) + "01234567890123</p>\n");
}

TEST(HtmlTabs, GoFromTheIndentsOn)
{
    TypedEvents events;
    events.margins(10, 29).tabs({15, 20}).text("1.\tone two three four\tx").indents(5, 2);
    events.paragraph();
    EXPECT_EQ(main_part(events),
              "<p style=\"--i:5;--f:2\">1." + tab(1) + "one two three four" + tab(1) + "x</p>\n");
}

TEST(HtmlTabs, AroundAlignedTextHaveNoWidth)
{
    TypedEvents events;
    events.margins(0, 19).tabs({5, 10}).alignment(VW_ALIGN_RIGHT).line(" \t  a\tb\t ").line("\t");
    EXPECT_EQ(main_part(events), "<p class=\"right\"><span class=\"tab\"> </span>" + tab(0, "  ") +
                                     "a" + tab(2) + "b" + tab(0) +
                                     "<span class=\"tab\"> </span></p>\n"
                                     "<p class=\"right\">" +
                                     tab(0) + "</p>\n");
}

TEST(HtmlTabs, AreInsideTheirAttributes)
{
    TypedEvents events;
    events.margins(0, 19).tabs({5}).text("a").attribute(underline, true).text("\tb");
    events.attribute(underline, false).line("c");
    EXPECT_EQ(main_part(events), "<p>a<u>" + tab(4) + "b</u>c</p>\n");
}

// ----------------------------------------------------------------- paragraphs' looks ---

TEST(HtmlParagraph, HasItsIndents)
{
    TypedEvents events;
    events.margins(9, 69).text("a").indents(5, 0).paragraph();
    events.text("b").indents(0, 5).paragraph();
    events.text("c").indents(2, 3).paragraph();
    events.line("d");
    EXPECT_EQ(main_part(events), "<p style=\"--i:5\">a</p>\n"
                                 "<p style=\"--f:5\">b</p>\n"
                                 "<p style=\"--i:2;--f:3\">c</p>\n"
                                 "<p>d</p>\n");
}

TEST(HtmlParagraph, HasMarginsThatDifferFromThePages)
{
    TypedEvents events;
    events.margins(9, 69).line("a").margins(4, 69).line("b").margins(9, 64).line("c");
    events.margins(9, 69).line("d");
    EXPECT_EQ(main_part(events), "<p>a</p>\n"
                                 "<p style=\"--left:4;--width:66\">b</p>\n"
                                 "<p style=\"--width:56\">c</p>\n"
                                 "<p>d</p>\n");
}

TEST(HtmlParagraph, HasItsAlignment)
{
    TypedEvents events;
    events.margins(9, 69).alignment(VW_ALIGN_RIGHT).line("right");
    events.alignment(VW_ALIGN_CENTRE).line("middle");
    events.alignment(VW_ALIGN_LEFT).line("left");
    events.special("*CENTER*").line("title");
    EXPECT_EQ(main_part(events), "<p class=\"right\">right</p>\n"
                                 "<p class=\"center\">middle</p>\n"
                                 "<p>left</p>\n"
                                 "<p class=\"center\">title</p>\n");
}

TEST(HtmlParagraph, HidesOuterSpacesWhereTheyWouldMoveTheText)
{
    TypedEvents events;
    events.margins(9, 69).alignment(VW_ALIGN_CENTRE).line("  a  b ").line("   ");
    EXPECT_EQ(main_part(events), "<p class=\"center\"><span class=\"tab\">  </span>a  b"
                                 "<span class=\"tab\"> </span></p>\n"
                                 "<p class=\"center\"><span class=\"tab\">   </span></p>\n");
}

TEST(HtmlParagraph, HasDoubleSpacing)
{
    TypedEvents events;
    events.margins(9, 69).spacing(VW_DOUBLE_SPACING).line("a").line("");
    events.alignment(VW_ALIGN_RIGHT).line("b").spacing(VW_SINGLE_SPACING).line("c");
    EXPECT_EQ(main_part(events), "<p class=\"double\">a</p>\n"
                                 "<p class=\"double\"><br></p>\n"
                                 "<p class=\"right double\">b</p>\n"
                                 "<p class=\"right\">c</p>\n");
}

TEST(HtmlParagraph, LosesNothingOfAllThat)
{
    TypedEvents events;
    events.margins(9, 69).tabs({20}).header().line("H").close_block();
    events.spacing(VW_DOUBLE_SPACING).attribute(bold, true).text("a\tb").indents(1, 2).paragraph();
    events.margins(4, 60).page_break().alignment(VW_ALIGN_RIGHT).line("c");
    EXPECT_TRUE(written("html", events).losses.empty());
}

// ----------------------------------------------------------------------- page breaks ---

TEST(HtmlPageBreak, IsBetweenParagraphs)
{
    TypedEvents events;
    events.margins(0, 19).line("a").page_break().page_break().line("b");
    EXPECT_EQ(main_part(events), "<p>a</p>\n"
                                 "<hr class=\"page\">\n"
                                 "<hr class=\"page\">\n"
                                 "<p>b</p>\n");
}

TEST(HtmlPageBreak, MayBeTheFirstOrTheLastOrAll)
{
    EXPECT_EQ(main_part(TypedEvents().page_break().line("a").page_break()),
              "<hr class=\"page\">\n<p>a</p>\n<hr class=\"page\">\n");
    EXPECT_EQ(main_part(TypedEvents().page_break()), "<hr class=\"page\">\n");
}

TEST(HtmlPageBreak, CutsAParagraphInTwo)
{
    TypedEvents events;
    events.margins(0, 19).tabs({5}).text("one ").attribute(bold, true).text("two").page_break();
    events.text("  three\tx").indents(3, 5).paragraph();
    EXPECT_EQ(main_part(events), "<p style=\"--i:3;--f:5\">one <b>two</b></p>\n"
                                 "<hr class=\"page\">\n"
                                 "<p style=\"--i:3;--f:3\"><b><span class=\"tab\">  </span>three" +
                                     tab(8) + "x</b></p>\n");
}

TEST(HtmlPageBreak, LeavesNoParagraphOfItsCommandAlone)
{
    EXPECT_EQ(main_part(TypedEvents().line("a").new_page().paragraph().line("b")),
              "<p>a</p>\n<hr class=\"page\">\n<p>b</p>\n");
    EXPECT_EQ(main_part(TypedEvents().text("a").new_page().paragraph()),
              "<p>a</p>\n<hr class=\"page\">\n");
}

TEST(HtmlPageBreak, LeavesNoTraceIfItIsNotWanted)
{
    WriterOptions options;
    options.page_breaks = false;
    TypedEvents events;
    events.page_break().text("one ").page_break().text("two").paragraph().page_break();
    EXPECT_EQ(main_part(events, options), "<p>one two</p>\n");
}

// ------------------------------------------------------------------------- commands ----

TEST(HtmlCommand, IsHiddenAndCountedUnlessItTakesEffect)
{
    TypedEvents events;
    events.special("*RIGHT*").text("a").special("*PRINTER 15*").line(" b");
    const Written result = written("html", events);
    EXPECT_NE(result.text.find("<p class=\"right\">a b</p>"), std::string::npos);
    ASSERT_EQ(result.losses.size(), 1U);
    EXPECT_EQ(result.losses[0].loss, Loss::command);
    EXPECT_EQ(result.losses[0].count, 1U);
}

TEST(HtmlCommand, IsTextIfItIsAskedFor)
{
    TypedEvents events;
    events.margins(0, 59).text("a").special("*P <1>*").line("b");
    EXPECT_EQ(main_part(events, with_commands()), "<p>a*P &lt;1&gt;*b</p>\n");
}

TEST(HtmlCommand, ThatIsCutShowsIt)
{
    const std::string command =
        "*" + std::string(reading::ParagraphCollector::max_command_bytes, 'x');
    const std::string shown =
        main_part(TypedEvents().special(command).paragraph(), with_commands());
    EXPECT_EQ(shown.substr(shown.size() - 13), "xxxxx...</p>\n");
}

// --------------------------------------------------------------- headers and footers ---

TEST(HtmlRunningLines, SurroundTheBody)
{
    TypedEvents events;
    events.margins(9, 69).header().alignment(VW_ALIGN_CENTRE).line("Title");
    events.alignment(VW_ALIGN_RIGHT).line("Part").close_block();
    events.footer().attribute(bold, true).line("Foot & more").attribute(bold, false);
    events.close_block().alignment(VW_ALIGN_LEFT).line("Body");
    EXPECT_EQ(body(events), "<header>\n"
                            "<p class=\"center\">Title</p>\n"
                            "<p class=\"right\">Part</p>\n"
                            "</header>\n"
                            "<main>\n"
                            "<p>Body</p>\n"
                            "</main>\n"
                            "<footer>\n"
                            "<p class=\"right\"><b>Foot &amp; more</b></p>\n"
                            "</footer>\n");
}

TEST(HtmlRunningLines, AreLeftOutIfEmpty)
{
    TypedEvents events;
    events.header().line("").line("  ").close_block().footer().line("").close_block().line("a");
    EXPECT_EQ(body(events), "<main>\n<p>a</p>\n</main>\n");
}

TEST(HtmlRunningLines, AreLeftOutIfNotWanted)
{
    WriterOptions options;
    options.headers = false;
    TypedEvents events;
    events.header().line("Head").close_block().footer().line("Foot").close_block().line("a");
    const Written result = written("html", events, options);
    EXPECT_EQ(body(events, options), "<main>\n<p>a</p>\n</main>\n");
    EXPECT_TRUE(result.losses.empty());
}

TEST(HtmlRunningLines, AreLostBeyondTwoAndAfterTheBody)
{
    TypedEvents events;
    events.header().line("1").line("2").line("3").close_block().line("a");
    events.header().line("late").close_block().footer().line("foot").close_block();
    const Written result = written("html", events);
    EXPECT_EQ(body(events), "<header>\n<p>1</p>\n<p>2</p>\n</header>\n"
                            "<main>\n<p>a</p>\n</main>\n"
                            "<footer>\n<p>foot</p>\n</footer>\n");
    ASSERT_EQ(result.losses.size(), 1U);
    EXPECT_EQ(result.losses[0].loss, Loss::header_footer);
    EXPECT_EQ(result.losses[0].count, 2U);
}

TEST(HtmlRunningLines, BreakNoPage)
{
    TypedEvents events;
    events.header().page_break().text("a").page_break().line("b").close_block();
    EXPECT_EQ(body(events), "<header>\n<p>ab</p>\n</header>\n<main>\n</main>\n");
}

TEST(HtmlRunningLines, GiveTheRowsThatTheyNeedBeyondTwo)
{
    TypedEvents events;
    events.margins(0, 9).header().line(std::string(25, 'x')).line("y").close_block();
    events.footer().line("1234567890").line("1234567890").close_block().line("a");
    EXPECT_EQ(html_line(events, 2), "<html style=\"--left:0;--width:10;--head:4\">");
}

// --------------------------------------------------------------------------- hostile ---
//
// Large enough for anything but linear time to be noticed. The output is known.

class CountingOutput final : public Output {
public:
    void write(std::string_view bytes) override
    {
        total += bytes.size();
        largest = std::max(largest, bytes.size());
    }

    std::size_t total = 0;
    std::size_t largest = 0;
};

constexpr std::size_t megabyte = 1000000;

// The size of the main part of a document with one such paragraph, and of the largest write.
struct Cost {
    std::size_t bytes;
    std::size_t largest_write;
};

Cost cost(const Paragraph &paragraph)
{
    const std::size_t around = html({}).size();
    CountingOutput output;
    auto writer = find_format("html")->make_writer(output, {DocumentKind::write_a, "LETTER"}, {});
    writer.value()->paragraph(paragraph);
    writer.value()->end_of_document();
    return {output.total - around, output.largest};
}

Paragraph one_paragraph(std::string bytes)
{
    Paragraph paragraph;
    paragraph.bytes = std::move(bytes);
    paragraph.pieces.push_back({0, 0, 0, PieceKind::text, false});
    return paragraph;
}

std::string repeated(std::string_view part, std::size_t times)
{
    std::string all;
    for (std::size_t i = 0; i < times; ++i) {
        all.append(part);
    }
    return all;
}

constexpr std::size_t paragraph_tags = 8; // with the line end

TEST(HostileHtml, ParagraphOfAMegabyteIsWrittenInChunks)
{
    const Cost found = cost(one_paragraph(std::string(megabyte, 'x')));
    EXPECT_EQ(found.bytes, megabyte + paragraph_tags);
    EXPECT_LE(found.largest_write, base::Utf8Output::chunk_size);
}

TEST(HostileHtml, WordThatMightBeBrokenAnywhere)
{
    const Cost found = cost(one_paragraph(repeated("-a", megabyte)));
    EXPECT_EQ(found.bytes, 2 * megabyte + paragraph_tags);
}

TEST(HostileHtml, WordOfNothingButEscapes)
{
    EXPECT_EQ(cost(one_paragraph(std::string(megabyte, '&'))).bytes, 5 * megabyte + paragraph_tags);
}

TEST(HostileHtml, NothingButTabs)
{
    // A line of 61 columns takes seven tabs to multiples of eight; the eighth ends it.
    const Cost found = cost(one_paragraph(std::string(megabyte, '\t')));
    EXPECT_EQ(found.bytes, megabyte * tab(8).size() + paragraph_tags);
}

TEST(HostileHtml, TabsBetweenRunsOfSpaces)
{
    const Cost found = cost(one_paragraph(repeated("\t" + std::string(999, ' '), 1000)));
    EXPECT_GT(found.bytes, megabyte);
    EXPECT_LT(found.bytes, megabyte + 1000 * tab(61).size());
}

TEST(HostileHtml, AttributesForEachCharacter)
{
    Paragraph paragraph;
    paragraph.bytes.assign(megabyte, 'x');
    for (std::size_t i = 0; i < megabyte; ++i) {
        const AttributeSet attributes = i % 2 == 0 ? attribute_bit(bold) : AttributeSet{0};
        paragraph.pieces.push_back({i, 0, attributes, PieceKind::text, false});
    }
    EXPECT_EQ(cost(paragraph).bytes, megabyte + megabyte / 2 * 7 + paragraph_tags);
}

TEST(HostileHtml, PageBreaksInOneParagraph)
{
    Paragraph paragraph;
    paragraph.bytes.assign(10000, 'x');
    for (std::size_t i = 0; i < 10000; ++i) {
        paragraph.pieces.push_back({i, 0, 0, PieceKind::text, false});
        paragraph.pieces.push_back({i + 1, 0, 0, PieceKind::page_break, false});
    }
    EXPECT_EQ(cost(paragraph).bytes, 10000 * (1 + paragraph_tags + 18));
}

TEST(HostileHtml, NothingButPageBreaks)
{
    TypedEvents events;
    for (int i = 0; i < 10000; ++i) {
        events.page_break();
    }
    EXPECT_EQ(main_part(events).size(), 10000U * 18U);
}

TEST(HostileHtml, MarginsThatCannotBe)
{
    TypedEvents events;
    events.margins(80, 10).text("a").indents(-5, 1000000).paragraph();
    EXPECT_EQ(html_line(events, 2), "<html style=\"--left:9;--width:61\">");
    EXPECT_EQ(main_part(events), "<p style=\"--f:60\">a</p>\n");
}

} // namespace

// Documents as pandoc's tree. tests/judges/pandoc.sh checks that pandoc reads and converts them.
#include "tests/lib/writers/losses_of.h"
#include "tests/lib/writers/written.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <string>

namespace {

using namespace tests;
using nlohmann::json;
using pfsdoc::WriterOptions;

std::string tree(const TypedEvents &events, const WriterOptions &options = {})
{
    return written("pandoc", events, options).text;
}

// The tree as short lines: "Para(One _ Strong(two))". Fails on anything unexpected.
std::string outline(const json &element);

std::string outline_all(const json &list)
{
    std::string text;
    for (const json &element : list) {
        text.append(text.empty() ? "" : " ").append(outline(element));
    }
    return text;
}

std::string outline(const json &element)
{
    const std::string type = element.at("t");
    if (type == "Str") {
        EXPECT_EQ(element.size(), 2U);
        return element.at("c");
    }
    if (type == "Space" || type == "HorizontalRule") {
        EXPECT_EQ(element.size(), 1U);
        return type == "Space" ? "_" : type;
    }
    if (type == "Div") {
        const json &attributes = element.at("c").at(0);
        EXPECT_EQ(attributes.at(0), "");
        std::string classes;
        for (const json &name : attributes.at(1)) {
            classes.append(".").append(name.get<std::string>());
        }
        return "Div" + classes + "(" + outline_all(element.at("c").at(1)) + ")";
    }
    return type + "(" + outline_all(element.at("c")) + ")";
}

// The blocks' outlines, a line for each.
std::string blocks(const TypedEvents &events, const WriterOptions &options = {})
{
    std::string text;
    const json document = json::parse(tree(events, options));
    for (const json &block : document.at("blocks")) {
        text.append(outline(block)).append("\n");
    }
    return text;
}

// -------------------------------------------------------------------- blocks ----------

TEST(PandocWriter, WritesADocumentABlockALine)
{
    TypedEvents events;
    events.special("*CENTER*").line("One").text("two ").attribute(bold, true).line("\"3\"");
    EXPECT_EQ(
        tree(events.page_break().end()),
        R"({"pandoc-api-version":[1,22,2,1],"meta":{"title":{"t":"MetaInlines","c":[{"t":"Str","c":"LETTER"}]}},"blocks":[
{"t":"Div","c":[["",["center"],[["custom-style","Center"],["style","text-align: center"]]],[{"t":"Para","c":[{"t":"Str","c":"One"}]}]]}
,{"t":"Para","c":[{"t":"Str","c":"two"},{"t":"Space"},{"t":"Strong","c":[{"t":"Str","c":"\"3\""}]}]}
,{"t":"Div","c":[["",["page-break"],[]],[{"t":"HorizontalRule"}]]}
]}
)");
}

TEST(PandocWriter, WritesAnEmptyDocument)
{
    EXPECT_EQ(json::parse(tree(TypedEvents().end())).at("blocks"), json::array());
}

TEST(PandocWriter, TakesATitleApart)
{
    pfsdoc::StringOutput output;
    const pfsdoc::DocumentInfo info{pfsdoc::DocumentKind::write_a, " Dear  \"Sir\" "};
    auto writer = pfsdoc::find_format("pandoc")->make_writer(output, info, {});
    ASSERT_TRUE(writer.ok());
    writer.value()->end_of_document();
    EXPECT_EQ(outline(json::parse(output.text).at("meta").at("title")),
              "MetaInlines(Dear _ \"Sir\")");
}

TEST(PandocWriter, KeepsEmptyParagraphs)
{
    EXPECT_EQ(blocks(TypedEvents().line("One").line("").line("  ").line("two")),
              "Para(One)\nPara()\nPara()\nPara(two)\n");
}

TEST(PandocWriter, LeavesParagraphsOfHiddenCommandsOut)
{
    EXPECT_EQ(blocks(TypedEvents().special("*J*").paragraph().line("two")), "Para(two)\n");
}

TEST(PandocWriter, EndsAParagraphAtAPageBreakInIt)
{
    TypedEvents events;
    events.alignment(VW_ALIGN_RIGHT).attribute(bold, true).text("One ").new_page().line(" two");
    EXPECT_EQ(blocks(events), "Div.right(Para(Strong(One)))\n"
                              "Div.page-break(HorizontalRule)\n"
                              "Div.right(Para(Strong(two)))\n");
}

TEST(PandocWriter, LeavesPageBreaksOutWhereAsked)
{
    WriterOptions options;
    options.page_breaks = false;
    EXPECT_EQ(blocks(TypedEvents().text("One").new_page().line(" two").page_break(), options),
              "Para(One _ two)\n");
}

TypedEvents page_with_headers()
{
    TypedEvents events;
    events.footer().line("The foot").close_block();
    events.alignment(VW_ALIGN_CENTRE).header().line("The head").close_block();
    events.alignment(VW_ALIGN_LEFT).header().paragraph().close_block();
    events.footer().line("Its sole").close_block();
    return events.line("Between").end();
}

TEST(PandocWriter, PutsHeadersAtTheTopAndFootersAtTheBottom)
{
    EXPECT_EQ(blocks(page_with_headers()), "Div.header.center(Para(The _ head))\n"
                                             "Para(Between)\n"
                                             "Div.footer(Para(The _ foot))\n"
                                             "Div.footer(Para(Its _ sole))\n");
}

TEST(PandocWriter, WritesFootersOfADocumentWithoutText)
{
    TypedEvents events;
    events.footer().line("The foot").close_block();
    EXPECT_EQ(blocks(events.end()), "Div.footer(Para(The _ foot))\n");
}

TEST(PandocWriter, LeavesHeadersAndFootersOutWhereAsked)
{
    WriterOptions options;
    options.headers = false;
    EXPECT_EQ(blocks(page_with_headers(), options), "Para(Between)\n");
}

TEST(PandocWriter, ShowsCommandsWhereAsked)
{
    WriterOptions options;
    options.commands = true;
    EXPECT_EQ(blocks(TypedEvents().special("*NEW PAGE*").line("a"), options),
              "Para(*NEW _ PAGE*a)\n");
}

// ------------------------------------------------------------------- inlines ----------

TEST(PandocWriter, WritesOneSpaceForAGapAndNoneAtTheEdges)
{
    EXPECT_EQ(blocks(TypedEvents().line("  a \t b  ")), "Para(a _ b)\n");
    EXPECT_EQ(blocks(TypedEvents().line("a\xFF"
                                        "b")),
              "Para(a\u00A0b)\n");
}

TEST(PandocWriter, HasAnElementForEachAttribute)
{
    TypedEvents events;
    for (const int32_t code : {bold, italic, underline, superscript, subscript}) {
        events.attribute(code, true).text("x").attribute(code, false);
    }
    EXPECT_EQ(blocks(events.paragraph()),
              "Para(Strong(x) Emph(x) Underline(x) Superscript(x) Subscript(x))\n");
}

TEST(PandocWriter, NestsWhatBeginsTogetherInOneOrder)
{
    TypedEvents events;
    for (const int32_t code : {subscript, superscript, underline, italic, bold}) {
        events.attribute(code, true);
    }
    EXPECT_EQ(blocks(events.line("x")),
              "Para(Strong(Emph(Underline(Superscript(Subscript(x))))))\n");
}

TEST(PandocWriter, KeepsWhatGoesOnOpen)
{
    TypedEvents events;
    events.attribute(italic, true).text("a ").attribute(bold, true).text("b");
    events.attribute(bold, false).line(" c");
    EXPECT_EQ(blocks(events), "Para(Emph(a _ Strong(b) _ c))\n");
}

TEST(PandocWriter, ClosesAndReopensWhatIsInsideAnEndedElement)
{
    TypedEvents events;
    events.attribute(bold, true).text("a").attribute(italic, true).text("b");
    events.attribute(bold, false).line("c");
    EXPECT_EQ(blocks(events), "Para(Strong(a Emph(b)) Emph(c))\n");
}

TEST(PandocWriter, LeavesSpacesAtTheEdgesOfAPhraseOutside)
{
    TypedEvents events;
    events.text("so").attribute(bold, true).text(" it is ").attribute(bold, false).line("now");
    EXPECT_EQ(blocks(events), "Para(so _ Strong(it _ is) _ now)\n");
}

TEST(PandocWriter, EndsAttributesWithTheirParagraphAndGoesOnInTheNext)
{
    TypedEvents events;
    events.attribute(bold, true).line("One").line("two").attribute(bold, false).line("three");
    EXPECT_EQ(blocks(events), "Para(Strong(One))\nPara(Strong(two))\nPara(three)\n");
}

// -------------------------------------------------------------------- losses ----------

TEST(PandocWriter, CountsWhatItCannotExpress)
{
    TypedEvents events;
    events.margins(10, 70).tabs({20}).line("Plain").indents(4, 0).line("Indented");
    events.attribute(underline, true).line("u").attribute(underline, false);
    events.margins(12, 70).line("\tTab").spacing(480).line("Wide").line("");
    events.spacing(240).special("*CENTER*").line("Centred").special("*OTHER*").line("text");
    EXPECT_EQ(listed(written("pandoc", events.end()).losses),
              "indents 1, tab_stops 1, line_spacing 1, margins 1, command 1");
}

// ------------------------------------------------------------------- hostile ----------

TEST(PandocWriter, WritesOneWordOfAMegabyte)
{
    const std::string word(1000000, '\\');
    EXPECT_EQ(blocks(TypedEvents().line(word)), "Para(" + word + ")\n");
}

std::size_t depth_of(const std::string &text)
{
    std::size_t depth = 0;
    std::size_t deepest = 0;
    for (const char character : text) {
        depth += character == '[' ? 1 : 0;
        depth -= character == ']' ? 1 : 0;
        deepest = std::max(deepest, depth);
    }
    return deepest;
}

// Attributes that change at every character, each with a rhythm of its own.
TEST(PandocWriter, NestsNoDeeperThanThereAreAttributesAndGrowsInProportion)
{
    const auto written_for = [](int characters) {
        TypedEvents events;
        for (int i = 0; i < characters; ++i) {
            events.attribute(bold, i % 2 == 0).attribute(italic, i % 3 == 0);
            events.attribute(underline, i % 5 == 0).attribute(subscript, i % 7 != 0).text("x");
        }
        return tree(events.paragraph());
    };
    const std::string small = written_for(2100);
    EXPECT_EQ(depth_of(small), 6U); // blocks, the paragraph, four attributes
    EXPECT_LT(small.size(), 2100U * 120);
    EXPECT_LT(written_for(210000).size(), small.size() * 101);
    EXPECT_TRUE(json::accept(small));
}

} // namespace

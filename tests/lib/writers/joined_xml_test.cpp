// Portions in, one XML stream out. A portion is written down as libodfgen tells it: names are
// elements, each with its attributes behind it ("name key=value"), "/" ends the innermost, and
// words in quotes are text.
#include "lib/writers/odf/joined_xml.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace {

using librevenge::RVNGPropertyList;
using pfsdoc::StringOutput;
using pfsdoc::writers::JoinedXml;
using pfsdoc::writers::Scratch;

// One word, or an attribute, ahead.
class Words {
public:
    explicit Words(const std::string &text) : words_(text)
    {
        words_ >> next_;
    }
    bool at_end() const
    {
        return next_.empty();
    }
    bool at_attribute() const
    {
        return next_.find('=') != std::string::npos && !next_.starts_with('\'');
    }
    std::string take()
    {
        std::string taken = std::exchange(next_, {});
        words_ >> next_;
        return taken;
    }

private:
    std::istringstream words_;
    std::string next_;
};

RVNGPropertyList attributes_of(Words &words)
{
    RVNGPropertyList attributes;
    while (words.at_attribute()) {
        const std::string attribute = words.take();
        const std::size_t equals = attribute.find('=');
        attributes.insert(attribute.substr(0, equals).c_str(),
                          attribute.substr(equals + 1).c_str());
    }
    return attributes;
}

void tell(JoinedXml &joined, const std::string &portion)
{
    joined.begin_portion();
    joined.startDocument();
    std::vector<std::string> open;
    for (Words words(portion); !words.at_end();) {
        const std::string word = words.take();
        if (word == "/") {
            joined.endElement(open.back().c_str());
            open.pop_back();
        } else if (word.starts_with('\'')) {
            joined.characters(word.substr(1, word.size() - 2).c_str());
        } else {
            joined.startElement(word.c_str(), attributes_of(words));
            open.push_back(word);
        }
    }
    EXPECT_TRUE(open.empty());
    joined.endDocument();
}

// Without the declaration and the line end.
std::string joined(const std::vector<std::string> &portions)
{
    Scratch styles;
    Scratch body;
    JoinedXml joined(styles, body);
    for (const std::string &portion : portions) {
        tell(joined, portion);
    }
    StringOutput output;
    joined.copy_to(output);
    EXPECT_EQ(joined.size(), output.text.size());
    constexpr std::string_view declaration = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
    EXPECT_TRUE(output.text.starts_with(declaration));
    EXPECT_TRUE(output.text.ends_with(">\n"));
    return output.text.substr(declaration.size(), output.text.size() - declaration.size() - 1);
}

// ------------------------------------------------------------------------- bodies -----

TEST(JoinedXml, LeavesOnePortionAsItIs)
{
    EXPECT_EQ(joined({"doc styles 's' / office:text text:p 'a' / text:p / / end / /"}),
              "<doc><styles>s</styles><office:text><text:p>a</text:p><text:p/></office:text>"
              "<end/></doc>");
}

TEST(JoinedXml, LeavesAnEmptyBodyAsItIs)
{
    EXPECT_EQ(joined({"doc styles / office:text / /"}), "<doc><styles/><office:text/></doc>");
}

TEST(JoinedXml, LeavesAStreamWithoutABodyAsItIs)
{
    EXPECT_EQ(joined({"doc styles 's' / text:p 'a' / /"}),
              "<doc><styles>s</styles><text:p>a</text:p></doc>");
}

// What stands before and behind the body is the last portion's. The first paragraph of each
// portion but the first is left out.
TEST(JoinedXml, PutsBodiesOneAfterTheOther)
{
    EXPECT_EQ(joined({"doc 'one' office:text text:p 'a' / / 'first' /",
                      "doc 'two' office:text text:p / text:p 'b' / text:p 'c' / / 'second' /",
                      "doc 'three' office:text text:p / text:p 'd' / / 'third' /"}),
              "<doc>three<office:text><text:p>a</text:p><text:p>b</text:p><text:p>c</text:p>"
              "<text:p>d</text:p></office:text>third</doc>");
}

TEST(JoinedXml, LeavesAParagraphOutWithAllThatIsInIt)
{
    EXPECT_EQ(joined({"doc office:text text:p 'a' / text:p 'b' / / /",
                      "doc office:text text:p 'x' text:span 'y' / 'z' / text:p 'c' / / /",
                      "doc office:text text:p text:span / text:span / / text:p / / /"}),
              "<doc><office:text><text:p>a</text:p><text:p>b</text:p><text:p>c</text:p><text:p/>"
              "</office:text></doc>");
}

// Paragraphs of a header, which one file of XML has before the body, are no part of it.
TEST(JoinedXml, DoesNotTakeAHeaderForTheBody)
{
    EXPECT_EQ(joined({"doc style:header text:p 'h' / / office:text text:p 'a' / / /",
                      "doc style:header text:p 'h' / / office:text text:p / text:p 'b' / / /"}),
              "<doc><style:header><text:p>h</text:p></style:header><office:text>"
              "<text:p>a</text:p><text:p>b</text:p></office:text></doc>");
}

// ------------------------------------------------------------------------- styles -----

// Of a paragraph that has such a margin.
std::string style(const std::string &name, int margin)
{
    return " style:style style:family=paragraph style:name=" + name +
           " props margin=" + std::to_string(margin) + " / / ";
}

// Of the paragraph that begins the page.
std::string first_style(const std::string &name, int margin)
{
    return " style:style style:family=paragraph style:master-page-name=P style:name=" + name +
           " props margin=" + std::to_string(margin) + " / / ";
}

std::string paragraph(const std::string &style, const std::string &text)
{
    return " text:p text:style-name=" + style + " '" + text + "' / ";
}

std::string written_style(const std::string &name, int margin)
{
    return "<style:style style:family=\"paragraph\" style:name=\"" + name + "\"><props margin=\"" +
           std::to_string(margin) + "\"/></style:style>";
}

std::string written_first_style(const std::string &name, int margin)
{
    return "<style:style style:family=\"paragraph\" style:master-page-name=\"P\" style:name=\"" +
           name + "\"><props margin=\"" + std::to_string(margin) + "\"/></style:style>";
}

std::string written_paragraph(const std::string &style, const std::string &text)
{
    return "<text:p text:style-name=\"" + style + "\">" + text + "</text:p>";
}

std::string portion(const std::string &styles, const std::string &paragraphs)
{
    return "doc styles before /" + styles + "behind / / office:text" + paragraphs + "/ /";
}

std::string written(const std::string &styles, const std::string &paragraphs)
{
    return "<doc><styles><before/>" + styles + "<behind/></styles><office:text>" + paragraphs +
           "</office:text></doc>";
}

TEST(JoinedXml, LeavesTheNamesOfTheFirstPortion)
{
    EXPECT_EQ(
        joined({portion(first_style("S3", 0) + style("S10", 1) + style("S4", 2),
                        paragraph("S3", "a") + paragraph("S10", "b") + paragraph("S4", "c"))}),
        written(written_first_style("S3", 0) + written_style("S10", 1) + written_style("S4", 2),
                written_paragraph("S3", "a") + written_paragraph("S10", "b") +
                    written_paragraph("S4", "c")));
}

// As a generator may define them that tells them apart by more than it writes.
TEST(JoinedXml, LeavesTheFirstPortionsStylesThatLookAlike)
{
    EXPECT_EQ(
        joined({portion(style("S0", 1) + style("S1", 1), paragraph("S1", "a"))}),
        written(written_style("S0", 1) + written_style("S1", 1), written_paragraph("S1", "a")));
}

// New ones get the next numbers. The one that begins the page is not new, whatever it is.
TEST(JoinedXml, GivesStylesOfLaterPortionsNamesOfTheirOwn)
{
    EXPECT_EQ(joined({portion(first_style("S1", 0) + style("S2", 1), paragraph("S2", "a")),
                      portion(first_style("S1", 7) + style("S2", 2) + style("S3", 1),
                              paragraph("S1", "-") + paragraph("S2", "b") + paragraph("S3", "c")),
                      portion(first_style("S1", 7) + style("S2", 3) + style("S3", 2),
                              paragraph("S1", "-") + paragraph("S3", "d") + paragraph("S2", "e"))}),
              written(written_first_style("S1", 0) + written_style("S2", 1) +
                          written_style("S3", 2) + written_style("S4", 3),
                      written_paragraph("S2", "a") + written_paragraph("S3", "b") +
                          written_paragraph("S2", "c") + written_paragraph("S3", "d") +
                          written_paragraph("S4", "e")));
}

TEST(JoinedXml, LeavesWhatIsNotABodyParagraphs)
{
    const std::string others = " style:style style:family=paragraph style:name=S_M0 / "
                               "style:style style:family=paragraph style:name=Standard / "
                               "style:style style:family=text style:name=S7 / "
                               "style:style style:family=paragraph style:name=S / ";
    const std::string paragraphs =
        paragraph("S0", "x") + paragraph("S_M0", "a") + " text:p text:span text:style-name=S0 / / ";
    EXPECT_EQ(
        joined({portion(style("S0", 1), paragraphs), portion(others + style("S0", 2), paragraphs)}),
        "<doc><styles><before/><style:style style:family=\"paragraph\" style:name=\"S_M0\"/>"
        "<style:style style:family=\"paragraph\" style:name=\"Standard\"/>"
        "<style:style style:family=\"text\" style:name=\"S7\"/>"
        "<style:style style:family=\"paragraph\" style:name=\"S\"/>" +
            written_style("S0", 1) + written_style("S1", 2) + "<behind/></styles><office:text>" +
            written_paragraph("S0", "x") + written_paragraph("S_M0", "a") +
            "<text:p><text:span text:style-name=\"S0\"/></text:p>" +
            written_paragraph("S_M0", "a") +
            "<text:p><text:span text:style-name=\"S0\"/></text:p></office:text></doc>");
}

// Attributes that a name could be taken for.
TEST(JoinedXml, FindsAStylesOwnName)
{
    const std::string told = " style:style other=\"style:name=\"\" style:family=paragraph "
                             "style:name=S0 props style:name= / / ";
    EXPECT_EQ(joined({portion(told, paragraph("S0", "a"))}),
              written("<style:style other=\"&quot;style:name=&quot;&quot;\" "
                      "style:family=\"paragraph\" style:name=\"S0\"><props style:name=\"\"/>"
                      "</style:style>",
                      written_paragraph("S0", "a")));
}

// Styles of so many portions are more than is remembered; then the first ones are new again.
TEST(JoinedXml, ForgetsStyles)
{
    Scratch styles;
    Scratch body;
    JoinedXml joined(styles, body);
    const auto tell_style = [&](int margin) {
        tell(joined, portion(first_style("S0", 0) + style("S1", margin),
                             paragraph("S0", "-") + paragraph("S1", "a")));
        return styles.size();
    };
    uint64_t before = tell_style(1);
    EXPECT_EQ(tell_style(1), before);
    const std::size_t size = written_style("", 1'000'000).size();
    const auto remembered = static_cast<int>(JoinedXml::most_remembered / size);
    for (int i = 0; i < remembered - 10; ++i) {
        tell_style(1'000'000 + i);
    }
    before = styles.size();
    EXPECT_EQ(tell_style(1), before);
    for (int i = 0; i < 20; ++i) {
        tell_style(2'000'000 + i);
    }
    before = styles.size();
    EXPECT_GT(tell_style(1), before);
    before = styles.size();
    EXPECT_EQ(tell_style(1), before);
}

// ------------------------------------------------------------------------- memory -----

TEST(JoinedXml, HoldsBodiesAndStylesOutsideMemory)
{
    Scratch styles;
    Scratch body;
    JoinedXml joined(styles, body);
    const std::string text(1000, 'x');
    constexpr int portions = 10'000;
    for (int i = 0; i < portions; ++i) {
        tell(joined, portion(first_style("S0", 0) + style("S1", 1'000'000 + i),
                             paragraph("S0", "-") + paragraph("S1", text)));
    }
    EXPECT_FALSE(body.is_in_memory());
    EXPECT_FALSE(styles.is_in_memory());
    EXPECT_GT(body.size(), (portions - 1) * text.size());
    EXPECT_GT(styles.size(), portions * written_style("S1", 1'000'000).size());
}

} // namespace

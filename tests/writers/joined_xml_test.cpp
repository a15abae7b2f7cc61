// Portions in, one XML stream out. A portion is written down as libodfgen tells it: names are
// elements, "/" ends the innermost, and words in quotes are text.
#include "joined_xml.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <string_view>
#include <vector>

namespace {

using librevenge::RVNGPropertyList;
using pfsdoc::JoinedXml;
using pfsdoc::Scratch;
using pfsdoc::StringOutput;

struct Portion {
    std::size_t repeated;
    std::string_view told;
};

void tell(JoinedXml &joined, const Portion &portion)
{
    joined.begin_portion(portion.repeated);
    joined.startDocument();
    std::vector<std::string> open;
    std::istringstream words{std::string(portion.told)};
    for (std::string word; words >> word;) {
        if (word == "/") {
            joined.endElement(open.back().c_str());
            open.pop_back();
        } else if (word.starts_with('\'')) {
            joined.characters(word.substr(1, word.size() - 2).c_str());
        } else {
            joined.startElement(word.c_str(), RVNGPropertyList());
            open.push_back(word);
        }
    }
    EXPECT_TRUE(open.empty());
    joined.endDocument();
}

// Without the declaration and the line end.
std::string joined(const std::vector<Portion> &portions)
{
    Scratch body;
    JoinedXml joined(body);
    for (const Portion &portion : portions) {
        tell(joined, portion);
    }
    StringOutput output;
    joined.copy_to(output);
    constexpr std::string_view declaration = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
    EXPECT_TRUE(output.text.starts_with(declaration));
    EXPECT_TRUE(output.text.ends_with(">\n"));
    return output.text.substr(declaration.size(), output.text.size() - declaration.size() - 1);
}

TEST(JoinedXml, LeavesOnePortionAsItIs)
{
    EXPECT_EQ(joined({{0, "doc styles 's' / office:text text:p 'a' / text:p / / end / /"}}),
              "<doc><styles>s</styles><office:text><text:p>a</text:p><text:p/></office:text>"
              "<end/></doc>");
}

TEST(JoinedXml, LeavesAnEmptyBodyAsItIs)
{
    EXPECT_EQ(joined({{0, "doc styles / office:text / /"}}), "<doc><styles/><office:text/></doc>");
}

TEST(JoinedXml, LeavesAStreamWithoutABodyAsItIs)
{
    EXPECT_EQ(joined({{0, "doc styles 's' / text:p 'a' / /"}}),
              "<doc><styles>s</styles><text:p>a</text:p></doc>");
}

// Styles and what stands behind the body are the last portion's.
TEST(JoinedXml, PutsBodiesOneAfterTheOther)
{
    EXPECT_EQ(joined({{0, "doc 'one' office:text text:p 'a' / / 'first' /"},
                      {0, "doc 'two' office:text text:p 'b' / text:p 'c' / / 'second' /"},
                      {0, "doc 'three' office:text text:p 'd' / / 'third' /"}}),
              "<doc>three<office:text><text:p>a</text:p><text:p>b</text:p><text:p>c</text:p>"
              "<text:p>d</text:p></office:text>third</doc>");
}

TEST(JoinedXml, LeavesOutWhatIsRepeated)
{
    EXPECT_EQ(joined({{0, "doc office:text text:p 'a' / text:p 'b' / / /"},
                      {1, "doc office:text text:p text:span 'x' / / text:p 'c' / / /"},
                      {3, "doc office:text text:p / text:p text:span / / text:p / text:p / / /"}}),
              "<doc><office:text><text:p>a</text:p><text:p>b</text:p><text:p>c</text:p><text:p/>"
              "</office:text></doc>");
}

// Paragraphs of a header, which one file of XML has before the body, are no part of it.
TEST(JoinedXml, DoesNotTakeAHeaderForTheBody)
{
    EXPECT_EQ(
        joined({{0, "doc style:header text:p 'h' / / office:text text:p 'a' / / /"},
                {1, "doc style:header text:p 'h' / / office:text text:p / text:p 'b' / / /"}}),
        "<doc><style:header><text:p>h</text:p></style:header><office:text>"
        "<text:p>a</text:p><text:p>b</text:p></office:text></doc>");
}

TEST(JoinedXml, HoldsBodiesOutsideMemory)
{
    Scratch body;
    JoinedXml joined(body);
    const std::string text(1000, 'x');
    const std::string told = "doc office:text text:p '" + text + "' / / /";
    constexpr std::size_t portions = 1000;
    for (std::size_t i = 0; i < portions; ++i) {
        tell(joined, {0, told});
    }
    EXPECT_FALSE(body.is_in_memory());
    EXPECT_EQ(body.size(), portions * (text.size() + std::string_view("<text:p></text:p>").size()));
}

} // namespace

// XML as libodfgen's calls make it.
#include "lib/writers/odf/odf_xml.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using librevenge::RVNGPropertyList;
using librevenge::RVNGPropertyListVector;
using pfsdoc::StringOutput;
using pfsdoc::writers::XmlStream;

TEST(XmlStream, WritesElementsAndCharacters)
{
    StringOutput output;
    XmlStream xml(output);
    RVNGPropertyList attributes;
    attributes.insert("text:style-name", "S1");
    attributes.insert("fo:font-size", 12, librevenge::RVNG_POINT);
    xml.startDocument();
    xml.startElement("text:p", attributes);
    xml.characters("a");
    xml.startElement("text:s", RVNGPropertyList());
    xml.endElement("text:s");
    xml.characters("b");
    xml.endElement("text:p");
    xml.endDocument();
    EXPECT_EQ(output.text, R"(<?xml version="1.0" encoding="UTF-8"?>
<text:p fo:font-size="12.0000pt" text:style-name="S1">a<text:s/>b</text:p>
)");
}

TEST(XmlStream, EscapesCharactersAndAttributes)
{
    StringOutput output;
    XmlStream xml(output);
    RVNGPropertyList attributes;
    attributes.insert("a", "\"><x y=\"&");
    xml.startDocument();
    xml.startElement("p", attributes);
    xml.characters("</p><x/>&amp;\"");
    xml.endElement("p");
    xml.endDocument();
    EXPECT_EQ(output.text, R"(<?xml version="1.0" encoding="UTF-8"?>
<p a="&quot;&gt;&lt;x y=&quot;&amp;">&lt;/p&gt;&lt;x/&gt;&amp;amp;&quot;</p>
)");
}

TEST(XmlStream, LeavesOutWhatIsNoAttribute)
{
    StringOutput output;
    XmlStream xml(output);
    RVNGPropertyListVector stops;
    stops.append(RVNGPropertyList());
    RVNGPropertyList attributes;
    attributes.insert("librevenge:occurrence", "all");
    attributes.insert("style:tab-stops", stops);
    xml.startDocument();
    xml.startElement("p", attributes);
    xml.endElement("p");
    xml.endDocument();
    EXPECT_EQ(output.text, "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<p/>\n");
}

TEST(XmlStream, WritesOtherValuesOfOneAttribute)
{
    StringOutput output;
    XmlStream xml(output);
    const pfsdoc::writers::NewValues changed = {"a", {{"one", "1"}, {"two", "<2>"}}};
    xml.startDocument();
    for (const char *value : {"one", "two", "three", ""}) {
        RVNGPropertyList attributes;
        attributes.insert("a", value);
        attributes.insert("b", "one");
        xml.start_element("p", attributes, changed);
        xml.endElement("p");
    }
    xml.endDocument();
    EXPECT_EQ(output.text, R"(<?xml version="1.0" encoding="UTF-8"?>
<p a="1" b="one"/><p a="&lt;2&gt;" b="one"/><p a="three" b="one"/><p a="" b="one"/>
)");
}

// So that what follows can go elsewhere.
TEST(XmlStream, FlushesAllThatItWasTold)
{
    StringOutput output;
    XmlStream xml(output);
    xml.startDocument();
    xml.startElement("p", RVNGPropertyList());
    xml.flush();
    EXPECT_EQ(output.text, "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<p>");
    output.text.clear();
    xml.endElement("p");
    xml.flush();
    EXPECT_EQ(output.text, "</p>");
    output.text.clear();
    xml.endDocument();
    EXPECT_EQ(output.text, "\n");
}

// What is held is bounded: a long stream goes out in parts.
TEST(XmlStream, WritesLongStreamsInParts)
{
    struct Parts final : pfsdoc::Output {
        void write(std::string_view bytes) override
        {
            ++count;
            size += bytes.size();
        }
        std::size_t count = 0;
        std::size_t size = 0;
    } output;
    XmlStream xml(output);
    xml.startDocument();
    for (int i = 0; i < 10; ++i) {
        xml.startElement("p", RVNGPropertyList());
        xml.characters(std::string(50'000, 'x').c_str());
        xml.endElement("p");
    }
    EXPECT_GE(output.count, 5U);
    xml.endDocument();
    EXPECT_EQ(output.size, 39 + 10 * (50'000 + 7) + 1U); // the declaration, the rest, a line end
}

} // namespace

// A document is the same however small the portions are that it was told in, but for the names
// of its paragraph styles and their order. Told in one it is, byte for byte, what the generator
// makes of it. That is asked of every sample, and of documents made for what portions could
// spoil: styles and their names, page breaks, headers and footers.
#include "lib/writers/odf/odf_portions.h"

#include "lib/reading/paragraph_collector.h"
#include "lib/writers/odf/joined_xml.h"
#include "lib/writers/odf/odf_xml.h"
#include "lib/writers/odf/revenge_writer.h"
#include "pfsdoc/attribute_names.h"
#include "pfsdoc/document.h"
#include "tests/lib/writers/unpacked_package.h"
#include "tests/support/resolved_styles.h"
#include "vs_pfs.h"

#include "tests/lib/reading/typed_events.h"

#include <gtest/gtest.h>

#include <librevenge-generators/librevenge-generators.h>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <memory>
#include <ostream>
#include <random>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace {

using namespace tests;
using pfsdoc::AttributeCode;
using pfsdoc::WriterOptions;
using pfsdoc::writers::GeneratorTraits;
using pfsdoc::writers::OdfPackaging;
namespace fs = std::filesystem;

constexpr int32_t bold = static_cast<int32_t>(AttributeCode::bold);
constexpr int32_t italic = static_cast<int32_t>(AttributeCode::italic);
constexpr int32_t underline = static_cast<int32_t>(AttributeCode::underline);
constexpr int32_t subscript = static_cast<int32_t>(AttributeCode::subscript);
constexpr int32_t superscript = static_cast<int32_t>(AttributeCode::superscript);

using TellBlocks = std::function<void(pfsdoc::BlockSink &)>;

// Counts portions on their way.
class CountedPortions final : public pfsdoc::writers::Portions {
public:
    explicit CountedPortions(pfsdoc::writers::Portions &portions) : portions_(portions) {}

    librevenge::RVNGTextInterface &next() override
    {
        ++count;
        return portions_.next();
    }

    std::size_t count = 0;

private:
    pfsdoc::writers::Portions &portions_;
};

struct Told {
    std::string bytes;
    std::size_t portions;
};

Told told(const TellBlocks &tell, OdfPackaging packaging, uint64_t portion_elements,
          uint64_t most_elements = GeneratorTraits::unlimited)
{
    const auto document = make_odf_portions(packaging, {});
    CountedPortions portions(*document);
    pfsdoc::writers::RevengeWriter writer(portions.next(),
                                          {pfsdoc::DocumentKind::write_a, "LETTER"}, {},
                                          {.most_elements = most_elements,
                                           .keeps_styles = true,
                                           .portions = &portions,
                                           .portion_elements = portion_elements});
    tell(writer);
    pfsdoc::StringOutput output;
    document->finish(output);
    return {output.text, portions.count};
}

// What libodfgen makes of a document that it is told at once.
std::string generated(const TellBlocks &tell)
{
    pfsdoc::StringOutput output;
    pfsdoc::writers::XmlStream xml(output);
    {
        OdtGenerator generator;
        generator.addDocumentHandler(&xml, ODF_FLAT_XML);
        pfsdoc::writers::RevengeWriter writer(generator, {pfsdoc::DocumentKind::write_a, "LETTER"},
                                              {}, {.keeps_styles = true});
        tell(writer);
    }
    return output.text;
}

// The files of a package one after the other, each with its name.
std::string xml_of(OdfPackaging packaging, const std::string &bytes)
{
    if (packaging == OdfPackaging::flat) {
        return bytes;
    }
    std::string all;
    for (const Entry &entry : unpacked(bytes)) {
        all.append(entry.name).append("\n").append(entry.content);
    }
    return all;
}

// Both from where they differ, as far as they can be shown; empty where they do not.
std::string first_difference(std::string_view left, std::string_view right)
{
    const auto [at, other] = std::mismatch(left.begin(), left.end(), right.begin(), right.end());
    const auto begin = static_cast<std::size_t>(at - left.begin());
    constexpr std::size_t shown = 200;
    return left == right ? ""
                         : std::string(left.substr(begin, shown)) + "\ninstead of\n" +
                               std::string(right.substr(begin, shown));
}

// Styles with the same definition may be one.
void expect_alike(const ResolvedStyles &parts, const ResolvedStyles &whole)
{
    EXPECT_EQ(parts.fault, "");
    EXPECT_EQ(first_difference(parts.text, whole.text), "");
    for (const std::string &definition : whole.definitions) {
        EXPECT_GE(parts.definitions.count(definition), 1U) << definition;
        EXPECT_LE(parts.definitions.count(definition), whole.definitions.count(definition))
            << definition;
    }
    for (const std::string &definition : parts.definitions) {
        EXPECT_TRUE(whole.definitions.contains(definition)) << definition;
    }
}

// An element or two are less than any paragraph with text, so each begins a portion then.
void expect_the_same_in_portions(const TellBlocks &tell)
{
    for (const OdfPackaging packaging : {OdfPackaging::flat, OdfPackaging::zip}) {
        const Told whole = told(tell, packaging, GeneratorTraits::unlimited);
        EXPECT_EQ(whole.portions, 1U);
        if (packaging == OdfPackaging::flat) {
            EXPECT_EQ(whole.bytes, generated(tell));
        }
        const ResolvedStyles expected = resolved(xml_of(packaging, whole.bytes));
        EXPECT_EQ(expected.fault, "");
        for (const uint64_t elements : {1U, 2U, 7U, 100U}) {
            SCOPED_TRACE(elements);
            const Told parts = told(tell, packaging, elements);
            expect_alike(resolved(xml_of(packaging, parts.bytes)), expected);
        }
    }
}

TellBlocks blocks_of(const TypedEvents &events)
{
    return [events](pfsdoc::BlockSink &sink) {
        pfsdoc::reading::ParagraphCollector collector(sink,
                                                      pfsdoc::reading::LineSpacingRule::at_break);
        events.tell(collector);
        collector.finish();
    };
}

// --------------------------------------------------------------------------- documents -----

struct Example {
    const char *name;
    TypedEvents events;

    friend void PrintTo(const Example &example, std::ostream *out)
    {
        *out << example.name;
    }
};

TypedEvents &words(TypedEvents &events, int count)
{
    for (int i = 0; i < count; ++i) {
        events.text("word ");
    }
    return events;
}

TypedEvents every_attribute()
{
    TypedEvents events;
    for (unsigned set = 0; set < 32; ++set) {
        int bit = 0;
        for (const int32_t code : {bold, italic, underline, subscript, superscript}) {
            events.attribute(code, (set >> bit++ & 1U) != 0);
        }
        events.text("a").attribute(bold, true).text("b").paragraph();
    }
    return events.end();
}

TypedEvents tab_stops_and_tabs()
{
    TypedEvents events;
    events.margins(5, 60);
    for (uint32_t stop = 8; stop < 16; ++stop) {
        events.tabs({stop, stop + 10}, {stop + 20}).line("a\tb").line("c");
    }
    return events.tabs({}).line("\t\t").end();
}

TypedEvents margins_and_indents()
{
    TypedEvents events;
    for (int32_t column = 0; column < 20; ++column) {
        events.margins(column, 70 - column).text("a").indents(column, 2 * column).paragraph();
    }
    return events.end();
}

// Every paragraph begins a page, in its middle and at its start.
TypedEvents page_breaks()
{
    TypedEvents events;
    for (int i = 0; i < 10; ++i) {
        events.page_break().text("before").page_break().text("after").paragraph();
        events.page_break().page_break().line("alone");
    }
    return events.page_break().end();
}

TypedEvents headers_and_footers()
{
    TypedEvents events;
    events.header().alignment(VW_ALIGN_CENTRE).attribute(bold, true).line("The Harbour");
    events.attribute(bold, false).line("Page *PAGE*").close_block();
    events.footer().alignment(VW_ALIGN_RIGHT).line("1.\t\tlast").close_block();
    events.alignment(VW_ALIGN_LEFT);
    for (int i = 0; i < 10; ++i) {
        events.line("a").attribute(italic, i % 2 == 0).line("b").page_break();
    }
    return events.end();
}

// The first paragraph has a style of its own, as it begins the page. Others that look like it
// get theirs when they come: never, next, and later.
TypedEvents looks_like_the_first(int after)
{
    TypedEvents events;
    events.alignment(VW_ALIGN_CENTRE).line("TITLE").alignment(VW_ALIGN_LEFT);
    for (int i = 0; i < 6; ++i) {
        events.alignment(i == after ? VW_ALIGN_CENTRE : VW_ALIGN_LEFT).line("text");
        events.spacing(i % 2 == 0 ? VW_DOUBLE_SPACING : VW_SINGLE_SPACING).line("more");
    }
    return events.end();
}

TypedEvents blanks_and_empty_lines()
{
    TypedEvents events;
    for (int i = 0; i < 5; ++i) {
        events.line("").line("   indented  text ").line("     ").line("<a> & \"b\"");
    }
    return events.end();
}

TypedEvents long_paragraphs()
{
    TypedEvents events;
    for (int i = 0; i < 5; ++i) {
        words(events, 2000).paragraph();
    }
    return events.end();
}

std::vector<Example> examples()
{
    return {
        {"Empty", TypedEvents().end()},
        {"OneLine", TypedEvents().line("Dear Sir").end()},
        {"EveryAttribute", every_attribute()},
        {"TabStopsAndTabs", tab_stops_and_tabs()},
        {"MarginsAndIndents", margins_and_indents()},
        {"PageBreaks", page_breaks()},
        {"OnlyPageBreaks", TypedEvents().page_break().page_break().page_break().end()},
        {"HeadersAndFooters", headers_and_footers()},
        {"FirstLookNeverAgain", looks_like_the_first(-1)},
        {"FirstLookAtOnceAgain", looks_like_the_first(0)},
        {"FirstLookLaterAgain", looks_like_the_first(4)},
        {"BlanksAndEmptyLines", blanks_and_empty_lines()},
        {"LongParagraphs", long_paragraphs()},
    };
}

class OdfPortionsExample : public ::testing::TestWithParam<Example> {};

TEST_P(OdfPortionsExample, IsTheSameInPortions)
{
    expect_the_same_in_portions(blocks_of(GetParam().events));
}

INSTANTIATE_TEST_SUITE_P(Odf, OdfPortionsExample, ::testing::ValuesIn(examples()),
                         [](const auto &example) { return example.param.name; });

// By their names below the samples' folder, without the extension.
class OdfPortionsSample : public ::testing::TestWithParam<std::string> {};

TEST_P(OdfPortionsSample, IsTheSameInPortions)
{
    expect_the_same_in_portions([](pfsdoc::BlockSink &sink) {
        const fs::path path = fs::path(SAMPLES_DIRECTORY) / (GetParam() + ".doc");
        auto document = pfsdoc::Document::open(path.string());
        ASSERT_TRUE(document.ok());
        EXPECT_FALSE(document.value().read(sink));
    });
}

std::vector<std::string> samples()
{
    std::vector<std::string> found;
    for (const auto &entry : fs::recursive_directory_iterator(SAMPLES_DIRECTORY)) {
        if (entry.path().extension() == ".doc") {
            found.push_back(fs::relative(entry.path(), SAMPLES_DIRECTORY).replace_extension());
        }
    }
    std::sort(found.begin(), found.end());
    return found;
}

INSTANTIATE_TEST_SUITE_P(Odf, OdfPortionsSample, ::testing::ValuesIn(samples()),
                         [](const auto &sample) {
                             std::string name = sample.param;
                             std::erase_if(name, [](unsigned char c) { return !std::isalnum(c); });
                             return name;
                         });

// Whatever can be reported, in any order.
TypedEvents at_random(unsigned seed)
{
    std::minstd_rand random(seed);
    const auto below = [&random](unsigned end) { return static_cast<int32_t>(random() % end); };
    const auto column = [&random] { return static_cast<uint32_t>(random() % 80); };
    TypedEvents events;
    for (int count = below(200); count > 0; --count) {
        switch (below(16)) {
        case 0: events.margins(below(30), 40 + below(60)); break;
        case 1: events.indents(below(9), below(9)); break;
        case 2: events.tabs({column()}, {column()}); break;
        case 3: events.tabs({}); break;
        case 4: events.alignment(static_cast<VwAlignment>(1 + below(3))); break;
        case 5: events.spacing(below(2) == 0 ? VW_SINGLE_SPACING : VW_DOUBLE_SPACING); break;
        case 6: events.attribute(below(12), below(2) == 0); break;
        case 7: events.page_break(); break;
        case 8: events.header(); break;
        case 9: events.footer(); break;
        case 10: events.close_block(); break;
        case 11: events.special("*NEW PAGE*"); break;
        case 12: events.text("\t "); break;
        case 13: events.text("   "); break;
        case 14: events.text("<a> & word"); break;
        default: events.paragraph(); break;
        }
    }
    return events.end();
}

TEST(OdfPortions, AreTheSameForDocumentsAtRandom)
{
    constexpr unsigned documents = 200;
    for (unsigned seed = 1; seed <= documents; ++seed) {
        SCOPED_TRACE(seed);
        const TellBlocks blocks = blocks_of(at_random(seed));
        const Told whole = told(blocks, OdfPackaging::flat, GeneratorTraits::unlimited);
        const Told parts = told(blocks, OdfPackaging::flat, 1 + seed % 40);
        expect_alike(resolved(parts.bytes), resolved(whole.bytes));
    }
}

// ------------------------------------------------------------------- how portions come -----

// A paragraph and its run are an element each, and here each has one style, which counts as
// ten.
TEST(OdfPortions, AreFullWhenTheElementsAre)
{
    TypedEvents events;
    for (int i = 0; i < 40; ++i) {
        events.line("a");
    }
    const TellBlocks blocks = blocks_of(events.end());
    EXPECT_EQ(told(blocks, OdfPackaging::flat, 100).portions, 1U);
    EXPECT_EQ(told(blocks, OdfPackaging::flat, 99).portions, 1U); // but no more would fit
    EXPECT_EQ(told(blocks, OdfPackaging::flat, 98).portions, 2U);
    EXPECT_EQ(told(blocks, OdfPackaging::flat, 40).portions, 3U);
}

// Text counts: a paragraph of 10,000 bytes as 39 elements.
TEST(OdfPortions, CountTextToo)
{
    TypedEvents events;
    for (int i = 0; i < 10; ++i) {
        words(events, 2000).paragraph();
    }
    EXPECT_EQ(told(blocks_of(events.end()), OdfPackaging::flat, 100).portions, 4U);
}

TEST(OdfPortions, LetOneParagraphBeLargerThanThey)
{
    EXPECT_EQ(told(blocks_of(TypedEvents().line(std::string(1000, '\t')).line("a").end()),
                   OdfPackaging::flat, 10)
                  .portions,
              2U);
}

// Each of its own style, `rounds` times.
TypedEvents many_looks(int32_t looks, int rounds)
{
    TypedEvents events;
    for (int32_t i = 0; i < looks * rounds; ++i) {
        const int32_t look = i % looks;
        events.margins(look % 200, 240).text("a").indents(0, look / 200).paragraph();
    }
    return events.end();
}

// A portion has its own styles: ten at most fit into this limit.
TEST(OdfPortions, DoNotGrowWithTheStyles)
{
    const TellBlocks blocks = blocks_of(many_looks(500, 1));
    const Told parts = told(blocks, OdfPackaging::flat, 50, 120);
    EXPECT_GT(parts.portions, 100U);
    expect_alike(resolved(parts.bytes),
                 resolved(told(blocks, OdfPackaging::flat, GeneratorTraits::unlimited).bytes));
}

// The second time around there are no new styles, unless so many have been defined since that
// they are forgotten. Whatever they are called, paragraphs have the right ones.
TEST(OdfPortions, DefineStylesAgainThatTheyHaveForgotten)
{
    const auto definitions_of = [](int32_t looks) {
        const TellBlocks blocks = blocks_of(many_looks(looks, 2));
        const Told whole = told(blocks, OdfPackaging::flat, GeneratorTraits::unlimited);
        const ResolvedStyles styles = resolved(told(blocks, OdfPackaging::flat, 2000).bytes);
        EXPECT_EQ(styles.fault, "");
        EXPECT_EQ(first_difference(styles.text, resolved(whole.bytes).text), "");
        return styles.definitions;
    };
    const auto few = definitions_of(300);
    EXPECT_EQ(few.size(), 300U + 1U); // the first paragraph has one of its own
    const std::size_t size = few.begin()->size();
    const auto many = static_cast<int32_t>(2 * pfsdoc::writers::JoinedXml::most_remembered / size);
    EXPECT_EQ(definitions_of(many).size(), 2U * static_cast<unsigned>(many));
}

// What must be repeated may be much, and the portions are as large then.
TEST(OdfPortions, BecomeLargerThanTheHeader)
{
    TypedEvents events;
    events.header().line(std::string(1000, '\t') + "h").close_block();
    for (int i = 0; i < 2000; ++i) {
        events.line("a");
    }
    const TellBlocks blocks = blocks_of(events.end());
    const Told parts = told(blocks, OdfPackaging::flat, 1);
    EXPECT_GT(parts.portions, 3U);
    EXPECT_LT(parts.portions, 6U);
}

// The limit is one of memory, so it is one of a portion.
TEST(OdfPortions, MayBeManyWhereOneWouldBeTooLarge)
{
    TypedEvents events;
    for (int i = 0; i < 1000; ++i) {
        events.line("a\tb");
    }
    const TellBlocks blocks = blocks_of(events.end());
    EXPECT_GT(told(blocks, OdfPackaging::flat, 50, 100).portions, 50U);
    EXPECT_THROW(told(blocks, OdfPackaging::flat, 200, 100), pfsdoc::writers::TooManyElements);
}

// Each document has its own generators, scratches and numbers.
TEST(OdfPortions, OfManyDocumentsAreIndependent)
{
    constexpr unsigned documents = 8;
    std::vector<std::string> alone(documents);
    std::vector<std::string> together(documents);
    const auto tell = [](unsigned seed, std::string &bytes) {
        bytes = told(blocks_of(at_random(seed + 1)), OdfPackaging::zip, 2).bytes;
    };
    for (unsigned seed = 0; seed < documents; ++seed) {
        tell(seed, alone[seed]);
    }
    std::vector<std::thread> threads;
    for (unsigned seed = 0; seed < documents; ++seed) {
        threads.emplace_back(tell, seed, std::ref(together[seed]));
    }
    for (std::thread &thread : threads) {
        thread.join();
    }
    EXPECT_TRUE(together == alone); // too long to be shown
}

// ---------------------------------------------------------------------- what is told -----

// Prints what each generator is told.
class PrintedPortions final : public pfsdoc::writers::Portions {
public:
    librevenge::RVNGTextInterface &next() override
    {
        std::puts("----");
        generator_ = std::make_unique<librevenge::RVNGRawTextGenerator>(false);
        return *generator_;
    }

private:
    std::unique_ptr<librevenge::RVNGRawTextGenerator> generator_;
};

// Without the page's own properties.
std::string last_portion(const TypedEvents &events, uint64_t portion_elements)
{
    testing::internal::CaptureStdout();
    {
        PrintedPortions portions;
        pfsdoc::writers::RevengeWriter writer(
            portions.next(), {pfsdoc::DocumentKind::write_a, ""}, {},
            {.keeps_styles = true, .portions = &portions, .portion_elements = portion_elements});
        blocks_of(events)(writer);
    }
    std::string trace = testing::internal::GetCapturedStdout();
    for (std::size_t begin = 0; (begin = trace.find("PageSpan(fo", begin)) != std::string::npos;) {
        begin += std::string_view("PageSpan(").size();
        trace.erase(begin, trace.find(')', begin) - begin);
    }
    return trace.substr(trace.rfind("----"));
}

// The second portion is told the page, the header, and in a paragraph of their own the styles
// that runs of the first one's body had, in the order of their use there, and then goes on.
TEST(OdfPortions, AreToldWhatCameBefore)
{
    const TypedEvents events = TypedEvents()
                                   .header()
                                   .line("h")
                                   .close_block()
                                   .line("one")
                                   .spacing(VW_DOUBLE_SPACING)
                                   .attribute(bold, true)
                                   .line("two")
                                   .line("three")
                                   .end();
    EXPECT_EQ(last_portion(events, 40), R"(----
setDocumentMetaData(meta:generator: pfsdoc )" PFSDOC_VERSION R"()
startDocument()
  openPageSpan()
    openHeader(librevenge:occurrence: all)
      defineParagraphStyle(fo:line-height: 12.0000pt, fo:text-align: left, librevenge:paragraph-id: 7)
      openParagraph(librevenge:paragraph-id: 7)
        defineCharacterStyle(fo:font-size: 12.0000pt, librevenge:span-id: 8, style:font-name: Courier New)
        openSpan(librevenge:span-id: 8)
          insertText(text: h)
        closeSpan()
      closeParagraph()
      openParagraph(librevenge:paragraph-id: 7)
      closeParagraph()
      openParagraph(librevenge:paragraph-id: 7)
      closeParagraph()
    closeHeader()
    openParagraph()
      defineCharacterStyle(fo:font-size: 12.0000pt, librevenge:span-id: 4, style:font-name: Courier New)
      openSpan(librevenge:span-id: 4)
      closeSpan()
      defineCharacterStyle(fo:font-size: 12.0000pt, fo:font-weight: bold, librevenge:span-id: 6, style:font-name: Courier New)
      openSpan(librevenge:span-id: 6)
      closeSpan()
    closeParagraph()
    defineParagraphStyle(fo:line-height: 24.0000pt, fo:text-align: left, librevenge:paragraph-id: 9)
    openParagraph(librevenge:paragraph-id: 9)
      openSpan(librevenge:span-id: 6)
        insertText(text: three)
      closeSpan()
    closeParagraph()
  closePageSpan()
endDocument()
)");
}

} // namespace

// The cost of hostile documents as OpenDocument, counted in bytes and styles; and documents that
// exceed what is held in memory.
#include "tests/lib/writers/odf_written.h"

#include "lib/base/scratch_file.h"
#include "pfsdoc/writer.h"

#include <cstddef>
#include <set>
#include <string>
#include <unistd.h>
#include <utility>
#include <vector>

namespace {

using namespace pfsdoc;
using namespace tests;

// ----------------------------------------------------------------- hostile documents ----

// A paragraph as a program might pass it, without a document.
Paragraph paragraph_of(std::string bytes)
{
    Paragraph paragraph;
    paragraph.bytes = std::move(bytes);
    paragraph.pieces.push_back({0, 0, 0, PieceKind::text, false});
    return paragraph;
}

struct Sizes {
    std::size_t package;
    std::size_t flat;
};

// The result for one paragraph.
Sizes sizes_of(const Paragraph &paragraph)
{
    Sizes sizes{};
    for (const char *format : {"odt", "fodt"}) {
        StringOutput output;
        const auto writer = find_format(format)->make_writer(output, {}, {});
        writer.value()->paragraph(paragraph);
        writer.value()->end_of_document();
        (format == std::string_view("odt") ? sizes.package : sizes.flat) = output.text.size();
    }
    return sizes;
}

// Each written byte comes from a bounded number of others.
void expect_linear(const Paragraph &half, const Paragraph &whole, std::size_t most_per_byte)
{
    const Sizes small = sizes_of(half);
    const Sizes large = sizes_of(whole);
    EXPECT_LT(large.flat, 2 * small.flat + 1000);
    EXPECT_LT(large.flat, most_per_byte * whole.bytes.size() + 10'000);
    EXPECT_LT(large.package, whole.bytes.size());
}

TEST(OdfCost, IsLinearInTabsAndSpaces)
{
    expect_linear(paragraph_of(std::string(500'000, '\t')),
                  paragraph_of(std::string(1'000'000, '\t')), 11);
    const auto parted = [](std::size_t count) {
        std::string bytes;
        for (std::size_t i = 0; i < count; ++i) {
            bytes.append("a  ");
        }
        return paragraph_of(bytes + "b");
    };
    expect_linear(parted(100'000), parted(200'000), 11);
}

TEST(OdfCost, IsLinearInAttributes)
{
    const auto changing = [](std::size_t count) {
        Paragraph paragraph;
        paragraph.bytes.assign(count, 'x');
        for (std::size_t i = 0; i < count; ++i) {
            const AttributeSet attributes = attribute_bit(i % 2 == 0 ? bold : underline);
            paragraph.pieces.push_back({i, 0, attributes, PieceKind::text, false});
        }
        return paragraph;
    };
    expect_linear(changing(100'000), changing(200'000), 60);
}

// Commands, attributes and breaks in turn: each piece is visited a bounded number of times, or this
// would take minutes.
TEST(OdfCost, IsLinearInPieces)
{
    constexpr std::size_t count = 1'000'000;
    Paragraph paragraph;
    for (std::size_t i = 0; i < count; ++i) {
        const PieceKind kind = i % 3 == 0   ? PieceKind::command
                               : i % 3 == 1 ? PieceKind::text
                                            : PieceKind::page_break;
        const AttributeSet attributes = attribute_bit(i % 2 == 0 ? bold : italic);
        paragraph.pieces.push_back({paragraph.bytes.size(), 0, attributes, kind, false});
        paragraph.bytes.append(i % 3 == 0 ? "*P *" : i % 3 == 1 ? "x" : "");
    }
    EXPECT_LT(sizes_of(paragraph).flat, 100 * count);
}

TEST(OdfCost, IsBoundedForThousandsOfPageBreaks)
{
    TypedEvents events;
    constexpr std::size_t pages = 5'000;
    for (std::size_t i = 0; i < pages; ++i) {
        events.page_break();
        if (i % 3 == 0) {
            events.text("x");
        }
    }
    events.end();
    const OdfFacts facts{flat(events)};
    EXPECT_EQ(facts.body().size(), pages + 1);
    EXPECT_EQ(facts.styles(), (std::set<std::string>{"paragraph Left-page"}));
}

// More styles than are remembered, twice: each is defined again, under another name.
TEST(OdfCost, IsBoundedWhereAllParagraphsLookDifferent)
{
    TypedEvents events;
    constexpr int32_t looks = 4'000;
    for (int32_t i = 0; i < 2 * looks; ++i) {
        events.indents(i % 60, i % looks / 60).text("x").paragraph();
    }
    const OdfFacts facts{flat(events.end())};
    EXPECT_EQ(facts.body().size(), static_cast<std::size_t>(2 * looks));
    EXPECT_GT(facts.styles().size(), static_cast<std::size_t>(looks));
    EXPECT_LT(facts.styles().size(), static_cast<std::size_t>(2 * looks + 1));
}

TEST(OdfCost, BalancesBlocksThatDoNotEnd)
{
    flat(TypedEvents().header().text("a").footer().text("b"));
    flat(TypedEvents().close_block().text("a").header().end());
}

// ---------------------------------------------------------------------- spill stores ----

// Larger than what is held in memory: the same bytes, whether the writer opens files itself or
// was given some.
TEST(OdfSpill, GivesTheSameBytesInGivenFiles)
{
    TypedEvents events;
    std::string expected;
    for (int32_t i = 0; i < 6'000; ++i) {
        const std::string line = std::to_string(i) + std::string(200, 'x');
        events.indents(i % 50, i / 120).text(line).paragraph();
        expected.append(line).append("\n");
    }
    events.end();
    const std::vector<int> files = {base::open_scratch_file(), base::open_scratch_file()};
    for (const char *format : {"odt", "fodt"}) {
        EXPECT_EQ(find_format(format)->scratch_files, files.size());
        WriterOptions options;
        const std::string without = written(format, events, options).text;
        options.scratch_files = files;
        EXPECT_TRUE(written(format, events, options).text == without);
    }
    EXPECT_TRUE(OdfFacts(flat(events)).text() == expected);
    for (const int file : files) {
        EXPECT_EQ(::lseek(file, 0, SEEK_END), 0) << "not left empty";
        ::close(file);
    }
}

} // namespace

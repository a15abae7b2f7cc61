// Margins, indents, tab stops and alignment as columns of a page.
#include "lib/page/page_geometry.h"

#include "vs_pfs.h"

#include <gtest/gtest.h>

namespace {

using pfsdoc::Paragraph;
using pfsdoc::PieceKind;
using pfsdoc::TabStop;
using pfsdoc::TabStops;
using pfsdoc::page::line_alignment;
using pfsdoc::page::LineAlignment;
using pfsdoc::page::LineGeometries;
using pfsdoc::page::LineGeometry;
using pfsdoc::page::page_columns;
using pfsdoc::page::PageColumns;

constexpr int32_t columns(int32_t count)
{
    return count * VW_TWIPS_PER_COLUMN;
}

LineGeometry line_geometry(const Paragraph &paragraph)
{
    return LineGeometries().of(paragraph);
}

Paragraph paragraph_with(int32_t left_margin, int32_t right_margin)
{
    Paragraph paragraph;
    paragraph.margins = {columns(left_margin), columns(right_margin)};
    return paragraph;
}

void add_piece(Paragraph &paragraph, PieceKind kind, std::string_view bytes)
{
    paragraph.pieces.push_back({paragraph.bytes.size(), 0, 0, kind, false});
    paragraph.bytes.append(bytes);
}

TEST(PageGeometry, TakesMarginsAsColumns)
{
    EXPECT_EQ(page_columns({columns(4), columns(64)}), (PageColumns{4, 64}));
    EXPECT_EQ((PageColumns{4, 64}).width(), 61);
}

TEST(PageGeometry, TakesMarginsThatCannotBeForTheDefaultOnes)
{
    const PageColumns defaults{9, 69};
    EXPECT_EQ(page_columns({0, 0}), defaults);
    EXPECT_EQ(page_columns({columns(40), columns(40)}), defaults);
    EXPECT_EQ(page_columns({columns(40), columns(30)}), defaults);
    EXPECT_EQ(page_columns({columns(-1), columns(30)}), defaults);
    EXPECT_EQ(page_columns({columns(0), columns(256)}), defaults);
    EXPECT_EQ(page_columns({columns(0), columns(255)}), (PageColumns{0, 255}));
}

TEST(PageGeometry, CountsIndentsFromTheLeftMarginAndLeavesAColumn)
{
    Paragraph paragraph = paragraph_with(10, 19);
    paragraph.left_indent = columns(3);
    paragraph.first_line_indent = columns(200);
    const LineGeometry geometry = line_geometry(paragraph);
    EXPECT_EQ(geometry.left_margin, 10U);
    EXPECT_EQ(geometry.width, 10U);
    EXPECT_EQ(geometry.indent, 3U);
    EXPECT_EQ(geometry.first_line_indent, 9U);
}

TEST(PageGeometry, LeavesIndentsOutWhereTextIsNotLeftAligned)
{
    Paragraph paragraph = paragraph_with(10, 19);
    paragraph.left_indent = columns(3);
    paragraph.alignment = VW_ALIGN_RIGHT;
    EXPECT_EQ(line_geometry(paragraph).alignment, LineAlignment::right);
    EXPECT_EQ(line_geometry(paragraph).indent, 0U);
}

TEST(PageGeometry, KeepsTheTabStopsBetweenTheMargins)
{
    Paragraph paragraph = paragraph_with(10, 30);
    std::vector<TabStop> stops;
    for (const uint32_t column : {5U, 10U, 11U, 30U, 31U}) {
        stops.push_back({VW_TAB_LEFT, 0, 0, column * VW_TWIPS_PER_COLUMN});
    }
    stops.push_back({VW_TAB_DECIMAL, '.', 0, 20 * VW_TWIPS_PER_COLUMN});
    paragraph.tab_stops = stops;
    const LineGeometry geometry = line_geometry(paragraph);
    ASSERT_EQ(geometry.tab_stops.size(), 3U);
    EXPECT_EQ(geometry.tab_stops[0].column, 1U);
    EXPECT_FALSE(geometry.tab_stops[0].decimal);
    EXPECT_EQ(geometry.tab_stops[1].column, 20U);
    EXPECT_EQ(geometry.tab_stops[2].column, 10U);
    EXPECT_TRUE(geometry.tab_stops[2].decimal);
}

Paragraph with_stops(int32_t left, int32_t right, TabStops stops)
{
    Paragraph paragraph = paragraph_with(left, right);
    paragraph.tab_stops = std::move(stops);
    return paragraph;
}

TEST(PageGeometry, OfOneParagraphAfterTheOtherIsThatOfEach)
{
    const TabStops some = {{VW_TAB_LEFT, 0, 0, 20 * VW_TWIPS_PER_COLUMN},
                           {VW_TAB_LEFT, 0, 0, 40 * VW_TWIPS_PER_COLUMN}};
    const TabStops others = {{VW_TAB_DECIMAL, '.', 0, 25 * VW_TWIPS_PER_COLUMN}};
    Paragraph indented = with_stops(10, 60, some);
    indented.first_line_indent = columns(3);
    LineGeometries geometries;
    for (const Paragraph &paragraph :
         {with_stops(10, 60, some), indented, with_stops(10, 30, some), with_stops(10, 30, others),
          with_stops(10, 30, {}), with_stops(10, 60, some)}) {
        EXPECT_EQ(geometries.of(paragraph), line_geometry(paragraph));
    }
    EXPECT_EQ(geometries.tab_stop_changes(), 5U);
}

TEST(TabStops, AreSharedByCopiesAndEqualByWhatTheyAre)
{
    const TabStops stops = {{VW_TAB_LEFT, 0, 0, 144}};
    const TabStops copy = stops;
    const TabStops same = {{VW_TAB_LEFT, 0, 0, 144}};
    EXPECT_TRUE(stops.is_shared_with(copy));
    EXPECT_EQ(stops.begin(), copy.begin());
    EXPECT_FALSE(stops.is_shared_with(same));
    EXPECT_EQ(stops, same);
    EXPECT_NE(stops, TabStops());
    EXPECT_TRUE(TabStops().empty());
}

TEST(PageGeometry, AlignsByACommandInFrontOfTheText)
{
    Paragraph paragraph;
    add_piece(paragraph, PieceKind::text, "  ");
    add_piece(paragraph, PieceKind::command, "*center*");
    add_piece(paragraph, PieceKind::text, "Minutes");
    EXPECT_EQ(line_alignment(paragraph), LineAlignment::centre);
}

TEST(PageGeometry, IgnoresACommandAfterText)
{
    Paragraph paragraph;
    add_piece(paragraph, PieceKind::text, "Minutes");
    add_piece(paragraph, PieceKind::command, "*CENTER*");
    EXPECT_EQ(line_alignment(paragraph), LineAlignment::left);
}

} // namespace

// From events to blocks. Blocks are written as text: see BlockNotes.
#include "lib/reading/paragraph_collector.h"

#include "tests/lib/reading/typed_events.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using namespace pfsdoc;
using tests::TypedEvents;

// One line per block. A paragraph's pieces are in brackets, a text piece with the codes of its
// attributes first: [Dear ][2:Sir]. Commands are [*...*], cut ones end in ~, and a
// page break is [/].
class BlockNotes final : public BlockSink {
public:
    void paragraph(const Paragraph &paragraph) override
    {
        notes += "paragraph ";
        for (std::size_t i = 0; i < paragraph.pieces.size(); ++i) {
            note_piece(paragraph.pieces[i], paragraph.piece_bytes(i));
        }
        notes += "\n";
        last = paragraph;
    }
    void page_break(uint32_t source) override
    {
        notes += "page break" + (source != 0 ? " " + std::to_string(source) : "") + "\n";
    }
    void block_begin(BlockKind kind) override
    {
        notes += kind == BlockKind::header ? "header\n" : "footer\n";
    }
    void block_end() override
    {
        notes += "block end\n";
    }
    void end_of_document() override
    {
        notes += "end\n";
    }

    std::string notes;
    Paragraph last;

private:
    void note_piece(const Piece &piece, std::string_view bytes)
    {
        notes += "[";
        for (int32_t code = 0; code < attribute_codes_end; ++code) {
            if (piece.kind == PieceKind::text && (piece.attributes & attribute_bit(code)) != 0) {
                notes += std::to_string(code) + ":";
            }
        }
        notes += piece.kind == PieceKind::page_break ? "/" : std::string(bytes);
        notes += piece.cut ? "~]" : "]";
    }
};

std::string blocks(const TypedEvents &events)
{
    BlockNotes sink;
    reading::ParagraphCollector collector(sink);
    events.tell(collector);
    collector.finish();
    return sink.notes;
}

Paragraph
last_paragraph(const TypedEvents &events,
               reading::LineSpacingRule rule = reading::LineSpacingRule::at_last_character)
{
    BlockNotes sink;
    reading::ParagraphCollector collector(sink, rule);
    events.tell(collector);
    collector.finish();
    return sink.last;
}

// ---------------------------------------------------------------------- paragraphs -----

TEST(Collector, MakesAParagraphOfTheCharactersBeforeABreak)
{
    EXPECT_EQ(blocks(TypedEvents().line("One").line("").line("Two").end()), "paragraph [One]\n"
                                                                            "paragraph \n"
                                                                            "paragraph [Two]\n"
                                                                            "end\n");
}

TEST(Collector, EndsAnOpenParagraphWithTheDocument)
{
    EXPECT_EQ(blocks(TypedEvents().text("One").end()), "paragraph [One]\nend\n");
}

TEST(Collector, EndsADocumentWhoseEndWasNotReported)
{
    EXPECT_EQ(blocks(TypedEvents().line("One").text("Tw")), "paragraph [One]\n"
                                                            "paragraph [Tw]\n"
                                                            "end\n");
}

TEST(Collector, ReportsTheEndOnceAndNothingAfterIt)
{
    BlockNotes sink;
    reading::ParagraphCollector collector(sink);
    TypedEvents().end().line("late").end().tell(collector);
    collector.finish();
    collector.finish();
    EXPECT_EQ(sink.notes, "end\n");
}

TEST(Collector, NeverAsksForAStop)
{
    BlockNotes sink;
    reading::ParagraphCollector collector(sink);
    EXPECT_EQ(collector.on_event(Character{'x'}, 0), 0);
    EXPECT_EQ(collector.on_event(Break{VW_BREAK_PARAGRAPH, 0}, 0), 0);
}

TEST(Collector, CutsTextWhereAttributesChange)
{
    TypedEvents events;
    events.text("Dear ").attribute(4, true).attribute(2, true).text("Sir");
    events.attribute(4, false).attribute(2, false).line("!");
    EXPECT_EQ(blocks(events.end()), "paragraph [Dear ][2:4:Sir][!]\nend\n");
}

TEST(Collector, KeepsAttributesThroughABreak)
{
    TypedEvents events;
    events.attribute(11, true).line("one").line("two").attribute(11, false).line("three");
    EXPECT_EQ(blocks(events.end()), "paragraph [11:one]\n"
                                    "paragraph [11:two]\n"
                                    "paragraph [three]\n"
                                    "end\n");
}

TEST(Collector, IgnoresReportsWithoutAChange)
{
    TypedEvents events;
    events.attribute(2, true).text("a").attribute(2, true).attribute(3, false).text("b");
    events.margins(10, 70).tabs({20}).add(Font{24}).add(SectionStart{0}).line("c");
    EXPECT_EQ(blocks(events.end()), "paragraph [2:abc]\nend\n");
}

TEST(Collector, IgnoresAttributeCodesOutsideItsSet)
{
    TypedEvents events;
    events.attribute(-1, true).attribute(16, true).attribute(1000000, true).line("plain");
    EXPECT_EQ(blocks(events.end()), "paragraph [plain]\nend\n");
}

TEST(Collector, DropsMissingBytes)
{
    TypedEvents events;
    events.text("ab").add(Character{-1}).add(Character{256}).line("c");
    EXPECT_EQ(blocks(events.end()), "paragraph [abc]\nend\n");
}

// ------------------------------------------------------------- indents and the rest -----

TEST(Collector, GivesIndentsToTheParagraphBeforeTheBreak)
{
    const Paragraph indented =
        last_paragraph(TypedEvents().indents(0, 0).text("Hello").indents(2, 2).paragraph());
    EXPECT_EQ(indented.left_indent, 288);
    EXPECT_EQ(indented.first_line_indent, 288);

    const Paragraph first_line_only =
        last_paragraph(TypedEvents().text("Hello").indents(0, 5).paragraph().indents(0, 0));
    EXPECT_EQ(first_line_only.left_indent, 0);
    EXPECT_EQ(first_line_only.first_line_indent, 720);
}

TEST(Collector, DoesNotHandIndentsDownThatNobodyReset)
{
    const Paragraph next =
        last_paragraph(TypedEvents().text("One").indents(0, 5).paragraph().line("Two"));
    EXPECT_EQ(next.left_indent, 0);
    EXPECT_EQ(next.first_line_indent, 0);
}

TEST(Collector, TakesTabsWhereTextBeginsAndMarginsAtTheBreak)
{
    TypedEvents events;
    events.margins(10, 70).tabs({15, 20}, {30}).text("first line ");
    events.margins(5, 40).tabs({8}).line("after a ruler in mid-paragraph");
    const Paragraph paragraph = last_paragraph(events);
    EXPECT_EQ(paragraph.margins, (Margins{720, 5760}));
    ASSERT_EQ(paragraph.tab_stops.size(), 3U);
    EXPECT_EQ(paragraph.tab_stops[1], (TabStop{VW_TAB_LEFT, 0, 0, 2880}));
    EXPECT_EQ(paragraph.tab_stops[2], (TabStop{VW_TAB_DECIMAL, '.', 0, 4320}));

    const Paragraph next = last_paragraph(events.line("next"));
    EXPECT_EQ(next.margins, (Margins{720, 5760}));
    ASSERT_EQ(next.tab_stops.size(), 1U);
    EXPECT_EQ(next.tab_stops[0].position, 1152U);
}

TEST(Collector, KeepsNoMoreTabStopsThanATableHolds)
{
    TypedEvents events;
    events.add(TabStopsBegin{});
    for (uint32_t column = 0; column < 1000; ++column) {
        events.add(TabStop{VW_TAB_LEFT, 0, 0, column});
    }
    events.add(TabStopsEnd{}).line("x");
    EXPECT_EQ(last_paragraph(events).tab_stops.size(), reading::ParagraphCollector::max_tab_stops);
}

TEST(Collector, TakesTheAlignmentAtTheBreak)
{
    TypedEvents events;
    events.alignment(VW_ALIGN_LEFT).alignment(VW_ALIGN_CENTRE).line("Title");
    EXPECT_EQ(last_paragraph(events).alignment, VW_ALIGN_CENTRE);
    EXPECT_EQ(last_paragraph(events.alignment(VW_ALIGN_LEFT).line("x")).alignment, VW_ALIGN_LEFT);
}

// Professional Write, lines of type 3, 1: each type byte is reported as it ends the line
// before and as it starts its own.
TEST(LineSpacing, OfProfessionalWriteIsThatOfTheLastLinesTypeByte)
{
    TypedEvents double_spaced;
    double_spaced.spacing(240).spacing(480).text("double").spacing(240).paragraph();
    EXPECT_EQ(last_paragraph(double_spaced).line_spacing, VW_DOUBLE_SPACING);
    TypedEvents single_spaced = double_spaced;
    single_spaced.spacing(240).text("single").spacing(480).paragraph();
    EXPECT_EQ(last_paragraph(single_spaced).line_spacing, VW_SINGLE_SPACING);
}

// Lines of type 0 do not specify spacing; the paragraph's last line does.
TEST(LineSpacing, OfProfessionalWriteComesWithTheLastOfSeveralLines)
{
    TypedEvents events;
    events.spacing(240).text("first line").spacing(480).text(" ");
    events.spacing(480).text("last line").spacing(240).paragraph();
    EXPECT_EQ(last_paragraph(events).line_spacing, VW_DOUBLE_SPACING);
}

// First Choice 2: each line's spacing at its end.
TEST(LineSpacing, OfFirstChoiceIsThatOfTheLastLinesEnd)
{
    TypedEvents events;
    events.spacing(240).text("double").spacing(480).paragraph();
    EXPECT_EQ(last_paragraph(events, reading::LineSpacingRule::at_break).line_spacing,
              VW_DOUBLE_SPACING);
    events.text("single").spacing(240).paragraph();
    EXPECT_EQ(last_paragraph(events, reading::LineSpacingRule::at_break).line_spacing,
              VW_SINGLE_SPACING);
}

TEST(LineSpacing, OfAnEmptyParagraphIsTheOneAtTheBreak)
{
    TypedEvents events;
    events.spacing(240).line("x").spacing(480).paragraph();
    EXPECT_EQ(last_paragraph(events).line_spacing, VW_DOUBLE_SPACING);
}

TEST(LineSpacing, RuleFollowsTheKind)
{
    EXPECT_EQ(reading::line_spacing_rule(DocumentKind::professional_write_1),
              reading::LineSpacingRule::at_last_character);
    EXPECT_EQ(reading::line_spacing_rule(DocumentKind::professional_write_2),
              reading::LineSpacingRule::at_last_character);
    EXPECT_EQ(reading::line_spacing_rule(DocumentKind::first_choice_2),
              reading::LineSpacingRule::at_break);
}

// ---------------------------------------------------------- commands and page breaks ----

TEST(Collector, KeepsACommandAsAPieceOfItsOwn)
{
    TypedEvents events;
    events.text("a").special("*PRINTER 27,15*").line("b");
    EXPECT_EQ(blocks(events.end()), "paragraph [a][*PRINTER 27,15*][b]\nend\n");
}

TEST(Collector, SeparatesTwoCommandsInARow)
{
    EXPECT_EQ(blocks(TypedEvents().special("*C**J x*").paragraph().end()),
              "paragraph [*C*][*J x*]\nend\n");
}

TEST(Collector, IgnoresTheSpacesOfALineOfSpaces)
{
    EXPECT_EQ(blocks(TypedEvents().special("   ").paragraph().end()), "paragraph \nend\n");
}

TEST(Collector, PutsAPageBreakBeforeTheParagraphThatItBegins)
{
    EXPECT_EQ(blocks(TypedEvents().line("One").new_page().paragraph().line("Two").end()),
              "paragraph [One]\n"
              "page break\n"
              "paragraph [*NEW PAGE*]\n"
              "paragraph [Two]\n"
              "end\n");
}

TEST(Collector, KeepsThePositionOfAPageBreakInsideAParagraph)
{
    EXPECT_EQ(blocks(TypedEvents().text("One ").new_page().line(" two").end()),
              "paragraph [One ][/][*NEW PAGE*][ two]\nend\n");
}

TEST(Collector, ShortensACommandThatDoesNotEnd)
{
    TypedEvents events;
    events.special("*PRINTER ").special(std::string(100000, 'x')).special("*").line("text");
    const std::string kept =
        "*PRINTER " + std::string(reading::ParagraphCollector::max_command_bytes - 9, 'x');
    EXPECT_EQ(blocks(events), "paragraph [" + kept + "~][text]\nend\n");
    EXPECT_EQ(last_paragraph(events).omitted_command_bytes,
              100000U + 10U - reading::ParagraphCollector::max_command_bytes);
}

TEST(Collector, EndsAnUnterminatedCommandWithWhateverComesNext)
{
    EXPECT_EQ(blocks(TypedEvents().special("*P x").text("t").special("*C*").paragraph().end()),
              "paragraph [*P x][t][*C*]\nend\n");
    EXPECT_EQ(blocks(TypedEvents().special("*P x").paragraph().special("*C*").paragraph().end()),
              "paragraph [*P x]\nparagraph [*C*]\nend\n");
    EXPECT_EQ(blocks(TypedEvents().special("*P x").end()), "paragraph [*P x]\nend\n");
}

// -------------------------------------------------------------------------- blocks -----

TEST(Collector, ReportsHeaderAndFooterLinesWithinTheirBlocks)
{
    TypedEvents events;
    events.header().line("Top").line("Second").close_block();
    events.footer().line("Bottom").close_block().line("Body");
    EXPECT_EQ(blocks(events.end()), "header\n"
                                    "paragraph [Top]\n"
                                    "paragraph [Second]\n"
                                    "block end\n"
                                    "footer\n"
                                    "paragraph [Bottom]\n"
                                    "block end\n"
                                    "paragraph [Body]\n"
                                    "end\n");
}

TEST(Collector, BalancesBlocksThatDoNot)
{
    EXPECT_EQ(blocks(TypedEvents().close_block().line("x").close_block().end()),
              "paragraph [x]\nend\n");
    EXPECT_EQ(blocks(TypedEvents().header().text("h").footer().text("f").end()), "header\n"
                                                                                 "paragraph [h]\n"
                                                                                 "block end\n"
                                                                                 "footer\n"
                                                                                 "paragraph [f]\n"
                                                                                 "block end\n"
                                                                                 "end\n");
    EXPECT_EQ(blocks(TypedEvents().add(HeaderFooter{9, 3}).line("x").end()),
              "paragraph [x]\nend\n");
    EXPECT_EQ(blocks(TypedEvents().text("x").add(Break{-5, 0}).line("y").end()),
              "paragraph [xy]\nend\n");
}

// ------------------------------------------------------------------ source offsets -----

TEST(SourceOffsets, OfBodyParagraphsMeet)
{
    TypedEvents events; // text from 512: "ab" 0D "cd" 0D
    events.at(512).margins(0, 60).text("ab").at(515).paragraph();
    const Paragraph first = last_paragraph(events);
    EXPECT_EQ(first.source_begin, 512U);
    EXPECT_EQ(first.source_end, 515U);

    const Paragraph second = last_paragraph(events.text("cd").at(518).paragraph());
    EXPECT_EQ(second.source_begin, 515U);
    EXPECT_EQ(second.source_end, 518U);
}

TEST(SourceOffsets, OfAPieceAreThoseOfItsFirstByte)
{
    TypedEvents events; // 'a' at 512, then 'b' with an attribute byte at 513
    events.at(512).margins(0, 60).text("a").at(515).attribute(2, true).add(Character{'b'});
    const Paragraph paragraph = last_paragraph(events.at(516).paragraph());
    ASSERT_EQ(paragraph.pieces.size(), 2U);
    EXPECT_EQ(paragraph.pieces[0].source, 512U);
    EXPECT_EQ(paragraph.pieces[1].source, 513U);
}

// The page break is reported when the keyword has been read, the echo from its start.
TEST(SourceOffsets, OfANewPageCommandStartAtItsAsterisk)
{
    TypedEvents events; // "a*N*" from 512
    events.at(512).margins(0, 60).text("a").at(516).page_break().at(513).special("*N*");
    const Paragraph paragraph = last_paragraph(events.at(517).paragraph());
    ASSERT_EQ(paragraph.pieces.size(), 3U);
    EXPECT_EQ(paragraph.pieces[1].source, 513U);
    EXPECT_EQ(paragraph.pieces[2].source, 513U);
}

TEST(SourceOffsets, OfAHeaderLineEncloseItsTextAlone)
{
    TypedEvents events; // a header text of two bytes at 29, the body at 512
    events.at(512).margins(0, 60).header().at(29).text("Hi").at(512).paragraph();
    const Paragraph header = last_paragraph(events);
    EXPECT_EQ(header.source_begin, 29U);
    EXPECT_EQ(header.source_end, 31U);

    const Paragraph body = last_paragraph(events.close_block().text("x").at(514).paragraph());
    EXPECT_EQ(body.source_begin, 512U);
    EXPECT_EQ(body.source_end, 514U);
}

TEST(SourceOffsets, StayZeroWhereNobodyAskedForThem)
{
    const Paragraph paragraph = last_paragraph(TypedEvents().text("a").special("*C*").paragraph());
    EXPECT_EQ(paragraph.pieces[1].source, 0U);
    EXPECT_EQ(paragraph.source_end, 0U);
}

} // namespace

// Small documents as annotated dumps: the elements of each kind's text, and one whole file of each
// family.
#include "tests/lib/explain/explained.h"

namespace {

using namespace tests;
using namespace pfsdoc;

std::string dump_from(const std::string &document, uint32_t offset)
{
    StringOutput output;
    // Wide enough that no words continue on another line.
    explaining::ExplainTextWriter writer(output, CodePage::ibm437(), explaining::Colours::off, 240);
    for (const Span &span : spans_of(document)) {
        if (span.offset >= offset) {
            writer.span(span);
        }
    }
    return output.text;
}

std::string text_of(DocumentKind kind, std::string_view body)
{
    const bool choice = is_first_choice(kind);
    return dump_from(document_of(kind, bytes(body)),
                     choice ? choice_body_offset : write_body_offset - 1);
}

// A PFS: WRITE document: a swallowed return, indent, attributes, a command and something like one,
// a line of spaces, and fill after the end.
TEST(Golden, WriteB)
{
    EXPECT_EQ(
        text_of(DocumentKind::write_b,
                "0D '  Hello' C1 01 C2 03 0D 0C 'more*N*x*' 0D '   ' 0D 0E 1A 1A"),
        R"(    1024  0C                                               |♀|                 form feed: the text begins after it
    1025  0D                                               |♪|                 line end before the first line: skipped
    1026  20 20                                            |  |                leading spaces: indent
    1028  48 65 6C 6C 6F                                   |Hello|             text
    1033  C1 01                                            |A|                 text: underline, each character with its attribute byte
    1035  C2 03                                            |B|                 text: bold, underline, each character with its attribute byte
    1037  0D                                               |♪|                 line end, hard: the next word would have fitted: 9 + 10 is not beyond 64
    1038  0C                                               |♀|                 form feed within the text: skipped
    1039  6D 6F 72 65                                      |more|              text
    1043  2A 4E 2A                                         |*N*|               command: new page
    1046  78 2A                                            |x*|                text
    1048  0D                                               |♪|                 line end, hard: no word follows in the next line
    1049  20 20 20                                         |   |               leading spaces: indent
    1052  0D                                               |♪|                 line end, hard: no word follows in the next line
    1053  0E                                               |♫|                 end of the document
    1054  1A 1A                                            |→→|                after the end: fill of file transfers
)");
}

// Bytes below 0xC0 stand alone here, and all characters are translated.
TEST(Golden, WritingAssistant)
{
    EXPECT_EQ(
        text_of(DocumentKind::writing_assistant, "0D 'a' 12 80 C1 11 F0 20 'b' 0D 0E 00 00 'junk'"),
        R"(    1024  0C                                               |♀|                 form feed: the text begins after it
    1025  0D                                               |♪|                 line end before the first line: skipped
    1026  61 12 80                                         |aδÇ|               text
    1029  C1 11                                            |A|                 text: underline, each character with its attribute byte
    1031  F0 20                                            |│|                 text, each character with its attribute byte
    1033  62                                               |b|                 text
    1034  0D                                               |♪|                 line end, hard: no word follows in the next line
    1035  0E                                               |♫|                 end of the document
    1036  00 00                                            |  |                after the end: zeros
    1038  6A 75 6E 6B                                      |junk|              after the end: left over
)");
}

// Type bytes, records, a hidden stretch.
TEST(Golden, ProfessionalWrite)
{
    EXPECT_EQ(
        text_of(DocumentKind::professional_write_1,
                "01 '   Hi' C1 43 07 05 01 0B 30 00 'more' 07 04 09 AA 02 'a' 02 'cut' 0C "
                "01 0E"),
        R"(    1024  0C                                               |♀|                 form feed: the text begins after it
    1025  01                                               |☺|                 line type: ends its paragraph, single spacing
    1026  20 20 20                                         |   |               leading spaces: indent
    1029  48 69                                            |Hi|                text
    1031  C1 43                                            |┴|                 text: bold, underline, each character with its attribute byte
    1033  07 05 01 0B 30                                   |•♣☺♂0|             record: margins, columns 11 and 48
    1038  00                                               | |                 line type: goes on in the next line; the line before ends hard: its type says so
    1039  6D 6F 72 65                                      |more|              text
    1043  07 04 09 AA                                      |•♦○¬|              record of type 9: skipped
    1047  02                                               |☻|                 line type: goes on, may hide text; the line before ends soft: its type says that it goes on, and becomes a space
    1048  61                                               |a|                 text
    1049  02                                               |☻|                 hides the rest of the line
    1050  63 75 74                                         |cut|               hidden text
    1053  0C                                               |♀|                 form feed within the text: skipped
    1054  01                                               |☺|                 line type: ends its paragraph, single spacing; the line before ends soft: its type says that it goes on, and becomes a space
    1055  0E                                               |♫|                 end of the document
)");
}

TEST(Golden, ProfessionalWriteCutInARecord)
{
    EXPECT_EQ(
        text_of(DocumentKind::professional_write_2, "07 05 01 0B"),
        R"(    1024  0C                                               |♀|                 form feed: the text begins after it
    1025  07 05 01 0B                                      |•♣☺♂|              record, cut off by the end of the file
)");
}

// Both line ends, and characters with one and with two attribute bytes.
TEST(Golden, FirstChoice2CutInACharacter)
{
    EXPECT_EQ(
        text_of(DocumentKind::first_choice_2,
                "'  Hello ' C1 01 C2 48 04 0C 0D '*NEW PAGE*' 0C 'x' C1 48"),
        R"(     512  20 20                                            |  |                leading spaces: indent
     514  48 65 6C 6C 6F 20                                |Hello |            text
     520  C1 01                                            |A|                 text: underline, each character with its attribute byte
     522  C2 48 04                                         |┬|                 text: superscript, each character with its two attribute bytes
     525  0C                                               |♀|                 line end, hard: no word follows in the next line; single spacing
     526  0D                                               |♪|                 line end, hard: the line is empty; double spacing
     527  2A 4E 45 57 20 50 41 47 45 2A                    |*NEW PAGE*|        command: new page
     537  0C                                               |♀|                 line end, hard: the next word would have fitted: 10 + 1 is not beyond 60; single spacing
     538  78                                               |x|                 text
     539  C1 48                                            |┴H|                a character cut off by the end of the file
)");
}

// A ruler with an invalid mark, a page break, and header chains of all lengths.
TEST(Golden, FirstChoice3)
{
    EXPECT_EQ(
        text_of(DocumentKind::first_choice_3,
                "40 01 '  Hi' 0D 0C 'abc' '[ T' C2 'T ]' 0D 48 01 'p' 'age' 0D 50 41 00 "
                "'soft' 0D 0E"),
        R"(     512  40 01                                            |@☺|                line header: text that ends its paragraph
     514  20 20                                            |  |                leading spaces: indent
     516  48 69                                            |Hi|                text
     518  0D                                               |♪|                 line end, hard: the line's header says so
     519  0C                                               |♀|                 line header: ruler
     520  61 62 63                                         |abc|               first bytes of a ruler: skipped
     523  5B                                               |[|                 ruler: left margin at column 0
     524  20                                               | |                 ruler: no mark
     525  54                                               |T|                 ruler: tab stop at column 2
     526  C2 54 20                                         |┬T |               ruler: no mark
     529  5D                                               |]|                 ruler: right margin at column 5
     530  0D                                               |♪|                 end of the ruler
     531  48 01                                            |H☺|                line header: page break
     533  70 61 67 65                                      |page|              rest of the page break's line: skipped
     537  0D                                               |♪|                 end of the page break's line
     538  50 41 00                                         |PA |               line header: text that goes on in the next line
     541  73 6F 66 74                                      |soft|              text
     545  0D                                               |♪|                 line end, soft: the line's header says that it goes on; becomes a space
     546  0E                                               |♫|                 end of the document
)");
}

TEST(Golden, FirstChoice3CutInALinesHeader)
{
    EXPECT_EQ(
        text_of(DocumentKind::first_choice_3, "40 01 0D 40"),
        R"(     512  40 01                                            |@☺|                line header: text that ends its paragraph
     514  0D                                               |♪|                 line end, hard: the line's header says so
     515  40                                               |@|                 a line's header cut off by the end of the file
)");
}

TEST(Golden, AWholeFirstChoice3File)
{
    EXPECT_EQ(
        dump_from(choice_document('3', bytes("00 'Hi' 0D 0E"),
                                  {choice_header_line(0, "Top"),
                                   {356, "CR"},
                                   {359, "UB"},
                                   {363, "B"},
                                   {366, "\x11"},
                                   {368, "\x01"}}),
                  0),
        R"(       0  01 00                                            |☺ |                left margin: column 1
       2  3D 00                                            |= |                right margin: column 61
       4  00 00 00 00 00                                   |     |             bytes before the signature: read but not used
       9  47 45 52 42 49 4C 44 4F 43                       |GERBILDOC|         signature: "GERBILDOC"
      18  33                                               |3|                 generation: "3"
      19  00 00                                            |  |                bytes after the generation: read but not used
      21  00 00 00 00 00 00 00                             |       |           not used
      28  03                                               |♥|                 header line 1: length 3
      29  54 6F 70                                         |Top|               text of header line 1
      32  00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00  |                |  room for header line 1: not used
          the same 3 times more
      96  00 00 00 00 00 00 00 00 00 00 00 00 00 00        |              |
     110  00                                               | |                 header line 2: length 0
     111  00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00  |                |  room for header line 2: not used
          the same 4 times more
     191  00                                               | |
     192  00                                               | |                 footer line 1: length 0
     193  00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00  |                |  room for footer line 1: not used
          the same 4 times more
     273  00                                               | |
     274  00                                               | |                 footer line 2: length 0
     275  00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00  |                |  room for footer line 2: not used
          the same 4 times more
     355  00                                               | |
     356  43                                               |C|                 header alignment: centred
     357  52                                               |R|                 footer alignment: right
     358  00                                               | |                 byte after the alignments: read but not used
     359  55 42                                            |UB|                footer style: underline, bold
     361  00 00                                            |  |                bytes between the styles: read but not used
     363  42 00                                            |B |                header style: bold
     365  00                                               | |                 byte before the ruler: read but not used
     366  11                                               |◄|                 ruler, columns 0 to 7: tab stops: 0, 4
     367  00                                               | |                 ruler, columns 8 to 15: no tab stop
     368  01                                               |☺|                 ruler, columns 16 to 23: tab stops: 16
     369  00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00  |                |  ruler, columns 24 to 247: no tab stop
     385  00 00 00 00 00 00 00 00 00 00 00 00              |            |
     397  00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00  |                |  not used
          the same 6 times more
     509  00 00 00                                         |   |
     512  00                                               | |                 line header: text that goes on in the next line
     513  48 69                                            |Hi|                text
     515  0D                                               |♪|                 line end, soft: the line's header says that it goes on; becomes a space
     516  0E                                               |♫|                 end of the document
)");
}

TEST(Golden, AWholeProfessionalWrite2File)
{
    EXPECT_EQ(
        dump_from(write_document(5, bytes("01 'Hi' 01 0E"),
                                 {write_header_line(3, "Foot"),
                                  {822, bytes("02 00 00 01")},
                                  {828, bytes("03 00 04")},
                                  {836, bytes("01")},
                                  {963, bytes("0A 46 0B 45")}}),
                  0),
        R"(       0  00 00 00 00 00 00 00 00 00 00 01 00 41 00 00 00  |          ☺ A   |  not used
      16  00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00  |                |
          the same 18 times more
     320  00 00 00 00 00 00 00 00                          |        |
     328  00                                               | |                 header line 1: length 0
     329  00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00  |                |  room for header line 1: not used
          the same 3 times more
     393  00 00 00 00 00 00 00 00 00                       |         |
     402  00                                               | |                 header line 2: length 0
     403  00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00  |                |  room for header line 2: not used
          the same 4 times more
     483  00                                               | |
     484  00                                               | |                 footer line 1: length 0
     485  00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00  |                |  room for footer line 1: not used
          the same 3 times more
     549  00 00 00 00 00 00 00 00 00                       |         |
     558  04                                               |♦|                 footer line 2: length 4
     559  46 6F 6F 74                                      |Foot|              text of footer line 2
     563  00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00  |                |  room for footer line 2: not used
          the same 3 times more
     627  00 00 00 00 00 00 00 00 00 00 00 00 00 00        |              |
     641  54 59 50 45 20 34                                |TYPE 4|            signature: "TYPE 4"
     647  00 00                                            |  |                bytes after the signature: read but not used
     649  20 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00  |                |  not used
     665  00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00  |                |
          the same 8 times more
     809  00 00 00 00 00 00 00 00 00 00 00 00 00           |             |
     822  02 00                                            |☻ |                header alignment: right
     824  00 01                                            | ☺|                footer alignment: centred
     826  00 00                                            |  |                not used
     828  03                                               |♥|                 header attributes: underline, bold
     829  00                                               | |                 byte between attributes: read but not used
     830  04                                               |♦|                 footer attributes: italic
     831  00 00 00 00 00                                   |     |             not used
     836  01                                               |☺|                 flag: 1
     837  00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00  |                |  not used
          the same 6 times more
     949  00 00 00 00 00 00 00 00 00 00 00 00 00 00        |              |
     963  0A                                               |◙|                 first further left margin, without effect: column 10
     964  46                                               |F|                 first further right margin, without effect: column 70
     965  0B                                               |♂|                 second further left margin, without effect: column 11
     966  45                                               |E|                 second further right margin, without effect: column 69
     967  00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00  |                |  not used
          the same 2 times more
    1015  00 00 00 00 00 00 00 00 00                       |         |
    1024  0C                                               |♀|                 form feed: the text begins after it
    1025  01                                               |☺|                 line type: ends its paragraph, single spacing
    1026  48 69                                            |Hi|                text
    1028  01                                               |☺|                 line type: ends its paragraph, single spacing; the line before ends hard: its type says so
    1029  0E                                               |♫|                 end of the document
)");
}

// Consecutive commands are distinguished, and only new-page commands are new pages.
TEST(Golden, CommandsOneAfterTheOther)
{
    EXPECT_EQ(summary(spans_of(write_document(2, bytes("0D '*N**N**c**new page*' 0E"))), 1026),
              "1026+3 command: command: new page\n"
              "1029+3 command: command: new page\n"
              "1032+3 command: command\n"
              "1035+10 command: command: new page\n"
              "1045+1 end_mark: end of the document\n");
    EXPECT_EQ(summary(spans_of(choice_document('3', bytes("08 0D 00 '*C**N*' 0E"))), 512),
              "512+1 page_break: line header: page break\n"
              "513+1 page_break: end of the page break's line\n"
              "514+1 line_type: line header: text that goes on in the next line\n"
              "515+3 command: command\n"
              "518+3 command: command: new page\n"
              "521+1 end_mark: end of the document\n");
}

} // namespace

// Header part, body and directives. Paragraph text is tested in description_text_test.cpp.
#include "tests/builder/descriptions.h"

using namespace builder_tests;
using namespace pfs_builder;

namespace {

Document body(const std::string &text, const Includes &includes = {})
{
    return parsed("kind: 1013\n---\n" + text, includes);
}

// Paragraphs as "FIRST/LEFT:text", other elements as "?".
std::string shape_of(const Document &document)
{
    std::string shape;
    for (const Element &element : document.body) {
        const auto *paragraph = std::get_if<Paragraph>(&element);
        shape += shape.empty() ? "" : "|";
        if (paragraph == nullptr) {
            shape += "?";
            continue;
        }
        shape += std::to_string(paragraph->first_indent) + "/" +
                 std::to_string(paragraph->left_indent) + ":";
        for (const Cell &cell : paragraph->cells) {
            shape += cell.bytes;
        }
    }
    return shape;
}

std::string header_fault(const std::string &line)
{
    return fault_of("kind: 1013\n" + line + "\n---\n");
}

std::string body_fault(const std::string &text)
{
    return fault_of("kind: 1014\n---\n" + text);
}

} // namespace

TEST(BuilderDescription, ReadsTheHeaderPart)
{
    const Document document = parsed("# a comment\n\nkind: pfs: write a\nsignature: WRD PC\n"
                                     "margins: 12  60\ntabs: 15 20. 30\nheader:  Über uns \n"
                                     "footer 2: {b}\nheader align: center\nfooter align: right\n"
                                     "header style: bold italic\nfooter style: underline\n"
                                     "record: margins 1 2\nrecord: raw 02 fF\n"
                                     "spaces: plain\njoins: allowed\n---\n");
    EXPECT_EQ(document.kind, Kind::write_a);
    EXPECT_EQ(document.signature, Signature::wrd_pc);
    EXPECT_EQ(document.margins.left, 12);
    EXPECT_EQ(document.margins.right, 60);
    ASSERT_EQ(document.tab_stops.size(), 3U);
    EXPECT_EQ(document.tab_stops[1].column, 20);
    EXPECT_TRUE(document.tab_stops[1].decimal);
    EXPECT_FALSE(document.tab_stops[2].decimal);
    EXPECT_EQ(document.header.lines[0], "\x9A"
                                        "ber uns");
    EXPECT_EQ(document.footer.lines[1], "{b}"); // no marks here
    EXPECT_EQ(document.header.alignment, Alignment::centre);
    EXPECT_EQ(document.footer.alignment, Alignment::right);
    EXPECT_EQ(document.header.style, style_bold | style_italic);
    EXPECT_EQ(document.footer.style, style_underline);
    ASSERT_EQ(document.records.size(), 2U);
    EXPECT_EQ(std::get<MarginRecord>(document.records[0]).margins.right, 2);
    EXPECT_EQ(std::get<OtherRecord>(document.records[1]).bytes, "\x02\xFF");
    EXPECT_TRUE(document.plain_spaces);
    EXPECT_TRUE(document.joins_allowed);
}

TEST(BuilderDescription, ReadsAGenerationAsCharacterOrByte)
{
    EXPECT_EQ(parsed("kind: 1017\ngeneration: 1\n---\n").generation, '1');
    EXPECT_EQ(parsed("kind: 1017\ngeneration: 00\n---\n").generation, '\0');
}

TEST(BuilderDescription, FindsKindsByIdAndName)
{
    for (const KindName &entry : kind_names) {
        const std::string id = std::to_string(entry.file_id);
        EXPECT_EQ(parsed("kind: " + id + "\n---\n").kind, entry.kind);
        EXPECT_EQ(parsed(std::string("kind: ") + entry.name + "\n---\n").kind, entry.kind);
    }
    EXPECT_EQ(parsed("kind: first choice 2.0\n---\n").kind, Kind::first_choice_2);
}

TEST(BuilderDescription, ReportsWhatIsWrongInTheHeaderPart)
{
    EXPECT_EQ(header_fault("colour: red"), "letter:2: `colour` is nothing that a header part can "
                                           "hold; docs/descriptions.md has the list");
    EXPECT_EQ(header_fault("Dear Member,"), "letter:2: this line has no colon; write `key: value`, "
                                            "or `---` before the body");
    EXPECT_EQ(header_fault("kind: 1013"), "letter:2: `kind` stands here a second time; keep one of "
                                          "the two");
    EXPECT_EQ(fault_of("kind: 1018\n---\n"),
              "letter:1: `1018` is no kind of document; write one of 1012 to 1017 and 1058, or its "
              "name, as `PFS: WRITE B`");
    EXPECT_EQ(header_fault("signature: TYPE 3"),
              "letter:2: `TYPE 3` is no signature; write `TYPE 2` or `WRD PC`");
    EXPECT_EQ(header_fault("generation: two"),
              "letter:2: `two` is no generation; write one character, or a byte as two hexadecimal "
              "digits");
    EXPECT_EQ(header_fault("margins: 10"),
              "letter:2: margins are two columns; write them as `margins: 10 70`");
    EXPECT_EQ(header_fault("margins: 10 99999"),
              "letter:2: margins are two columns; write them as `margins: 10 70`");
    EXPECT_EQ(
        header_fault("tabs: 10 x"),
        "letter:2: tab stops are columns, decimal ones with a dot; write them as `tabs: 15 20 "
        "30.`");
    EXPECT_EQ(header_fault("header: €"),
              "letter:2: character U+20AC is not in code page 437; use a "
              "character of that code page");
    EXPECT_EQ(header_fault("footer align: middle"),
              "letter:2: `middle` is no alignment; write left, centre or right");
    EXPECT_EQ(
        header_fault("footer style: loud"),
        "letter:2: `loud` is no style of a header or footer; write bold, italic or underline, "
        "or several of them");
    EXPECT_EQ(header_fault("record: margins 1"),
              "letter:2: this is no record; write `margins LEFT RIGHT`, or `raw` and bytes, the "
              "record's type first");
    EXPECT_EQ(header_fault("spaces: wide"),
              "letter:2: `wide` is nothing that can stand here; write "
              "`plain` or leave the line out");
}

TEST(BuilderDescription, NeedsAKindAndABody)
{
    EXPECT_EQ(fault_of("---\n"), "letter:1: the kind of document is missing; write a line such as "
                                 "`kind: PFS: WRITE B`");
    EXPECT_EQ(
        fault_of("kind: 1013\nmargins: 1 70\n"),
        "letter:2: the body is missing; put a line `---` between the header part and the body");
}

TEST(BuilderDescription, JoinsLinesIntoParagraphs)
{
    EXPECT_EQ(shape_of(body("ab\ncd\n\nef")), "0/0:ab cd|0/0:|0/0:ef");
    EXPECT_EQ(shape_of(body("ab\\\ncd\\\n\nef\n")), "0/0:ab|0/0:cd|0/0:|0/0:ef");
    EXPECT_EQ(shape_of(body("\n\nab")), "0/0:|0/0:|0/0:ab");
    EXPECT_EQ(shape_of(body("ab \t\r\ncd")), "0/0:ab cd");
    EXPECT_EQ(shape_of(body("")), "");
}

TEST(BuilderDescription, TakesIndentsFromSpaces)
{
    EXPECT_EQ(shape_of(body("   ab\n  cd\n  ef\n")), "3/2:ab cd ef");
    EXPECT_EQ(shape_of(body("   ab\\\ncd\n")), "3/0:ab|0/0:cd");
    EXPECT_EQ(shape_of(body("@spaces 4\n")), "4/0:");
}

TEST(BuilderDescription, EndsAParagraphAtADirective)
{
    EXPECT_EQ(shape_of(body("ab\n@double\ncd\n")), "0/0:ab|?|0/0:cd");
    EXPECT_EQ(shape_of(body("@@ab\n")), "0/0:@ab");
}

TEST(BuilderDescription, ReadsEveryDirective)
{
    const Document document = body("@double\n@single\n@margins 12 60\n@font-record 02 18\n"
                                   "@raw 0a 0B\n@ruler  [─T]\n@page-break\n@page-break é\n");
    ASSERT_EQ(document.body.size(), 8U);
    EXPECT_TRUE(std::get<Spacing>(document.body[0]).is_double);
    EXPECT_FALSE(std::get<Spacing>(document.body[1]).is_double);
    EXPECT_EQ(std::get<MarginRecord>(document.body[2]).margins.left, 12);
    EXPECT_EQ(std::get<OtherRecord>(document.body[3]).bytes, "\x02\x18");
    EXPECT_EQ(std::get<RawBytes>(document.body[4]).bytes, "\x0A\x0B");
    EXPECT_EQ(std::get<RulerLine>(document.body[5]).columns, " [\xC4T]");
    EXPECT_EQ(std::get<PageBreakLine>(document.body[6]).text, "");
    EXPECT_EQ(std::get<PageBreakLine>(document.body[7]).text, "\x82");
}

TEST(BuilderDescription, IncludesPassages)
{
    const Includes includes = {{"p.txt", "cd\nef\n\ngh\n"}};
    EXPECT_EQ(shape_of(body("ab\n@include p.txt\nij\n", includes)),
              "0/0:ab|0/0:cd ef|0/0:|0/0:gh|0/0:ij");
}

TEST(BuilderDescription, ReportsTheLineOfAnIncludedFile)
{
    const Includes includes = {{"p.txt", "ab\n{no}\n"}, {"q.txt", "@include p.txt\n"}};
    EXPECT_EQ(fault_of("kind: 1013\n---\n@include p.txt\n", includes),
              "p.txt:2: {no} is no mark; docs/descriptions.md has the list; write {{ for a brace");
    EXPECT_EQ(fault_of("kind: 1013\n---\n@include q.txt\n", includes),
              "q.txt:1: an included file includes another; include it from the description");
    EXPECT_EQ(fault_of("kind: 1013\n---\n@include r.txt\n", includes),
              "letter:3: `r.txt` cannot be read; paths are taken from the description's directory");
    // A fault that is found only when the document is built has its location too.
    EXPECT_EQ(
        fault_of("kind: 1013\n---\n@include p.txt\n", {{"p.txt", "ab\ncafé\n"}}),
        "p.txt:2: character 0x82 of code page 437 cannot be said in PFS: WRITE B; use another "
        "character");
}

TEST(BuilderDescription, ReportsWhatIsWrongInTheBody)
{
    EXPECT_EQ(body_fault("ab\n @x\n  cd\n"),
              "letter:5: this line is indented otherwise than the one "
              "before; indent all lines of a paragraph but its first "
              "alike");
    for (const std::string line : {"@triple", "@", "@double 2"}) {
        EXPECT_EQ(body_fault(line), "letter:3: `" + line +
                                        "` is no directive; docs/descriptions.md has the list; a "
                                        "text that begins with an at sign is written with two");
    }
    EXPECT_EQ(body_fault("@margins 12"),
              "letter:3: margins are two columns; write them as `@margins 12 60`");
    EXPECT_EQ(body_fault("@font-record"),
              "letter:3: a record is a row of bytes, its type first; write "
              "two hexadecimal digits for each, as `@font-record 02 18`");
    EXPECT_EQ(body_fault("@raw 123"),
              "letter:3: `@raw` is followed by bytes; write two hexadecimal "
              "digits for each, as `@raw 0A 0B`");
    EXPECT_EQ(body_fault("@spaces 256"),
              "letter:3: `@spaces` is followed by their number; write it as `@spaces 3`");
    EXPECT_EQ(body_fault("@ruler €"), "letter:3: character U+20AC is not in code page 437; use a "
                                      "character of that code page");
    EXPECT_EQ(body_fault("ab {b\n\ncd"),
              "letter:3: this brace is never closed; close it, or write {{ "
              "for a brace");
}

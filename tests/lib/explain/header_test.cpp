// The headers: each kind has exactly its own fields; and the results for damaged ones.
#include "lib/reading/kind_tables.h"

#include "tests/lib/explain/explained.h"

namespace {

using namespace tests;
using namespace pfsdoc;

// The fields' words, a line each, without those that a header of zeros has as well.
std::string fields_of(const std::string &document)
{
    std::string words;
    for (const Span &span : spans_of(document)) {
        const bool empty = span.words.ends_with("length 0") || span.words.ends_with("no tab stop");
        if ((span.kind == SpanKind::field || span.kind == SpanKind::header_text) && !empty) {
            words.append(span.words).append("\n");
        }
    }
    return words;
}

constexpr const char *form_feed = "form feed: the text begins after it\n";

TEST(ExplainedHeader, OfWriteA)
{
    EXPECT_EQ(fields_of(write_document(1, bytes("0E"), {write_header_line(0, "Top")})),
              std::string("left margin: column 1\n"
                          "right margin: column 65\n"
                          "ruler, entries 0 to 77: not used\n"
                          "header line 1: length 3\n"
                          "text of header line 1\n"
                          "signature: \"WRD PC\"\n"
                          "variant: \"1\"\n") +
                  form_feed);
}

TEST(ExplainedHeader, OfWriteBHasAlignments)
{
    EXPECT_EQ(fields_of(write_document(2, bytes("0E"), {{822, bytes("02 00 07")}})),
              std::string("left margin: column 1\n"
                          "right margin: column 65\n"
                          "ruler, entries 0 to 77: not used\n"
                          "signature: \"WRD PC\"\n"
                          "variant: \"2\"\n"
                          "header alignment: right\n"
                          "footer alignment: left\n") +
                  form_feed);
}

TEST(ExplainedHeader, OfWritingAssistantHasNoVariant)
{
    EXPECT_EQ(fields_of(write_document(3, bytes("0E"))),
              std::string("left margin: column 1\n"
                          "right margin: column 65\n"
                          "ruler, entries 0 to 77: not used\n"
                          "signature: \"IBM   \"\n"
                          "header alignment: centred\n"
                          "footer alignment: centred\n") +
                  form_feed);
}

TEST(ExplainedHeader, OfProfessionalWrite1HasAttributes)
{
    EXPECT_EQ(fields_of(write_document(4, bytes("0E"), {{828, bytes("07 FF 00")}})),
              std::string("left margin: column 1\n"
                          "right margin: column 65\n"
                          "ruler, entries 0 to 77: not used\n"
                          "signature: \"TYPE 3\"\n"
                          "header alignment: centred\n"
                          "footer alignment: centred\n"
                          "header attributes: underline, bold, italic\n"
                          "footer attributes: none\n"
                          "flag: 0\n") +
                  form_feed);
}

TEST(ExplainedHeader, ExplainsTheWriteRuler)
{
    const std::string document = write_document(
        2, bytes("0E"),
        {{16, bytes("0F 00 10 00 11 00 0F 00")}, {172, bytes("05 00 0A 00 0B 00 FF FF")}});
    const std::string words = fields_of(document);
    EXPECT_NE(words.find("ruler, entry 0: tab stop\n"
                         "ruler, entry 1: decimal tab stop\n"
                         "ruler, entry 3: tab stop\n"
                         "ruler, entry 0: at column 5\n"
                         "ruler, entry 1: at column 10\n"
                         "ruler, entry 2: not used\n"
                         "ruler, entry 3: at column -1\n"
                         "ruler, entries 4 to 77: not used\n"),
              std::string::npos)
        << words;
}

// Which ruler First Choice has depends on the generation.
TEST(ExplainedHeader, ExplainsBothFirstChoiceRulers)
{
    const Patches ruler = {{366, bytes("01 05 00 01")}};
    const std::string of_bits = fields_of(choice_document('2', bytes("0E"), ruler));
    EXPECT_NE(of_bits.find("ruler, columns 0 to 7: tab stops: 0\n"
                           "ruler, columns 8 to 15: tab stops: 8, 10\n"
                           "ruler, columns 24 to 31: tab stops: 24\n"),
              std::string::npos)
        << of_bits;
    const std::string of_bytes = fields_of(choice_document('1', bytes("0E"), ruler));
    EXPECT_NE(of_bytes.find("ruler, columns 0 to 1: tab stop\n"
                            "ruler, column 3: tab stop\n"),
              std::string::npos)
        << of_bytes;
}

TEST(ExplainedHeader, ShowsAGenerationThatIsNotALetterAsAByte)
{
    const std::string words = fields_of(choice_document('\0', bytes("0E")));
    EXPECT_NE(words.find("generation: byte 0x00\n"), std::string::npos) << words;
}

// A line longer than its field is reported with the bytes of the fields after it.
TEST(ExplainedHeader, LeavesOtherFieldsTheirBytes)
{
    const std::string document = write_document(2, bytes("0E"), {{328, "\x4B"}});
    EXPECT_EQ(summary(spans_of(document), 328).substr(0, 169),
              "328+1 field: header line 1: length 75\n"
              "329+73 header_text: text of header line 1, and 2 bytes after it\n"
              "402+1 field: header line 2: length 0\n"
              "403+81 unused: room for header");
}

TEST(ExplainedHeader, ExplainsTheBytesUpToTheText)
{
    std::string document = write_document(2, "");
    document.pop_back();
    document += bytes("'junk' 0C 07 05 01 0B 47 07 06 02 'abc' 0D 'x' 0E");
    EXPECT_EQ(summary(spans_of(document), 1024),
              "1024+4 unused: before the form feed: skipped\n"
              "1028+1 field: form feed: the text begins after it\n"
              "1029+5 record: record: margins, columns 11 and 71\n"
              "1034+6 record: record of type 2: skipped\n"
              "1040+1 unused: line end before the first line: skipped\n"
              "1041+1 text: text\n"
              "1042+1 end_mark: end of the document\n");
}

// A record's length may be wrong; the bytes that are read regardless belong to the record.
TEST(ExplainedHeader, GivesRecordsWhatIsReadOfThem)
{
    EXPECT_EQ(summary(spans_of(write_document(4, bytes("07 00 01 0B 47 07 01 02 01 0E"))), 1025),
              "1025+5 record: record: margins, columns 11 and 71\n"
              "1030+3 record: record of type 2: skipped\n"
              "1033+1 line_type: line type: ends its paragraph, single spacing\n"
              "1034+1 end_mark: end of the document\n");
}

TEST(ExplainedHeader, IsCutOffWithTheFile)
{
    const std::string document = write_document(4, bytes("01 'x' 01 0E"));
    EXPECT_EQ(summary(spans_of(document.substr(0, 823)), 649),
              "649+173 unused: not used\n"
              "822+1 field: header alignment: cut off by the end of the file\n");
    EXPECT_EQ(summary(spans_of(document.substr(0, 900)), 836), "836+1 field: flag: 0\n"
                                                               "837+63 unused: not used\n");
    EXPECT_EQ(summary(spans_of(document.substr(0, 1024)), 837), "837+187 unused: not used\n");
}

TEST(ExplainedHeader, MayHaveNoTextAfterIt)
{
    const std::string document = write_document(2, "");
    EXPECT_EQ(summary(spans_of(document.substr(0, 1024) + "no form feed"), 1024),
              "1024+12 unused: before the form feed: skipped\n");
    EXPECT_EQ(summary(spans_of(choice_document('3', "").substr(0, 400)), 397),
              "397+3 unused: not used\n");
}

TEST(HeaderFields, LieWithinTheirHeaders)
{
    for (const formats::HeaderField &field : formats::write_header_fields) {
        EXPECT_LE(field.offset + field.size, formats::write::header_size) << field.name;
        EXPECT_NE(field.kinds, 0) << field.name;
        EXPECT_FALSE(field.kinds & reading::kind_bit(DocumentKind::first_choice_2)) << field.name;
    }
    for (const bool of_bytes : {false, true}) {
        for (const formats::HeaderField &field : formats::choice_header_fields(of_bytes)) {
            EXPECT_LE(field.offset + field.size, formats::choice::header_size) << field.name;
            EXPECT_FALSE(field.kinds & reading::kind_bit(DocumentKind::write_a)) << field.name;
        }
    }
}

// A full ruler within the text ends with its hundredth stop, one byte later; the rest of it is the
// next line.
TEST(ExplainedRuler, EndsWhenTheTableIsFull)
{
    const std::string document = choice_document('3', bytes("0C 'abc' 'T'x101 00 'x' 0D 0E"));
    EXPECT_EQ(summary(spans_of(document), 512 + 4 + 99),
              "615+1 record: ruler: tab stop at column 99\n"
              "616+1 record: a ruler ends at a hundred tab stops: skipped\n"
              "617+1 line_type: line header: text that goes on in the next line\n"
              "618+1 text: text\n"
              "619+1 line_end: line end, soft: the line's header says that it goes on; "
              "becomes a space\n"
              "620+1 end_mark: end of the document\n");
}

} // namespace

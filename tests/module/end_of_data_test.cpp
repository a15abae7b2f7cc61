// Documents that stop without their end byte: every reader, cut at every kind of position. The
// end of the document is reported where the data stop, and nothing before it changes.
#include "tests/module/bench.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <ostream>

namespace {

using namespace tests;
using namespace vs_pfs;

struct Cut {
    const char *name;
    std::string body; // as bytes' notation
    std::string expected;
    // How many bytes past the end are requested, which the reported position shows: one, except
    // where the end is noticed only at the byte after.
    uint32_t asked_beyond = 1;
};

// For the list of tests, which would show the structure's bytes.
void PrintTo(const Cut &cut, std::ostream *stream)
{
    *stream << cut.body;
}

std::string letters(std::size_t count)
{
    return "'" + std::string(count, 'a') + "'";
}

// Reads the document whole and stopped at each paragraph end, and reads on after the end.
void expect_cut(const std::string &document, const Cut &cut)
{
    RecordingHost host(document);
    ASSERT_EQ(host.open(), 0);
    EXPECT_TRUE(matches(after_announcements(host.read()), cut.expected));
    EXPECT_EQ(VwCharTell(host.stream), document.size() + cut.asked_beyond);
    for (int again = 0; again < 3; ++again) {
        EXPECT_TRUE(matches(after_announcements(host.read()), "13 2 0")) << "read on";
    }

    RecordingHost stopped(document);
    ASSERT_EQ(stopped.open(), 0);
    stopped.stop_at_all();
    const Calls calls = stopped.read_all();
    const Calls whole = tests::calls(cut.expected);
    for (const Call &end : {Call{VW_SO_BREAK, 2, {1, 0}}, Call{VW_SO_BREAK, 2, {2, 0}}}) {
        EXPECT_EQ(std::count(calls.begin(), calls.end(), end),
                  std::count(whole.begin(), whole.end(), end));
    }
}

class CutText : public ::testing::TestWithParam<Cut> {};

std::string cut_name(const ::testing::TestParamInfo<Cut> &info)
{
    return info.param.name;
}

// ------------------------------------------------------------------- Write

class CutWrite : public CutText {};

TEST_P(CutWrite, EndsWhereTheDataStop)
{
    for (const int type : {1, 2, 3}) {
        SCOPED_TRACE(type);
        expect_cut(write_document(type, bytes("0D") + bytes(GetParam().body)), GetParam());
    }
}

INSTANTIATE_TEST_SUITE_P(
    EndOfData, CutWrite,
    ::testing::ValuesIn(std::vector<Cut>{
        {"AtTheStart", "", "13 2 0"},
        {"InText", "'ab'", "'ab' | 13 2 0"},
        {"AfterLeadingSpaces", "'  '", "13 2 0"},
        {"AfterALineEnd", "'ab' 0D", "'ab' | 13 1 0 | 13 2 0"},
        {"AfterAnEmptyLine", "'ab' 0D 0D", "'ab' | 13 1 0 | 13 1 0 | 13 2 0"},
        {"AfterAFormFeed", "'ab' 0C", "'ab' | 13 2 0"},
        {"InAnAttributePair", "'ab' C1", "'ab' | 13 2 0"},
        {"InAnAttributePairAtALineStart", "'ab' 0D C1", "'ab' | 13 1 0 | 13 2 0"},
        {"InAPairThatTheLookaheadCounts", letters(64) + " 0D C1", letters(64) + " | ' ' | 13 2 0"},
        {"InAWordThatTheLookaheadCounts", letters(60) + " 0D 'bbbbb'",
         letters(60) + " | ' bbbbb' | 13 2 0"},
        {"AfterAnAsterisk", "'a*'", "'a*' | 13 2 0"},
        {"InAKeyword", "'a*PRIN'", "'a*PRIN' | 13 2 0"},
        {"BeforeAKeywordsTerminator", "'a*N'", "'a*N' | 13 2 0"},
        {"BeforeASecondKeyword", "'a*NEW '", "'a*NEW ' | 13 2 0"},
        {"InASecondKeyword", "'a*JUSTIFY YE'", "'a*JUSTIFY YE' | 13 2 0"},
        {"InAnEcho", "'a*PRINTER 27,'", "'a' | *'*PRINTER 27,' | 13 2 0", 2},
        {"AtTheStartOfAnEcho", "'a*P '", "'a' | *'*P ' | 13 2 0", 2},
    }),
    cut_name);

TEST(CutWritePair, KeepsTheAttributesThatAreOn)
{
    const Cut plain{"", "C1 02 C2", "4 2 1 | 'A' | 13 2 0"};
    expect_cut(write_document(1, bytes("0D") + bytes(plain.body)), plain);
    expect_cut(write_document(2, bytes("0D") + bytes(plain.body)), plain);
    const Cut ranged{"", "C1 12 C2", "4 2 1 | 'A' | 13 2 0"};
    expect_cut(write_document(3, bytes("0D") + bytes(ranged.body)), ranged);
}

// ------------------------------------------------------- Professional Write

class CutProfessionalWrite : public CutText {};

TEST_P(CutProfessionalWrite, EndsWhereTheDataStop)
{
    for (const int type : {4, 5}) {
        SCOPED_TRACE(type);
        expect_cut(write_document(type, bytes(GetParam().body)), GetParam());
    }
}

INSTANTIATE_TEST_SUITE_P(
    EndOfData, CutProfessionalWrite,
    ::testing::ValuesIn(std::vector<Cut>{
        {"BeforeTheFirstTypeByte", "", "13 2 0", 2},
        {"AfterATypeByteZero", "00", "13 2 0"},
        {"AfterATypeByteOne", "01", "46 1 240 0 0 | 13 2 0"},
        {"AfterATypeByteTwo", "02", "13 2 0"},
        {"AfterATypeByteThree", "03", "46 1 480 0 0 | 13 2 0"},
        {"InText", "00 'ab'", "'ab' | 13 2 0"},
        {"AfterLeadingSpaces", "00 '  '", "13 2 0"},
        {"AtTheTypeByteThatEndsALine", "01 'Hi' 01",
         "46 1 240 0 0 | 'Hi' | 46 1 240 0 0 | 13 1 0 | 46 1 240 0 0 | 13 2 0"},
        {"AfterASoftEnd", "00 'ab' 00", "'ab ' | 13 2 0"},
        {"InAnAttributePair", "00 'ab' C1", "'ab' | 13 2 0"},
        {"InAnAttributePairWithAttributesOn", "00 C1 02 C2", "4 2 1 | 'A' | 13 2 0"},
        {"InASuppressedAttributePair", "02 'a' 02 'b' C1", "'a' | 13 2 0"},
        {"InASuppressedStretch", "02 'a' 02 'b'", "'a' | 13 2 0"},
        {"BeforeARecordsLength", "00 'a' 07", "'a' | 13 2 0", 3},
        {"BeforeARecordsType", "00 'a' 07 05", "'a' | 13 2 0", 4},
        {"BeforeARecordsMargins", "00 'a' 07 05 01", "'a' | 13 2 0", 3},
        {"BetweenARecordsMargins", "00 'a' 07 05 01 0B", "'a' | 13 2 0", 2},
        {"InARecordsRest", "00 'a' 07 FF 02 'x'", "'a' | 13 2 0", 252},
        {"AfterARecord", "00 'a' 07 03 02", "'a' | 13 2 0"},
        {"AfterAnAsterisk", "00 'a*'", "'a*' | 13 2 0"},
        {"InAKeyword", "00 'a*NEW PA'", "'a*NEW PA' | 13 2 0"},
        {"InAnEcho", "00 'a*J x'", "'a' | *'*J x' | 13 2 0", 2},
    }),
    cut_name);

// ------------------------------------------------------------- First Choice

class CutChoice : public CutText {};

TEST_P(CutChoice, EndsWhereTheDataStop)
{
    for (const char generation : {'1', '2'}) {
        SCOPED_TRACE(generation);
        // A ruler of 99 bytes and the rest of the header come before the text.
        expect_cut(choice_document(generation, bytes(GetParam().body)), GetParam());
    }
}

INSTANTIATE_TEST_SUITE_P(EndOfData, CutChoice,
                         ::testing::ValuesIn(std::vector<Cut>{
                             {"AtTheStart", "", "13 2 0"},
                             {"InText", "'ab'", "'ab' | 13 2 0"},
                             {"AfterLeadingSpaces", "'  '", "13 2 0"},
                             {"AfterALineEnd", "'ab' 0D", "'ab' | 46 1 480 0 0 | 13 1 0 | 13 2 0"},
                             {"BeforeTheAttributeByte", "'ab' C1", "'ab' | 13 2 0"},
                             {"BeforeTheSecondAttributeByte", "'ab' C1 40", "'ab' | 13 2 0"},
                             {"BeforeTheSecondAttributeByteWithAttributesOn", "C1 01 C2 47",
                              "4 4 1 | 'A' | 13 2 0"},
                             {"AfterTwoAttributeBytes", "C1 40 02", "4 10 1 | 'A' | 13 2 0"},
                             {"InAWordThatTheLookaheadCounts", letters(56) + " 0C 'bbbbb'",
                              letters(56) + " | 46 1 240 0 0 | ' bbbbb' | 13 2 0"},
                             {"InAChainOfTheLookaheadOfAFittingWord", "'ab' 0C C1 40 40",
                              "'ab' | 46 1 240 0 0 | 13 1 0 | 'A' | 13 2 0"},
                             {"InACharacterThatTheLookaheadDropsToo", letters(60) + " 0C C1",
                              letters(60) + " | 46 1 240 0 0 | 13 1 0 | 13 2 0"},
                             {"AfterACharacterThatTheLookaheadCounts", letters(60) + " 0C C1 00",
                              letters(60) + " | 46 1 240 0 0 | ' A' | 13 2 0"},
                             {"InALongChainOfTheLookahead", "'ab' 0C 'b' C1 40x3000",
                              "'ab' | 46 1 240 0 0 | 13 1 0 | 'bA' | " + std::string("'") +
                                  std::string(2998, '@') + "' | 13 2 0"},
                             {"AfterAnAsterisk", "'a*'", "'a*' | 13 2 0"},
                             {"InAKeyword", "'a*NEW PA'", "'a*NEW PA' | 13 2 0"},
                             {"InAnEcho", "'a*G x'", "'a' | *'*G x' | 13 2 0", 2},
                         }),
                         cut_name);

// ----------------------------------------------------------- First Choice 3

class CutChoice3 : public CutText {};

TEST_P(CutChoice3, EndsWhereTheDataStop)
{
    expect_cut(choice_document('3', bytes(GetParam().body)), GetParam());
}

INSTANTIATE_TEST_SUITE_P(
    EndOfData, CutChoice3,
    ::testing::ValuesIn(std::vector<Cut>{
        {"AtTheFirstHeaderByte", "", "13 2 0"},
        {"AfterTheFirstHeaderByte", "00", "13 2 0"},
        {"InAHeaderChain", "40", "13 2 0"},
        {"DeepInAHeaderChain", "40 40 7F", "13 2 0"},
        {"InText", "00 'ab'", "'ab' | 13 2 0"},
        {"AfterLeadingSpaces", "40 01 '  '", "13 2 0"},
        {"AfterASoftEnd", "00 'ab' 0D", "'ab ' | 13 2 0"},
        {"AfterAHardEnd", "40 01 'ab' 0D", "'ab' | 13 1 0 | 13 2 0"},
        {"InTheNextLinesHeaderChain", "40 01 'ab' 0D 40", "'ab' | 13 1 0 | 13 2 0"},
        {"BeforeTheAttributeByte", "00 'ab' C1", "'ab' | 13 2 0"},
        {"BeforeTheSecondAttributeByte", "00 'ab' C1 48", "'ab' | 13 2 0"},
        {"InAPageBreakLine", "08 'ab'", "3 4 0 | 13 2 0"},
        {"AtTheStartOfAPageBreakLine", "08", "3 4 0 | 13 2 0"},
        {"InAPageBreakLinesHeaderChain", "48", "13 2 0"},
        {"BeforeARuler", "0C", "8 | 9 | 11 0 8640 | 13 2 0", 5},
        {"InARulersUnusedBytes", "0C 00 00", "8 | 9 | 11 0 8640 | 13 2 0", 3},
        {"BeforeARulersBody", "0C 00 00 00", "8 | 9 | 11 0 8640 | 13 2 0", 2},
        {"InARulersBody", "0C 00 00 00 ' [T'", "8 | 10 1 0 0 288 | 9 | 11 144 8640 | 13 2 0", 2},
        {"InARulersPair", "0C 00 00 00 'T' C2", "8 | 10 1 0 0 0 | 9 | 11 0 8640 | 13 2 0", 3},
        {"AfterARuler", "0C 00 00 00 'T' 0D", "8 | 10 1 0 0 0 | 9 | 11 0 8640 | 13 2 0"},
        {"AfterAnAsterisk", "00 'a*'", "'a*' | 13 2 0"},
        {"InAKeyword", "00 'a*YES'", "'a*YES' | 13 2 0"},
        {"InAnEcho", "00 'a*P 1'", "'a' | *'*P 1' | 13 2 0", 2},
    }),
    cut_name);

// -------------------------------------------------------------- header text

TEST(CutHeaderText, MissingBytesAreCharactersOfMinusOne)
{
    // The header line claims five bytes, the file has two of them.
    RecordingHost host(choice_document('2', "", {choice_header_line(0, "abcde")}).substr(0, 31));
    ASSERT_EQ(host.open(), 0);
    const std::string reported = text_of(host.read());
    const std::string expected = text_of(calls("13 6 0 | 12 1 3 | 'ab' | 1 -1 | 1 -1 | 1 -1 | "
                                               "13 1 0 | 13 7 0 | " +
                                               line_defaults + "13 2 0"));
    EXPECT_EQ(reported.substr(reported.find("13 6 0")), expected);
}

TEST(CutHeaderText, AMissingLengthReportsNoLine)
{
    RecordingHost host(choice_document('2', "", {choice_header_line(0, "abcde")}).substr(0, 28));
    ASSERT_EQ(host.open(), 0);
    const std::string reported = text_of(host.read());
    EXPECT_EQ(reported.find("13 6 0"), std::string::npos);
    EXPECT_TRUE(host.document_ended);
}

TEST(FailingReads, EndTheDocumentWhereTheyFail)
{
    RecordingHost host(write_document(2, bytes("0D 'abcdefgh' 0E")));
    host.file.most_per_read = 1;
    ASSERT_EQ(host.open(), 0);
    host.file.bytes.resize(write_body_offset + 4);
    EXPECT_TRUE(matches(after_announcements(host.read()), "'abc' | 13 2 0"));
    host.file.fail_reads = true;
    EXPECT_TRUE(matches(after_announcements(host.read()), "13 2 0"));
}

} // namespace

// Recognising a document by its magic or its signature.
#include "tests/module/bench.h"

#include "vs_pfs/document_headers.h"

#include <gtest/gtest.h>

#include <cstring>

namespace {

using namespace tests;
using namespace vs_pfs;

constexpr int32_t known = 0;
constexpr int32_t unknown = 1;

struct Detected {
    int32_t result;
    int type;
    int version;
    uint32_t position;
};

Detected detect(const std::string &document)
{
    Bench bench(document);
    const int32_t result = PfsGetVersion(bench.instance);
    return {result, bench.state().formatType, bench.state().fcVersion, bench.tell()};
}

std::string signed_file(std::string_view signature, std::string_view variant = " ")
{
    return blank_document(1100, {{641, std::string(signature)}, {649, std::string(variant)}});
}

void expect_type(const std::string &document, int type)
{
    const Detected detected = detect(document);
    EXPECT_EQ(detected.result, known);
    EXPECT_EQ(detected.type, type);
    EXPECT_EQ(detected.position, 0U);
}

void expect_unknown(const std::string &document)
{
    const Detected detected = detect(document);
    EXPECT_EQ(detected.result, unknown);
    EXPECT_EQ(detected.type, format_none);
}

TEST(FormatDetection, EachSignatureHasItsFormatType)
{
    expect_type(signed_file("WRD PC", "1"), format_write_a);
    expect_type(signed_file("WRD PC", "2"), format_write_b);
    expect_type(signed_file("TYPE 2", "1"), format_write_a);
    expect_type(signed_file("TYPE 2", "2"), format_write_b);
    expect_type(signed_file("IBM   "), format_writing_assistant);
    expect_type(signed_file("TYPE 3"), format_professional_write_1);
    expect_type(signed_file("TYPE 4"), format_professional_write_2);
    expect_type(blank_document(600, {{9, "GERBILDOC"}}), format_first_choice);
}

TEST(FormatDetection, MagicGoesBeforeSignature)
{
    for (const char *signature : {"WRD PC", "TYPE 4", "IBM   "}) {
        std::string document = signed_file(signature, "1");
        document.replace(9, 9, "GERBILDOC");
        expect_type(document, format_first_choice);
    }
}

TEST(FormatDetection, GenerationByteThreeOnlyIsGenerationThree)
{
    for (int generation = 0; generation < 256; ++generation) {
        const Detected detected = detect(blank_document(
            600, {{9, "GERBILDOC"}, {18, std::string(1, static_cast<char>(generation))}}));
        EXPECT_EQ(detected.result, known);
        EXPECT_EQ(detected.version, generation == '3' ? 3 : 2) << generation;
    }
}

TEST(FormatDetection, MagicAtTheEndOfTheFileIsGenerationTwo)
{
    const Detected detected = detect(blank_document(9, {{9, "GERBILDOC"}}));
    EXPECT_EQ(detected.result, known);
    EXPECT_EQ(detected.type, format_first_choice);
    EXPECT_EQ(detected.version, 2);
    EXPECT_EQ(detected.position, 0U);
}

TEST(FormatDetection, WriteDocumentsGetAGenerationToo)
{
    std::string document = signed_file("TYPE 3");
    EXPECT_EQ(detect(document).version, 2);
    document[18] = '3';
    EXPECT_EQ(detect(document).version, 3);
    EXPECT_EQ(detect(document).type, format_professional_write_1);
}

TEST(FormatDetection, MagicIsExactInCaseAndOffset)
{
    expect_unknown(blank_document(1100, {{9, "gerbildoc"}}));
    expect_unknown(blank_document(1100, {{9, "GERBILDOc"}}));
    expect_unknown(blank_document(1100, {{0, "GERBILDOC"}}));
    expect_unknown(blank_document(1100, {{8, "GERBILDOC"}}));
    expect_unknown(blank_document(1100, {{10, "GERBILDOC"}}));
}

TEST(FormatDetection, SignatureIsExactInCaseSpacesAndOffset)
{
    expect_unknown(signed_file("IBM  x"));
    expect_unknown(signed_file("IBM"));
    expect_unknown(signed_file(std::string("IBM  \0", 6)));
    expect_unknown(signed_file("wrd pc", "1"));
    expect_unknown(signed_file("TYPE 1", "1"));
    expect_unknown(signed_file("TYPE 5", "1"));
    expect_unknown(blank_document(1100, {{640, "TYPE 3"}}));
    expect_unknown(blank_document(1100, {{642, "TYPE 3"}}));
}

TEST(FormatDetection, ANulWithinTheBytesFails)
{
    for (std::size_t i = 0; i < 9; ++i) {
        std::string document = blank_document(1100, {{9, "GERBILDOC"}});
        document[9 + i] = '\0';
        expect_unknown(document);
    }
    for (std::size_t i = 0; i < 6; ++i) {
        std::string document = signed_file("TYPE 3");
        document[641 + i] = '\0';
        expect_unknown(document);
    }
}

TEST(FormatDetection, TypeTwoAndWrdPcNeedAVariantDigit)
{
    for (const char *signature : {"WRD PC", "TYPE 2"}) {
        for (int variant = 0; variant < 256; ++variant) {
            if (variant != '1' && variant != '2') {
                expect_unknown(signed_file(signature, std::string(1, static_cast<char>(variant))));
            }
        }
    }
}

TEST(FormatDetection, TheOthersIgnoreTheVariant)
{
    for (int variant = 0; variant < 256; ++variant) {
        const std::string digit(1, static_cast<char>(variant));
        expect_type(signed_file("TYPE 3", digit), format_professional_write_1);
        expect_type(signed_file("TYPE 4", digit), format_professional_write_2);
        expect_type(signed_file("IBM   ", digit), format_writing_assistant);
    }
}

TEST(FormatDetection, BytesBesideTheVariantAreNotLookedAt)
{
    std::string document = signed_file("WRD PC", "1");
    document.replace(647, 2, "\xFF\xFE");
    document.replace(650, 3, "222");
    expect_type(document, format_write_a);
}

TEST(FormatDetection, AKnownDocumentLeavesTheStreamAtItsStart)
{
    EXPECT_EQ(detect(signed_file("WRD PC", "2")).position, 0U);
    EXPECT_EQ(detect(blank_document(600, {{9, "GERBILDOC"}})).position, 0U);
}

TEST(FormatDetection, AnUnknownDocumentLeavesTheStreamAfterTheLastByteRead)
{
    EXPECT_EQ(detect(signed_file("WRD PC", "3")).position, 653U);
    EXPECT_EQ(detect(signed_file("NOTHIN")).position, 653U);
}

TEST(FormatDetection, ATooShortFileIsUnknown)
{
    const std::string choice = blank_document(600, {{9, "GERBILDOC"}});
    for (std::size_t size = 0; size < 18; ++size) {
        expect_unknown(choice.substr(0, size));
    }
    const std::string write = signed_file("TYPE 2", "2");
    for (std::size_t size = 600; size < 650; ++size) {
        expect_unknown(write.substr(0, size));
    }
    expect_type(write.substr(0, 650), format_write_b);
}

TEST(FormatDetection, TouchesNothingElse)
{
    Bench bench(signed_file("TYPE 4"));
    std::memset(&bench.saved(), 0x77, sizeof bench.saved());
    const FilterState before = bench.state();
    ASSERT_EQ(PfsGetVersion(bench.instance), known);
    FilterState after = bench.state();
    after.formatType = before.formatType;
    after.fcVersion = before.fcVersion;
    EXPECT_EQ(std::memcmp(&before, &after, sizeof before), 0);
}

} // namespace

// How certain a kind is, and what the registry calls it.
#include "pfsdoc/examine.h"

#include "tests/lib/reading/host_bench.h"

namespace {

using namespace tests;
using namespace pfsdoc;

Examination examination_of(const std::string &document)
{
    const auto source = source_from(document);
    const Result<Identity> identity = identify(*source);
    EXPECT_TRUE(identity.ok());
    return examine(*source, identity.value().kind);
}

std::string level_of(const std::string &document)
{
    return std::string(confidence_name(examination_of(document).confidence));
}

// The notes, one a line, without the one that most test documents have.
std::string notes_of(const std::string &document)
{
    std::string notes;
    for (const std::string &note : examination_of(document).notes) {
        if (note.find("PRONOM") == std::string::npos) {
            notes.append(note).append("\n");
        }
    }
    return notes;
}

std::string whole(DocumentKind kind)
{
    for (const KindExample &example : kind_examples()) {
        if (example.kind == kind) {
            return document_of(kind, bytes(example.body));
        }
    }
    return {};
}

constexpr const char *no_end_mark =
    "its last byte is not an end mark: it is truncated, or other bytes follow its end\n";

TEST(Confidence, OfWholeDocumentsIsCertain)
{
    for (const KindExample &example : kind_examples()) {
        EXPECT_EQ(level_of(whole(example.kind)), "certain") << display_name(example.kind);
        EXPECT_EQ(notes_of(whole(example.kind)), "") << display_name(example.kind);
    }
}

TEST(Confidence, StaysCertainBeforeFill)
{
    for (const KindExample &example : kind_examples()) {
        const std::string document = whole(example.kind);
        const std::string place = std::to_string(document.size() - 1);
        const std::string padded = document + bytes("1A 1A 00");
        EXPECT_EQ(level_of(padded), "certain");
        EXPECT_EQ(notes_of(padded), "3 fill bytes follow its end mark at " + place + "\n");
    }
}

TEST(Confidence, OfCutDocumentsIsLikely)
{
    for (const KindExample &example : kind_examples()) {
        const std::string document = whole(example.kind);
        const std::string cut = document.substr(0, document.size() - 1);
        EXPECT_EQ(level_of(cut), "likely");
        EXPECT_EQ(notes_of(cut), no_end_mark);
        EXPECT_EQ(level_of(document + "left over"), "likely");
    }
}

// An end mark is not searched for in more fill than a disk has between two files.
TEST(Confidence, LooksPastFillNoFurtherThanACluster)
{
    const std::string document = whole(DocumentKind::write_b);
    EXPECT_EQ(level_of(document + std::string(65536, '\0')), "certain");
    EXPECT_EQ(level_of(document + std::string(65537, '\0')), "likely");
}

TEST(Confidence, OfImplausibleMarginsIsTheSignaturesAlone)
{
    struct Case {
        uint16_t left;
        uint16_t right;
        const char *level;
    };
    const Case cases[] = {
        {0, 1, "certain"},        {9, 69, "certain"},       {0, 254, "certain"},
        {0, 255, "signature"},    {10, 10, "signature"},    {70, 10, "signature"},
        {0xFFFF, 5, "signature"}, {0, 0xFFFF, "signature"},
    };
    for (const Case &entry : cases) {
        SCOPED_TRACE(std::to_string(entry.left) + " " + std::to_string(entry.right));
        EXPECT_EQ(
            level_of(write_document(2, bytes("0D 0E"), {write_margins(entry.left, entry.right)})),
            entry.level);
        EXPECT_EQ(
            level_of(choice_document('3', bytes("0E"), {choice_margins(entry.left, entry.right)})),
            entry.level);
        // Professional Write 2 has its margins elsewhere.
        EXPECT_EQ(
            level_of(write_document(5, bytes("01 0E"), {write_margins(entry.left, entry.right)})),
            "certain");
    }
    EXPECT_EQ(notes_of(choice_document('3', bytes("0E"), {choice_margins(69, 9)})),
              "its margins, 70 and 10, are not plausible\n");
}

TEST(Confidence, OfLinesLongerThanTheirRoomIsTheSignaturesAlone)
{
    EXPECT_EQ(level_of(write_document(2, bytes("0D 0E"), {{328, "\x49"}})), "certain");
    EXPECT_EQ(level_of(write_document(2, bytes("0D 0E"), {{328, "\x4A"}})), "signature");
    EXPECT_EQ(notes_of(write_document(2, bytes("0D 0E"), {{328, "\x4A"}, {402, "\xFF"}})),
              "header line 1 is longer than its field\n"
              "header line 2 is longer than its field\n");
    EXPECT_EQ(level_of(choice_document('2', bytes("0E"), {{274, "\x51"}})), "certain");
    EXPECT_EQ(level_of(choice_document('2', bytes("0E"), {{274, "\x52"}})), "signature");
}

TEST(Confidence, OfAHeaderWithoutTextIsTheSignaturesAlone)
{
    const std::string no_text = "the file ends before its text begins\n";
    EXPECT_EQ(notes_of(write_document(2, "").substr(0, 1024)), no_text + no_end_mark);
    EXPECT_EQ(notes_of(choice_document('3', "")), no_text + no_end_mark);
    EXPECT_EQ(level_of(choice_document('3', "").substr(0, 400)), "signature");
    // An end mark within the header does not count.
    EXPECT_EQ(notes_of(write_document(2, "", {{1000, "\x0E"}}).substr(0, 1001)),
              no_text + no_end_mark);
}

TEST(Registry, HasAnEntryForEachKindButOne)
{
    EXPECT_EQ(pronom_id(DocumentKind::write_a), "fmt/1414");
    EXPECT_EQ(pronom_id(DocumentKind::write_b), "fmt/1414");
    EXPECT_EQ(pronom_id(DocumentKind::professional_write_1), "x-fmt/353");
    EXPECT_EQ(pronom_id(DocumentKind::professional_write_2), "x-fmt/353");
    EXPECT_EQ(pronom_id(DocumentKind::writing_assistant), "");
    EXPECT_EQ(pronom_id(DocumentKind::first_choice_2), "fmt/1282");
    EXPECT_EQ(pronom_id(DocumentKind::first_choice_3), "fmt/1283");
}

RegistrySignature signature_of(const std::string &document)
{
    return examination_of(document).registry_signature;
}

TEST(Registry, KnowsWriteByItsMarginsAndItsEnd)
{
    const Patches known = {{0, bytes("42 00 06 00")}, {10, bytes("0A 00 46 00")}};
    const auto with = [&known](const Patch &patch) {
        Patches patches = known;
        patches.push_back(patch);
        return signature_of(write_document(2, bytes("0D 0E"), patches));
    };
    EXPECT_EQ(with({2, "\x06"}), RegistrySignature::matches);
    EXPECT_EQ(with({2, "\x0C"}), RegistrySignature::matches);
    EXPECT_EQ(with({4, "sixbyt"}), RegistrySignature::matches);
    EXPECT_EQ(with({0, "\x43"}), RegistrySignature::differs);
    EXPECT_EQ(with({2, "\x07"}), RegistrySignature::differs);
    EXPECT_EQ(with({3, "\x01"}), RegistrySignature::differs);
    EXPECT_EQ(with({10, "\x0B"}), RegistrySignature::differs);
    EXPECT_EQ(with({12, "\x47"}), RegistrySignature::differs);
    EXPECT_EQ(signature_of(write_document(2, bytes("0D 0E 1A"), known)),
              RegistrySignature::differs);
    EXPECT_EQ(signature_of(write_document(1, bytes("0D 0E"), known)), RegistrySignature::matches);
}

TEST(Registry, KnowsFirstChoiceByItsGeneration)
{
    EXPECT_EQ(signature_of(choice_document(' ', bytes("0E"))), RegistrySignature::matches);
    EXPECT_EQ(signature_of(choice_document('2', bytes("0E"))), RegistrySignature::differs);
    EXPECT_EQ(signature_of(choice_document('\0', bytes("0E"))), RegistrySignature::differs);
    EXPECT_EQ(signature_of(choice_document('3', bytes("0E"))), RegistrySignature::matches);
}

TEST(Registry, HasNoSignatureForTheOthers)
{
    for (const int format_type : {3, 4, 5}) {
        EXPECT_EQ(signature_of(write_document(format_type, bytes("0E"))), RegistrySignature::none);
    }
}

TEST(Registry, IsNotedWhereItWouldMissTheFile)
{
    const std::vector<std::string> notes = examination_of(choice_document('2', bytes("0E"))).notes;
    EXPECT_EQ(notes,
              std::vector<std::string>{"it lacks the signature that PRONOM has for fmt/1282"});
    EXPECT_TRUE(examination_of(choice_document('3', bytes("0E"))).notes.empty());
}

} // namespace

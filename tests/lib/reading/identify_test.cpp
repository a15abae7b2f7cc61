// Identifying files, in agreement with the module.
#include "pfsdoc/identify.h"

#include "lib/reading/relatives.h"
#include "tests/lib/reading/host_bench.h"

#include <random>

namespace {

using namespace tests;
using namespace pfsdoc;

Result<Identity> identity_of(const std::string &bytes)
{
    return identify(*source_from(bytes));
}

void expect_kind(const std::string &bytes, DocumentKind kind, const std::string &basis)
{
    const Result<Identity> identity = identity_of(bytes);
    ASSERT_TRUE(identity.ok()) << identity.error().what;
    EXPECT_EQ(identity.value().kind, kind);
    EXPECT_EQ(identity.value().basis, basis);
}

void expect_unknown(const std::string &bytes, const std::string &what)
{
    const Result<Identity> identity = identity_of(bytes);
    ASSERT_FALSE(identity.ok());
    EXPECT_EQ(exit_code(identity.error().kind), 4);
    EXPECT_EQ(identity.error().what, what);
    EXPECT_FALSE(identity.error().remedy.empty());
}

bool opens(const std::string &bytes, int32_t id)
{
    DocumentSession session(bytes);
    return session->open(id);
}

constexpr const char *unknown_kind = "is not a supported document";

TEST(Identify, KnowsTheWriteFamily)
{
    expect_kind(write_document("WRD PC", '1', ""), DocumentKind::write_a,
                "\"WRD PC\" at 641, variant \"1\" at 649");
    expect_kind(write_document("WRD PC", '2', ""), DocumentKind::write_b,
                "\"WRD PC\" at 641, variant \"2\" at 649");
    expect_kind(write_document("TYPE 2", '1', ""), DocumentKind::write_a,
                "\"TYPE 2\" at 641, variant \"1\" at 649");
    expect_kind(write_document("TYPE 2", '2', ""), DocumentKind::write_b,
                "\"TYPE 2\" at 641, variant \"2\" at 649");
    expect_kind(write_document("TYPE 3", 'x', ""), DocumentKind::professional_write_1,
                "\"TYPE 3\" at 641");
    expect_kind(write_document("TYPE 4", '\0', ""), DocumentKind::professional_write_2,
                "\"TYPE 4\" at 641");
    expect_kind(write_document("IBM   ", '2', ""), DocumentKind::writing_assistant,
                "\"IBM   \" at 641");
}

TEST(Identify, KnowsFirstChoiceByItsGeneration)
{
    expect_kind(choice_document('3', ""), DocumentKind::first_choice_3,
                "\"GERBILDOC\" at 9, generation \"3\" at 18");
    expect_kind(choice_document('2', ""), DocumentKind::first_choice_2,
                "\"GERBILDOC\" at 9, generation \"2\" at 18");
    expect_kind(choice_document(' ', ""), DocumentKind::first_choice_2,
                "\"GERBILDOC\" at 9, generation byte 0x20 at 18");
    expect_kind(choice_document('\0', ""), DocumentKind::first_choice_2,
                "\"GERBILDOC\" at 9, generation byte 0x00 at 18");
    expect_kind(choice_document('3', "").substr(0, 18), DocumentKind::first_choice_2,
                "\"GERBILDOC\" at 9, generation no byte at 18");
}

TEST(Identify, PrefersFirstChoice)
{
    expect_kind(write_document("TYPE 3", ' ', "", {{9, "GERBILDOC3"}}),
                DocumentKind::first_choice_3, "\"GERBILDOC\" at 9, generation \"3\" at 18");
}

TEST(Identify, ReportsAnUnknownVariant)
{
    expect_unknown(write_document("TYPE 2", '3', ""),
                   "is marked as PFS: WRITE, but of an unknown variant (\"TYPE 2\" at 641, "
                   "variant \"3\" at 649)");
    expect_unknown(write_document("WRD PC", '\x1B', ""),
                   "is marked as PFS: WRITE, but of an unknown variant (\"WRD PC\" at 641, "
                   "variant byte 0x1B at 649)");
    expect_unknown(write_document("WRD PC", '1', "").substr(0, 649),
                   "is marked as PFS: WRITE, but of an unknown variant (\"WRD PC\" at 641, "
                   "variant no byte at 649)");
}

TEST(Identify, NamesTheRelatives)
{
    expect_unknown(blank_document(512, {{9, "GERBILDB"}}),
                   "is a First Choice database (\"GERBILDB\" at 9), not a document");
    expect_unknown(blank_document(512, {{9, "GERBILCLIP"}}),
                   "is a First Choice clipboard (\"GERBILCLIP\" at 9), not a document");
    expect_unknown(blank_document(512, {{9, "RABBITGRAPH"}}),
                   "is a First Choice graph (\"RABBITGRAPH\" at 9), not a document");
}

TEST(Identify, KnowsTheRelativesAsSomebodysWork)
{
    const auto relative_of = [](const std::string &document) -> std::string_view {
        return reading::relative_of_documents(*source_from(document));
    };
    EXPECT_EQ(relative_of(blank_document(512, {{9, "GERBILDB"}})), "a First Choice database");
    EXPECT_EQ(relative_of(write_document("WRD PC", '3', "")), "a file of PFS: WRITE");
    EXPECT_EQ(relative_of(write_document("TYPE 4", '1', "")), "");
    EXPECT_EQ(relative_of(""), "");
    EXPECT_EQ(relative_of(blank_document(512, {})), "");
}

TEST(Identify, ReportsEmptyFiles)
{
    expect_unknown("", "is empty");
}

TEST(Identify, DoesNotKnowWhatIsOnlyAlike)
{
    expect_unknown("x", unknown_kind);
    expect_unknown(blank_document(1024, {{0, "GERBILDOC"}}), unknown_kind);
    expect_unknown(blank_document(1024, {{9, "gerbildoc"}}), unknown_kind);
    expect_unknown(blank_document(1024, {{9, "GERBILDO"}}), unknown_kind);
    expect_unknown(blank_document(1024, {{641, "IBM  x"}}), unknown_kind);
    expect_unknown(blank_document(1024, {{641, "TYPE 5"}}), unknown_kind);
    expect_unknown(blank_document(1024, {{640, "TYPE 3"}}), unknown_kind);
    expect_unknown(blank_document(646, {{641, "TYPE "}}), unknown_kind);
}

TEST(Identify, ReportsAReadThatFails)
{
    DescriptorSource source(-1, 0);
    const Result<Identity> identity = identify(source);
    ASSERT_FALSE(identity.ok());
    EXPECT_EQ(exit_code(identity.error().kind), 3);
}

TEST(Identify, HasTheModulesNames)
{
    for (const KindExample &example : kind_examples()) {
        DocumentSession session(document_of(example.kind, ""));
        EXPECT_TRUE(session->open(file_id(example.kind)));
        EXPECT_EQ(session->kind_name(), display_name(example.kind));
        const Result<Identity> identity = identity_of(document_of(example.kind, ""));
        ASSERT_TRUE(identity.ok());
        EXPECT_EQ(identity.value().kind, example.kind);
    }
}

TEST(Identify, AgreesWithTheModuleAtEveryLength)
{
    for (const KindExample &example : kind_examples()) {
        const std::string document = document_of(example.kind, "");
        for (std::size_t size = 0; size <= 660; ++size) {
            const std::string cut = document.substr(0, size);
            EXPECT_EQ(identity_of(cut).ok(), opens(cut, file_id(example.kind)))
                << display_name(example.kind) << " cut at " << size;
        }
    }
}

TEST(Identify, AgreesWithTheModuleWhateverByteIsChanged)
{
    for (const KindExample &example : kind_examples()) {
        const std::string document = document_of(example.kind, "");
        for (std::size_t offset = 0; offset < 655; ++offset) {
            for (const char byte : {'\0', '1', '2', '3', ' ', '\xFF'}) {
                std::string changed = document;
                changed.at(std::min(offset, changed.size() - 1)) = byte;
                ASSERT_EQ(identity_of(changed).ok(), opens(changed, file_id(example.kind)))
                    << display_name(example.kind) << " changed at " << offset;
            }
        }
    }
}

} // namespace

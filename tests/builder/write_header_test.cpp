#include "tests/builder/descriptions.h"

#include "tests/support/notation.h"

using namespace builder_tests;

namespace {

const char *const full_header = "kind: PFS: WRITE B\n"
                                "margins: 11 71\n"
                                "tabs: 15 31. 20\n"
                                "header: Letters\n"
                                "header 2: Second\n"
                                "footer: Café\n"
                                "footer 2: Page\n"
                                "header align: right\n"
                                "footer align: centre\n"
                                "---\n";

std::string with_kind(const std::string &kind, const std::string &more = "")
{
    return "kind: " + kind + "\n" + more + "---\n";
}

} // namespace

TEST(BuilderWriteHeader, PutsEverythingAtItsOffset)
{
    const std::string file = file_of(full_header);
    EXPECT_TRUE(holds(at(file, 0, 10), "00x10"));
    EXPECT_TRUE(holds(at(file, 10, 4), "0B 00 47 00"));              // margins, columns from 1
    EXPECT_TRUE(holds(at(file, 16, 8), "0F 00 10 00 0F 00 00 00"));  // kinds of stops
    EXPECT_TRUE(holds(at(file, 172, 8), "0E 00 1E 00 13 00 00 00")); // their columns from 0
    EXPECT_TRUE(holds(at(file, 328, 8), "07 'Letters'"));
    EXPECT_TRUE(holds(at(file, 402, 7), "06 'Second'"));
    EXPECT_TRUE(holds(at(file, 484, 5), "04 'Caf' 82"));
    EXPECT_TRUE(holds(at(file, 558, 5), "04 'Page'"));
    EXPECT_TRUE(holds(at(file, 641, 6), "'TYPE 2'"));
    EXPECT_TRUE(holds(at(file, 649, 1), "'2'"));
    EXPECT_TRUE(holds(at(file, 822, 4), "02 00 00 00")); // right, centred
    EXPECT_TRUE(holds(at(file, 1024, 3), "0C 0D 0E"));   // form feed, empty body
    EXPECT_EQ(file.size(), 1027U);
}

TEST(BuilderWriteHeader, WritesTheSignatureOfItsKind)
{
    struct {
        std::string description;
        const char *signature;
        const char *variant;
    } const rows[] = {{with_kind("1012"), "'TYPE 2'", "'1'"},
                      {with_kind("1012", "signature: WRD PC\n"), "'WRD PC'", "'1'"},
                      {with_kind("1013", "signature: WRD PC\n"), "'WRD PC'", "'2'"},
                      {with_kind("1013", "signature: TYPE 2\n"), "'TYPE 2'", "'2'"},
                      {with_kind("1014"), "'TYPE 3'", "00"},
                      {with_kind("1015"), "'TYPE 4'", "00"},
                      {with_kind("1016"), "'IBM   '", "00"}};
    for (const auto &row : rows) {
        const std::string file = file_of(row.description);
        EXPECT_TRUE(holds(at(file, 641, 6), row.signature)) << row.description;
        EXPECT_TRUE(holds(at(file, 649, 1), row.variant)) << row.description;
    }
}

TEST(BuilderWriteHeader, AlignsLeftByDefault)
{
    EXPECT_TRUE(holds(at(file_of(with_kind("1013")), 822, 4), "01 00 01 00"));
}

TEST(BuilderWriteHeader, GivesProfessionalWriteItsStyles)
{
    const std::string file =
        file_of(with_kind("1014", "header style: bold underline\nfooter style: italic\n"));
    EXPECT_TRUE(holds(at(file, 828, 3), "03 00 04"));
    EXPECT_TRUE(holds(at(file, 836, 1), "00"));
}

TEST(BuilderWriteHeader, RepeatsTheMarginsForProfessionalWrite2)
{
    EXPECT_TRUE(holds(at(file_of(with_kind("1015")), 963, 4), "0A 46 0A 46"));
}

TEST(BuilderWriteHeader, PutsRecordsAfterTheFormFeed)
{
    const std::string body =
        body_of(with_kind("1013", "record: margins 12 60\nrecord: raw 02 01 02 03\n"));
    EXPECT_TRUE(holds(body, "07 05 01 0C 3C  07 06 02 01 02 03  0D 0E"));
}

TEST(BuilderWriteHeader, FillsEachTextToItsLimit)
{
    const std::size_t limits[] = {73, 81, 73, 82};
    const char *const keys[] = {"header", "header 2", "footer", "footer 2"};
    for (std::size_t i = 0; i < 4; ++i) {
        const std::string line = std::string(keys[i]) + ": ";
        const std::string full = with_kind("1013", line + std::string(limits[i], 'x') + "\n");
        EXPECT_EQ(fault_of(full), "");
        EXPECT_TRUE(holds(at(file_of(full), 641, 6), "'TYPE 2'"));
        const std::string over = with_kind("1013", line + std::string(limits[i] + 1, 'x') + "\n");
        EXPECT_EQ(fault_of(over), "letter:2: this line has " + std::to_string(limits[i] + 1) +
                                      " characters; shorten it to " + std::to_string(limits[i]));
    }
}

// Documents that are made by code rather than from a description.
#include "tests/builder/descriptions.h"

using namespace builder_tests;
using namespace pfs_builder;

TEST(BuilderBuild, BuildsWhatCodePutsTogether)
{
    Document document;
    document.kind = Kind::first_choice_2;
    document.margins = {1, 60};
    Paragraph paragraph;
    paragraph.first_indent = 2;
    paragraph.cells.push_back({CellKind::text, style_bold, false, {}, "A"});
    document.body.emplace_back(paragraph);
    const Built built = build(document);
    ASSERT_FALSE(built.fault);
    const std::string file(built.bytes.begin(), built.bytes.end());
    EXPECT_TRUE(holds(body_of(document.kind, file), "'  ' C1 02 0C 0E"));
}

TEST(BuilderBuild, ReportsFaultsWithoutADescription)
{
    Document document;
    document.margins = {0, 60};
    const Built built = build(document);
    ASSERT_TRUE(built.fault);
    EXPECT_TRUE(built.bytes.empty());
    EXPECT_EQ(to_string(*built.fault),
              "document:0: margins 0 and 60 leave no page; let both be from "
              "1 to 255 and the left one the smaller");
}

TEST(BuilderBuild, NamesItsKinds)
{
    EXPECT_STREQ(kind_name(Kind::professional_write_1), "Professional Write 1");
    EXPECT_EQ(find_kind("1058"), Kind::first_choice_3);
    EXPECT_EQ(find_kind("PFS: Professional Write 1"), std::nullopt);
    EXPECT_EQ(find_kind(""), std::nullopt);
}

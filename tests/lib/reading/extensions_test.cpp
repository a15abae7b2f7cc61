// Extensions that do not fit a document's kind.
#include "pfsdoc/extensions.h"

#include "tests/lib/reading/host_bench.h"

namespace {

using namespace tests;
using namespace pfsdoc;

TEST(Extensions, ThatFitOrMeanNothingAreNotNoted)
{
    EXPECT_EQ(extension_mismatch("a.pfs", DocumentKind::write_a), "");
    EXPECT_EQ(extension_mismatch("A.PFS", DocumentKind::write_b), "");
    EXPECT_EQ(extension_mismatch("a.pw", DocumentKind::professional_write_1), "");
    EXPECT_EQ(extension_mismatch("a.doc", DocumentKind::first_choice_2), "");
    EXPECT_EQ(extension_mismatch("a.DOC", DocumentKind::first_choice_3), "");
    for (const char *name : {"LETTER", "LETTER.12", "a.bak", "a.", ".pdf", "", "-", "doc",
                             "letters.pdf/LETTER", "a.docs"}) {
        for (const KindExample &example : kind_examples()) {
            EXPECT_EQ(extension_mismatch(name, example.kind), "") << name;
        }
    }
}

TEST(Extensions, OfOtherFormatsAreNoted)
{
    for (const KindExample &example : kind_examples()) {
        EXPECT_EQ(extension_mismatch("a.pdf", example.kind), "its extension .pdf is usual for PDF");
        EXPECT_EQ(extension_mismatch("dir.d/A.Txt", example.kind),
                  "its extension .txt is usual for plain text");
    }
}

TEST(Extensions, OfOtherKindsAreNoted)
{
    EXPECT_EQ(extension_mismatch("a.doc", DocumentKind::write_a),
              "its extension .doc is usual for PFS: First Choice and Microsoft Word");
    EXPECT_EQ(extension_mismatch("a.doc", DocumentKind::writing_assistant),
              "its extension .doc is usual for PFS: First Choice and Microsoft Word");
    EXPECT_EQ(extension_mismatch("a.pw", DocumentKind::first_choice_3),
              "its extension .pw is usual for Professional Write");
    EXPECT_EQ(extension_mismatch("a.pfs", DocumentKind::professional_write_2),
              "its extension .pfs is usual for PFS: WRITE");
}

} // namespace

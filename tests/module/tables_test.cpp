// The two constant tables, byte by byte.
#include "vs_pfs.h"

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <utility>

namespace {

TEST(Tables, NameTheSevenKinds)
{
    static_assert(sizeof(VwFileKind) == 44);
    const std::array<std::pair<uint16_t, const char *>, VW_FILE_KINDS> kinds{{
        {1012, "PFS: WRITE A"},
        {1013, "PFS: WRITE B"},
        {1014, "Professional Write 1"},
        {1015, "Professional Write 2"},
        {1016, "IBM Writing Assistant"},
        {1017, "PFS: First Choice 2.0"},
        {1058, "PFS: First Choice 3.0"},
    }};
    for (std::size_t i = 0; i < kinds.size(); ++i) {
        EXPECT_EQ(VwPfsOverlayId[i].fileId, kinds[i].first);
        EXPECT_EQ(VwPfsOverlayId[i].kind, 120);
        std::string padded(kinds[i].second);
        padded.resize(41);
        EXPECT_EQ(std::string(VwPfsOverlayId[i].displayName, 41), padded);
    }
}

TEST(Tables, HoldTheMagicTheKeywordsAndTheSignatures)
{
    const auto padded = [](std::string text, std::size_t size) {
        text.resize(size);
        return text;
    };
    std::string expected = padded("GERBILDOC", 10);
    for (const char *keyword :
         {"N*", "NEW ", "PAGE*", "JUSTIFY ", "JY ", "YES*", "Y*", "NO*", "PRINTER ", "P ",
          "CENTER*", "C*", "GRAPH ", "G ", "JOIN ", "J ", "RIGHT*", "R*"}) {
        expected += padded(keyword, 9);
    }
    for (const char *signature : {"WRD PC", "TYPE 2", "IBM   ", "TYPE 3", "TYPE 4"}) {
        expected += padded(signature, 7);
    }
    expected += '\0';
    EXPECT_EQ(std::string(PfsInit, VW_PFS_INIT_SIZE), expected);
}

} // namespace

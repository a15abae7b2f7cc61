// What names from outside become, and how equal ones are told apart.
#include "batch/trusted/names.h"

#include <gtest/gtest.h>

#include <set>

namespace {

using pfsdoc::batch::NameSet;
using pfsdoc::batch::safe_name;
using pfsdoc::batch::Separators;

struct NameCase {
    const char *told;
    std::string_view path;
    std::string_view with_slashes;
    std::string_view with_both;
};

const NameCase names[] = {
    {"plain", "a/b.doc", "a/b.doc", "a/b.doc"},
    {"absolute", "/etc/passwd", "etc/passwd", "etc/passwd"},
    {"parent", "../../a", "\\x2E\\x2E/\\x2E\\x2E/a", "\\x2E\\x2E/\\x2E\\x2E/a"},
    {"parent at the end", "a/..", "a/\\x2E\\x2E", "a/\\x2E\\x2E"},
    {"dots that are names", "..a/.../.b", "..a/.../.b", "..a/.../.b"},
    {"no parts", "//", "", ""},
    {"empty", "", "", ""},
    {"empty parts", "a//b/./c/", "a/b/c", "a/b/c"},
    {"backslash", "a\\b.doc", "a\\x5Cb.doc", "a/b.doc"},
    {"parent of DOS", "..\\..\\a", "..\\x5C..\\x5Ca", "\\x2E\\x2E/\\x2E\\x2E/a"},
    {"drive", "C:\\a", "C:\\x5Ca", "C:/a"},
    {"what looks like an escape", "\\x2E", "\\x5Cx2E", "x2E"},
    {"control characters", "a\x1B[2J\n", "a\\x1B[2J\\x0A", "a\\x1B[2J\\x0A"},
    {"temporary", ".pfsdoc-1/.PfsDoc-2", "\\x2Epfsdoc-1/\\x2EPfsDoc-2",
     "\\x2Epfsdoc-1/\\x2EPfsDoc-2"},
    {"no temporary", ".pfsdoc/a.pfsdoc-1", ".pfsdoc/a.pfsdoc-1", ".pfsdoc/a.pfsdoc-1"},
    {"turned direction", "a\u202Etxt", "a\\xE2\\x80\\xAEtxt", "a\\xE2\\x80\\xAEtxt"},
    {"noncharacter", "a\uFFFE", "a\\xEF\\xBF\\xBE", "a\\xEF\\xBF\\xBE"},
    {"UTF-8", "M\xC3\xBCller", "M\xC3\xBCller", "M\xC3\xBCller"},
    {"code page 437", "M\x81ller", "M\\x81ller", "M\\x81ller"},
    {"C1 in UTF-8", "a\xC2\x9B", "a\\xC2\\x9B", "a\\xC2\\x9B"},
};

TEST(SafeName, leads_nowhere_else)
{
    for (const NameCase &each : names) {
        EXPECT_EQ(safe_name(each.path, Separators::slash), each.with_slashes) << each.told;
        EXPECT_EQ(safe_name(each.path, Separators::slash_and_backslash), each.with_both)
            << each.told;
    }
}

TEST(SafeName, differs_for_different_names_of_a_folder)
{
    // Every name of two bytes that a folder can hold.
    std::set<std::string> seen;
    std::size_t count = 0;
    for (int first = 1; first < 256; ++first) {
        for (int second = 1; second < 256; ++second) {
            const std::string name = {static_cast<char>(first), static_cast<char>(second)};
            if (name.find('/') == std::string::npos) {
                seen.insert(safe_name(name, Separators::slash));
                ++count;
            }
        }
    }
    EXPECT_EQ(seen.size(), count);
}

TEST(SafeName, is_cut_to_what_file_systems_take)
{
    EXPECT_EQ(safe_name(std::string(200, 'a'), Separators::slash), std::string(200, 'a'));
    EXPECT_EQ(safe_name(std::string(201, 'a'), Separators::slash), std::string(200, 'a'));
    // Neither a character nor an escape is cut in two.
    EXPECT_EQ(safe_name(std::string(199, 'a') + "\xC3\xBC", Separators::slash),
              std::string(199, 'a'));
    EXPECT_EQ(safe_name(std::string(198, 'a') + "\n", Separators::slash), std::string(198, 'a'));
    EXPECT_EQ(safe_name(std::string(196, 'a') + "\nb", Separators::slash),
              std::string(196, 'a') + "\\x0A");
}

TEST(SafeName, has_no_more_parts_than_fit)
{
    std::string path;
    for (int part = 0; part < 10'000; ++part) {
        path += "ab/";
    }
    const std::string name = safe_name(path, Separators::slash);
    EXPECT_EQ(name.size(), 2000U);
    EXPECT_EQ(name.substr(1989), "ab/ab/ab/ab");
}

TEST(ArchiveName, is_told_by_its_ending)
{
    for (const char *name : {"a.zip", "A.ZIP", ".zip", "a.tar", "a.tar.gz", "a.Tgz", "a.tar.bz2",
                             "a.tar.xz", "a.tar.zst", "b.doc.zip"}) {
        EXPECT_TRUE(pfsdoc::batch::is_archive_name(name)) << name;
    }
    for (const char *name : {"", "zip", "a.gz", "a.zip.doc", "a.zip2", "azip", "a.tar.Z"}) {
        EXPECT_FALSE(pfsdoc::batch::is_archive_name(name)) << name;
    }
}

TEST(NameSet, numbers_names_that_come_again)
{
    NameSet set("txt");
    EXPECT_EQ(set.unique("a/b.doc"), "a/b.doc");
    EXPECT_EQ(set.unique("a/b.doc"), "a/b (2).doc");
    EXPECT_EQ(set.unique("a/b.doc"), "a/b (3).doc");
    EXPECT_EQ(set.unique("b.doc"), "b.doc");
    EXPECT_EQ(set.unique("a.b/c"), "a.b/c");
    EXPECT_EQ(set.unique("a.b/c"), "a.b/c (2)");
    EXPECT_EQ(set.unique(".b"), ".b");
    EXPECT_EQ(set.unique(".b"), ".b (2)");
}

TEST(NameSet, passes_over_numbers_that_are_taken)
{
    NameSet set("txt");
    EXPECT_EQ(set.unique("a (2)"), "a (2)");
    EXPECT_EQ(set.unique("a"), "a");
    EXPECT_EQ(set.unique("a"), "a (3)");
    EXPECT_EQ(set.unique("a (2)"), "a (2) (2)");
}

TEST(NameSet, gives_a_name_to_what_has_none)
{
    NameSet set("txt");
    EXPECT_EQ(set.unique(""), "unnamed");
    EXPECT_EQ(set.unique(""), "unnamed (2)");
    EXPECT_EQ(set.unique("a.zip/"), "a.zip/unnamed");
}

// Some file systems take these for one name.
TEST(NameSet, comparesAsTheLeastDistinguishingFileSystem)
{
    NameSet set("txt");
    EXPECT_EQ(set.unique("LETTER"), "LETTER");
    EXPECT_EQ(set.unique("letter"), "letter (2)");
    EXPECT_EQ(set.unique("Letter"), "Letter (3)");
    EXPECT_EQ(set.unique("M\u00FCller"), "M\u00FCller"); // as one character, and as two
    EXPECT_EQ(set.unique("Mu\u0308ller"), "Mu\u0308ller (2)");
    EXPECT_EQ(set.unique("MU\u0308LLER"), "MU\u0308LLER (3)");
    EXPECT_EQ(set.unique("Stra\u00DFe"), "Stra\u00DFe");
    EXPECT_EQ(set.unique("STRASSE"), "STRASSE (2)");
    EXPECT_EQ(set.unique("soft\u00ADhyphen"), "soft\u00ADhyphen");
    EXPECT_EQ(set.unique("softhyphen"), "softhyphen (2)");
    EXPECT_EQ(set.unique("IN/a"), "IN/a");
    EXPECT_EQ(set.unique("in/A"), "in/A (2)");
    EXPECT_EQ(set.unique("in/b"), "in/b");
}

// An output cannot be a folder of another one.
TEST(NameSet, tellsFilesFromFolders)
{
    NameSet set("html");
    EXPECT_EQ(set.unique("t/a"), "t/a"); // t/a.html
    EXPECT_EQ(set.unique("t/a.html/b"), "t/a (2).html/b");
    EXPECT_EQ(set.unique("t/A.HTML/c"), "t/A (2).HTML/c") << "all of a folder stay together";
    EXPECT_EQ(set.unique("t/a.html"), "t/a.html"); // t/a.html.html
    EXPECT_EQ(set.unique("t/d.html/e"), "t/d.html/e");
    EXPECT_EQ(set.unique("t/d"), "t/d (2)");
    EXPECT_EQ(set.unique_folder("t/a.html"), "t/a (3).html");
    EXPECT_EQ(set.unique("t/a (3).html/f"), "t/a (3).html/f");
}

TEST(NameSet, takesNamedFoldersApart)
{
    NameSet set("txt");
    EXPECT_EQ(set.unique_folder("in"), "in");
    EXPECT_EQ(set.unique_folder("IN"), "IN (2)");
    EXPECT_EQ(set.unique("in/a"), "in/a");
    EXPECT_EQ(set.unique("IN (2)/a"), "IN (2)/a");
    EXPECT_EQ(set.unique("in"), "in (3)") << "the folder's own line has the name";
}

TEST(NameSet, keepsReservedPathsFree)
{
    NameSet set("json");
    set.reserve("manifest.json");
    set.reserve("sub/manifest.json.partial");
    EXPECT_EQ(set.unique("manifest"), "manifest (2)");
    EXPECT_EQ(set.unique("Manifest.JSON/a"), "Manifest (3).JSON/a");
    EXPECT_EQ(set.unique("sub/manifest.json.partial/a"), "sub/manifest.json (2).partial/a");
    EXPECT_EQ(set.unique("sub/manifest"), "sub/manifest");
}

// However many files there are, a use is kept for each, and one for each folder.
TEST(NameSet, givesTheSameNamesForTheSameOrder)
{
    const char *const wanted[] = {"a", "A", "a.txt/b", "a (2)", "a.TXT/B", "b", "a.txt", ""};
    std::set<std::string> seen;
    for (int time = 0; time < 2; ++time) {
        NameSet set("txt");
        for (int round = 0; round < 50; ++round) {
            for (const char *name : wanted) {
                const std::string unique = set.unique(name);
                EXPECT_EQ(seen.insert(unique).second, time == 0) << unique;
            }
        }
    }
}

// Each takes up where the last number was found: without that, this would take minutes.
TEST(NameSet, takes_many_equal_names)
{
    NameSet set("txt");
    for (int time = 0; time < 100'000; ++time) {
        set.unique("a.doc");
    }
    EXPECT_EQ(set.unique("a.doc"), "a (100001).doc");
}

} // namespace

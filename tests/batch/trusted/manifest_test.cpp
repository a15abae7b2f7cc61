// Manifests of runs that were ended anywhere, and files that only have a manifest's name.
#include "batch/trusted/manifest.h"

#include "batch/trusted/recorded_line.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <sys/file.h>
#include <sys/stat.h>

namespace {

namespace fs = std::filesystem;
using pfsdoc::ErrorKind;
using pfsdoc::batch::Manifest;

std::string line_of(const std::string &name)
{
    return R"({"name":")" + name + R"(","status":"converted","output":null,"format":"text"})" +
           "\n";
}

class ManifestFile : public testing::Test {
protected:
    void SetUp() override
    {
        std::string name = (fs::temp_directory_path() / "pfsdoc-XXXXXX").string();
        ASSERT_NE(::mkdtemp(name.data()), nullptr);
        folder = name;
        path = folder / "m";
    }
    void TearDown() override
    {
        fs::remove_all(folder);
    }

    pfsdoc::Result<Manifest> opened() const
    {
        return Manifest::open(path, pfsdoc::batch::output_of_line);
    }
    void write(const std::string &ending, const std::string &text) const
    {
        std::ofstream(path + ending, std::ios::binary) << text;
    }
    std::string content_of(const std::string &ending) const
    {
        std::ostringstream text;
        text << std::ifstream(path + ending).rdbuf();
        return text.str();
    }
    void expect_refusal(const std::string &words) const
    {
        const auto manifest = opened();
        ASSERT_FALSE(manifest.ok());
        EXPECT_EQ(manifest.error().kind, ErrorKind::output);
        EXPECT_NE(manifest.error().what.find(words), std::string::npos) << manifest.error().what;
    }
    static bool is_wanted(const std::string &)
    {
        return true;
    }
    static bool is_not_wanted(const std::string &)
    {
        return false;
    }

    fs::path folder;
    std::string path;
};

// A run is ended at every byte of its manifest, and the next one finds all whole lines.
TEST_F(ManifestFile, FindsTheLinesOfRunsThatWereEnded)
{
    const std::string lines = line_of("a") + line_of("b");
    const std::size_t first = line_of("a").size();
    for (std::size_t size = 0; size <= lines.size(); ++size) {
        fs::remove(path + ".earlier");
        write(".partial", lines.substr(0, size));
        for (int starts = 0; starts < 2; ++starts) {
            const auto manifest = opened();
            ASSERT_TRUE(manifest.ok()) << manifest.error().what;
            EXPECT_EQ(content_of(".partial"), "");
            const auto &earlier = manifest.value().earlier();
            EXPECT_EQ(earlier.find("a.txt").size(), size >= first ? 1U : 0U) << size;
            EXPECT_EQ(earlier.find("b.txt").size(), size >= lines.size() ? 1U : 0U) << size;
            EXPECT_TRUE(earlier.find("c.txt").empty());
        }
    }
    auto manifest = opened();
    ASSERT_TRUE(manifest.ok());
    EXPECT_TRUE(manifest.value().add(line_of("c"), {}).ok());
    EXPECT_EQ(content_of(".partial"), line_of("c"));
    EXPECT_TRUE(manifest.value().finish(is_not_wanted).ok());
    EXPECT_EQ(content_of(""), line_of("c"));
    EXPECT_FALSE(fs::exists(path + ".earlier"));
    EXPECT_FALSE(fs::exists(path + ".partial"));
}

TEST_F(ManifestFile, RemembersOutputsThatThisRunDidNotMake)
{
    write("", line_of("a") + line_of("b") + line_of("c"));
    for (int runs = 0; runs < 2; ++runs) {
        auto manifest = opened();
        ASSERT_TRUE(manifest.ok());
        EXPECT_TRUE(manifest.value().add(line_of("b"), {"b.txt"}).ok());
        EXPECT_TRUE(manifest.value().finish(is_wanted).ok());
        EXPECT_EQ(manifest.value().unclaimed_outputs(), 2U);
        EXPECT_EQ(content_of(""), line_of("b"));
        EXPECT_EQ(content_of(".earlier").size(), 2 * line_of("a").size());
        EXPECT_FALSE(fs::exists(path + ".earlier.new"));
    }
    auto manifest = opened();
    ASSERT_TRUE(manifest.ok());
    EXPECT_EQ(manifest.value().earlier().find("a.txt").size(), 1U);
    EXPECT_TRUE(manifest.value().finish(is_not_wanted).ok());
    EXPECT_FALSE(fs::exists(path + ".earlier"));
}

TEST_F(ManifestFile, FindsWhatWasAnnounced)
{
    {
        auto manifest = opened();
        ASSERT_TRUE(manifest.ok());
        manifest.value().announce(line_of("a"));
    }
    const auto manifest = opened();
    ASSERT_TRUE(manifest.ok());
    EXPECT_EQ(manifest.value().earlier().find("a.txt").size(), 1U);
}

TEST_F(ManifestFile, KeepsItsMode)
{
    write("", line_of("a"));
    ASSERT_EQ(::chmod(path.c_str(), 0600), 0);
    auto manifest = opened();
    ASSERT_TRUE(manifest.ok());
    EXPECT_TRUE(manifest.value().finish(is_not_wanted).ok());
    EXPECT_EQ(fs::status(path).permissions(), fs::perms::owner_read | fs::perms::owner_write);
}

// ------------------------------------------------------------ files of somebody else -----

TEST_F(ManifestFile, ReplacesNoFileThatIsNone)
{
    for (const char *ending : {"", ".partial", ".earlier", ".earlier.new"}) {
        for (const std::string content : {"a letter", "{}\n", "[[[", "\n\nnotes"}) {
            write(ending, content);
            expect_refusal("is not a manifest");
            EXPECT_EQ(content_of(ending), content);
        }
        fs::remove(path + ending);
        EXPECT_TRUE(fs::is_empty(folder)) << "something was made beside it";
    }
}

TEST_F(ManifestFile, FollowsNoLink)
{
    write("elsewhere", line_of("a"));
    for (const char *ending : {"", ".partial", ".earlier", ".earlier.new"}) {
        fs::create_symlink(path + "elsewhere", path + ending);
        expect_refusal("is a symbolic link");
        fs::remove(path + ending);
    }
    fs::create_hard_link(path + "elsewhere", path + ".partial");
    expect_refusal("has another name");
    EXPECT_EQ(content_of("elsewhere"), line_of("a"));
}

TEST_F(ManifestFile, WaitsForNoPipe)
{
    for (const char *ending : {"", ".partial", ".earlier"}) {
        ASSERT_EQ(::mkfifo((path + ending).c_str(), 0600), 0);
        expect_refusal("is not a regular file");
        fs::remove(path + ending);
    }
}

TEST_F(ManifestFile, BelongsToOneRun)
{
    const auto first = opened();
    ASSERT_TRUE(first.ok());
    expect_refusal("another run is writing");
}

} // namespace

// Outputs have a temporary name until they are given their own, and leave nothing without it. The
// folder belongs to one run, and is left only through its own subfolders.
#include "batch/trusted/output_folder.h"

#include "tests/batch/trusted/output_bench.h"

#include <fcntl.h>
#include <sys/stat.h>

namespace tests {

namespace {

class Folder : public OutputBench {};

TEST_F(Folder, GivesOutputsTheirNames)
{
    PendingOutput first = created("a", "1");
    EXPECT_EQ(files(), "?=1 ") << "has its name before it is on the disk";
    PendingOutput second = created("b/c", "2");
    EXPECT_EQ(pfsdoc::batch::sync_volumes(folder->volumes()), 0);
    EXPECT_EQ(placement(first), Placement::placed);
    EXPECT_EQ(placement(second), Placement::placed);
    EXPECT_EQ(files(), "a=1 b/c=2 ");
}

TEST_F(Folder, GivesThemWhenTheyAreClosed)
{
    PendingOutput output = created("a", "1");
    EXPECT_GE(output.descriptor(), 0);
    output.close();
    EXPECT_LT(output.descriptor(), 0);
    EXPECT_EQ(placement(output), Placement::placed);
    EXPECT_EQ(files(), "a=1 ");
}

TEST_F(Folder, KeepsNothingThatIsNotCommitted)
{
    {
        PendingOutput moved_from = created("a", "1");
        const PendingOutput moved_to = std::move(moved_from);
        EXPECT_EQ(files(), "?=1 ");
    }
    EXPECT_EQ(files(), "");
}

TEST_F(Folder, TellsOfANameThatCannotBe)
{
    PendingOutput output = created("folder", "1");
    fs::create_directories(directory / "folder" / "full");
    const auto placed = output.commit({});
    ASSERT_FALSE(placed.ok());
    EXPECT_EQ(placed.error().kind, ErrorKind::usage);
    write("file", "");
    for (const std::string &name :
         {std::string("folder/") + std::string(300, 'x') + "/b",
          std::string(200, 'x') + "/" + std::string(300, 'y') + "/c", std::string("file/a")}) {
        const auto refused = folder->create(name);
        ASSERT_FALSE(refused.ok());
        EXPECT_EQ(refused.error().kind, ErrorKind::usage) << refused.error().what;
    }
}

TEST_F(Folder, TellsWhenNothingCanBeWritten)
{
    PendingOutput output = created("gone/b", "1");
    fs::remove_all(directory / "gone");
    const auto placed = output.commit({});
    ASSERT_FALSE(placed.ok());
    EXPECT_EQ(placed.error().kind, ErrorKind::output);
    const auto none = pfsdoc::batch::OutputFolder::open("/proc/none");
    ASSERT_FALSE(none.ok());
    EXPECT_EQ(none.error().kind, ErrorKind::output);
}

TEST_F(Folder, IsMadeAgainWhereItWasRemoved)
{
    created("a/b", "1");
    fs::remove_all(directory / "a");
    PendingOutput output = created("a/c", "2");
    EXPECT_EQ(placement(output), Placement::placed);
    EXPECT_EQ(files(), "a/c=2 ");
}

TEST_F(Folder, FindsAnEarlierOutputBySize)
{
    write("a", "123");
    EXPECT_GE(folder->open_existing("a", 3).get(), 0);
    EXPECT_LT(folder->open_existing("a", 4).get(), 0);
    EXPECT_LT(folder->open_existing("b", 3).get(), 0);
    fs::create_directory(directory / "folder");
    EXPECT_LT(folder->open_existing("folder", fs::file_size(directory / "a")).get(), 0);
    fs::create_symlink("a", directory / "link");
    EXPECT_LT(folder->open_existing("link", 3).get(), 0);
}

// ------------------------------------------------------------------------- links -----

TEST_F(Folder, IsNotLeftThroughALink)
{
    const fs::path elsewhere = directory / "elsewhere";
    fs::create_directory(elsewhere);
    fs::create_directory(directory / "folder");
    fs::create_symlink(elsewhere, directory / "link");
    fs::create_symlink(elsewhere, directory / "folder" / "link");
    for (const char *name : {"link/a", "folder/link/a", "folder/link/b/c"}) {
        const auto refused = folder->create(name);
        ASSERT_FALSE(refused.ok());
        EXPECT_EQ(refused.error().kind, ErrorKind::usage);
        EXPECT_NE(refused.error().what.find("symbolic link"), std::string::npos)
            << refused.error().what;
    }
    EXPECT_TRUE(fs::is_empty(elsewhere));
}

TEST_F(Folder, KeepsTemporaryFilesPrivate)
{
    const PendingOutput output = created("a", "1");
    struct stat status {};
    ASSERT_EQ(::fstat(output.descriptor(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777U, 0600U);
}

// ---------------------------------------------------------------------- other runs -----

TEST_F(Folder, BelongsToOneRun)
{
    const auto second = pfsdoc::batch::OutputFolder::open(directory);
    ASSERT_FALSE(second.ok());
    EXPECT_EQ(second.error().kind, ErrorKind::output);
    EXPECT_NE(second.error().what.find("another run is writing"), std::string::npos);
    folder.reset();
    EXPECT_TRUE(pfsdoc::batch::OutputFolder::open(directory).ok());
}

TEST_F(Folder, HasNothingLeftOfARunThatWasKilled)
{
    folder.reset();
    write(".pfsdoc-run", "0123456789abcdef");
    write("x/.pfsdoc-0123456789abcdef-0", "left");
    write("x/y/.pfsdoc-0123456789abcdef-7", "left");
    write("x/.pfsdoc-0123456789abcdee-0", "of somebody else");
    write("x/.pfsdoc-notes", "of somebody else");
    write("x/a", "1");
    open_folder();
    EXPECT_FALSE(fs::exists(directory / "x/.pfsdoc-0123456789abcdef-0"));
    EXPECT_FALSE(fs::exists(directory / "x/y/.pfsdoc-0123456789abcdef-7"));
    EXPECT_TRUE(fs::exists(directory / "x/.pfsdoc-0123456789abcdee-0"));
    EXPECT_TRUE(fs::exists(directory / "x/.pfsdoc-notes"));
    EXPECT_TRUE(fs::exists(directory / ".pfsdoc-run"));
    folder.reset();
    EXPECT_FALSE(fs::exists(directory / ".pfsdoc-run"));
}

TEST_F(Folder, KeepsAFileThatIsNoMarker)
{
    folder.reset();
    for (const std::string content : {"0123456789abcdef\n", "notes", "0123456789ABCDEF"}) {
        write(".pfsdoc-run", content);
        const auto refused = pfsdoc::batch::OutputFolder::open(directory);
        ASSERT_FALSE(refused.ok());
        EXPECT_NE(refused.error().what.find(".pfsdoc-run is not"), std::string::npos);
        EXPECT_EQ(content_of(".pfsdoc-run"), content);
    }
    fs::remove(directory / ".pfsdoc-run");
    ASSERT_EQ(::mkfifo((directory / ".pfsdoc-run").c_str(), 0600), 0);
    EXPECT_FALSE(pfsdoc::batch::OutputFolder::open(directory).ok());
}

// The first of them could not remove its own, the second was killed.
TEST_F(Folder, RemovesWhatSeveralRunsLeft)
{
    folder.reset();
    write(".pfsdoc-run", "0123456789abcdef1111111111111111");
    write(".pfsdoc-0123456789abcdef-0", "left");
    write(".pfsdoc-1111111111111111-5", "left");
    write(".pfsdoc-2222222222222222-5", "somebody's");
    EXPECT_TRUE(pfsdoc::batch::OutputFolder::open(directory).ok());
    EXPECT_FALSE(fs::exists(directory / ".pfsdoc-run"));
    EXPECT_FALSE(fs::exists(directory / ".pfsdoc-0123456789abcdef-0"));
    EXPECT_FALSE(fs::exists(directory / ".pfsdoc-1111111111111111-5"));
    EXPECT_TRUE(fs::exists(directory / ".pfsdoc-2222222222222222-5"));
}

// A run that was killed while it wrote its number.
TEST_F(Folder, ReplacesAMarkerThatWasCut)
{
    folder.reset();
    for (const std::string content : {"", "0123"}) {
        write(".pfsdoc-run", content);
        EXPECT_TRUE(pfsdoc::batch::OutputFolder::open(directory).ok());
        EXPECT_FALSE(fs::exists(directory / ".pfsdoc-run"));
    }
}

} // namespace

} // namespace tests

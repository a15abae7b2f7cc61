// Whose files an output may replace, and how.
#include "batch/trusted/pending_output.h"

#include "tests/batch/trusted/output_bench.h"

#include <sys/stat.h>

namespace tests {

namespace {

using pfsdoc::batch::FileIdentity;

class Pending : public OutputBench {
protected:
    unsigned mode_of(const std::string &name) const
    {
        struct stat status {};
        EXPECT_EQ(::stat((directory / name).c_str(), &status), 0);
        return status.st_mode & 07777U;
    }
    FileIdentity identity_of(const std::string &name) const
    {
        struct stat status {};
        EXPECT_EQ(::stat((directory / name).c_str(), &status), 0);
        return {status.st_dev, status.st_ino};
    }
    // What becomes of an output named "a" that holds "new".
    Placement placed(CommitRule rule)
    {
        PendingOutput output = created("a", "new");
        output.close();
        rule.made = content("new");
        return placement(output, rule);
    }
};

TEST_F(Pending, KeepsAFileOfSomebodyElse)
{
    for (const std::string theirs : {"old", "a longer one", ""}) {
        write("a", theirs);
        EXPECT_EQ(placed({}), Placement::kept);
        EXPECT_EQ(placed({.own = {content("other")}}), Placement::kept);
        EXPECT_EQ(files(), "a=" + theirs + " ");
    }
}

TEST_F(Pending, ReplacesWhatAnEarlierRunMade)
{
    write("a", "old");
    EXPECT_EQ(placed({.own = {content("one"), content("old")}}), Placement::placed);
    EXPECT_EQ(files(), "a=new ");
}

// A run that was killed before it could record the file, and one whose manifest was lost.
TEST_F(Pending, TakesOverWhatIsThereAlready)
{
    write("a", "new");
    const FileIdentity before = identity_of("a");
    EXPECT_EQ(placed({}), Placement::placed);
    EXPECT_EQ(identity_of("a"), before);
    EXPECT_EQ(files(), "a=new ");
}

TEST_F(Pending, ReplacesAFileOfSomebodyElseWhereThatWasAskedFor)
{
    write("a", "old");
    EXPECT_EQ(placed({.replaces_foreign = true}), Placement::placed);
    EXPECT_EQ(files(), "a=new ");
}

TEST_F(Pending, NeverReplacesAFileThatIsRead)
{
    write("a", "letter");
    const FileIdentity letter = identity_of("a");
    const CommitRule rule{.replaces_foreign = true,
                          .is_input = [letter](const FileIdentity &one) { return one == letter; }};
    EXPECT_EQ(placed(rule), Placement::kept_input);
    fs::rename(directory / "a", directory / "letter");
    fs::create_symlink("letter", directory / "a");
    EXPECT_EQ(placed(rule), Placement::kept_input);
    fs::remove(directory / "a");
    fs::create_hard_link(directory / "letter", directory / "a");
    EXPECT_EQ(placed(rule), Placement::kept_input);
    EXPECT_EQ(files(), "a=letter letter=letter ");
}

TEST_F(Pending, DoesNotWriteThroughALink)
{
    write("theirs", "old");
    fs::create_symlink("theirs", directory / "a");
    EXPECT_EQ(placed({.own = {content("old")}}), Placement::kept);
    EXPECT_TRUE(fs::is_symlink(directory / "a"));
    EXPECT_EQ(placed({.replaces_foreign = true}), Placement::placed);
    EXPECT_EQ(files(), "a=new theirs=old ");
    EXPECT_FALSE(fs::is_symlink(directory / "a"));
}

TEST_F(Pending, WaitsForNoPipe)
{
    ASSERT_EQ(::mkfifo((directory / "a").c_str(), 0600), 0);
    EXPECT_EQ(placed({}), Placement::kept);
}

TEST_F(Pending, KeepsTheModeOfWhatItReplaces)
{
    const mode_t before = ::umask(027);
    folder.reset();
    open_folder();
    EXPECT_EQ(placed({}), Placement::placed);
    EXPECT_EQ(mode_of("a"), 0640U);
    ::umask(before);
    ASSERT_EQ(::chmod((directory / "a").c_str(), 0600), 0);
    write("a", "old");
    EXPECT_EQ(placed({.own = {content("old")}}), Placement::placed);
    EXPECT_EQ(mode_of("a"), 0600U);
    EXPECT_EQ(files(), "a=new ");
}

// Somebody saves the file between the last look at it and the moment when it is replaced.
TEST_F(Pending, GivesBackAFileThatIsChangedJustThen)
{
    write("a", "old");
    int asked = 0; // twice for each attempt
    const CommitRule rule{
        .made = content("new"), .replaces_foreign = true, .is_input = [&](const FileIdentity &) {
            if (++asked == 2) {
                write("a", "saved just now");
            }
            return asked > 2;
        }};
    PendingOutput output = created("a", "new");
    output.close();
    EXPECT_EQ(placement(output, rule), Placement::kept_input);
    EXPECT_EQ(content_of("a"), "saved just now");
}

} // namespace

} // namespace tests

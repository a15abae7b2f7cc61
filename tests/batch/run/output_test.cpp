// What a batch may write, and what it leaves alone: originals, other people's work, and whatever
// is behind a link.
#include "tests/batch/run/batch_bench.h"

#include <sys/file.h>
#include <sys/stat.h>

namespace tests {

namespace {

class BatchOutput : public Batch {
protected:
    void SetUp() override
    {
        Batch::SetUp();
        write_letter("in/letter", "Hello");
    }
    const std::vector<std::string> arguments = {"batch", "in", "-o", "out", "-t", "text"};
    std::vector<std::string> with(const std::string &option) const
    {
        std::vector<std::string> all = arguments;
        all.push_back(option);
        return all;
    }
    static constexpr const char *output = "out/in/letter.txt";
    static constexpr const char *kept =
        "in/letter: kept, out/in/letter.txt was not made by this batch, or was changed since; it "
        "was kept\n";
};

// ------------------------------------------------------------------ other people's work -----

TEST_F(BatchOutput, KeepsWhatWasEdited)
{
    run(arguments);
    write(output, "an hour's work");
    for (const char *option : {"-q", "--no-headers"}) {
        EXPECT_EQ(run(with(option)).exit_code, 1);
        EXPECT_EQ(content_of(directory / output), "an hour's work");
        EXPECT_EQ(statuses(), kept);
        EXPECT_TRUE(nlohmann::json::parse(manifest()).at("output").is_null());
    }
    EXPECT_EQ(run(with("--overwrite")).exit_code, 0);
    EXPECT_EQ(content_of(directory / output), output_of({"text", "in/letter"}));
    EXPECT_EQ(names(), "in/letter.txt\nmanifest.ndjson\n");
}

TEST_F(BatchOutput, KeepsWhatWasThereBefore)
{
    fs::create_directories(directory / "out/in");
    write(output, "notes");
    EXPECT_EQ(run(arguments).exit_code, 1);
    EXPECT_EQ(content_of(directory / output), "notes");
    EXPECT_EQ(statuses(), kept);
    EXPECT_EQ(run(with("--overwrite")).exit_code, 0);
    EXPECT_EQ(statuses(), "in/letter: converted\n");
}

// Without it there is nothing to lose: the file is what would be written.
TEST_F(BatchOutput, TakesOverItsOwnWithoutAManifest)
{
    run(arguments);
    const std::string before = manifest();
    fs::remove(directory / "out/manifest.ndjson");
    EXPECT_EQ(run(arguments).exit_code, 0);
    EXPECT_EQ(manifest(), before);
}

// The manifest of the run in between does not know the output any more.
TEST_F(BatchOutput, KnowsItsOwnAfterARunThatFailed)
{
    run(arguments);
    write("in/letter", "no document");
    EXPECT_NE(run(arguments).errors.find("1 output of earlier runs is still there"),
              std::string::npos);
    write_letter("in/letter", "Howdy");
    EXPECT_EQ(run(arguments).exit_code, 0);
    EXPECT_NE(content_of(directory / output).find("Howdy"), std::string::npos);
    EXPECT_EQ(names(), "in/letter.txt\nmanifest.ndjson\n");
}

TEST_F(BatchOutput, KeepsOutputsOfFilesThatAreGone)
{
    write_letter("in/other", "Hello");
    run(arguments);
    fs::remove(directory / "in/letter");
    for (int runs = 0; runs < 2; ++runs) {
        const Outcome outcome = run(arguments);
        EXPECT_EQ(outcome.exit_code, 0);
        EXPECT_NE(outcome.errors.find("1 output of earlier runs is still there"),
                  std::string::npos);
        EXPECT_TRUE(fs::exists(directory / output));
    }
    fs::remove(directory / output);
    EXPECT_EQ(run(arguments).errors.find("earlier runs"), std::string::npos);
    EXPECT_EQ(names(), "in/other.txt\nmanifest.ndjson\n");
}

TEST_F(BatchOutput, KeepsTheModeOfWhatItReplaces)
{
    run(arguments);
    fs::permissions(directory / output, fs::perms::owner_read | fs::perms::owner_write);
    write_letter("in/letter", "Howdy");
    EXPECT_EQ(run(arguments).exit_code, 0);
    EXPECT_NE(content_of(directory / output).find("Howdy"), std::string::npos);
    EXPECT_EQ(fs::status(directory / output).permissions(),
              fs::perms::owner_read | fs::perms::owner_write);
}

TEST_F(BatchOutput, ReplacesNoFileByItsManifest)
{
    write_letter("letters/thesis", "Hello");
    const std::string thesis = content_of(directory / "letters/thesis");
    std::vector<std::string> there = arguments;
    there.insert(there.end(), {"--manifest", "letters/thesis"});
    expect_failure(run(there), 7, "pfsdoc: letters/thesis is not a manifest");
    EXPECT_EQ(content_of(directory / "letters/thesis"), thesis);
    EXPECT_EQ(names("letters"), "thesis\n");
}

// --------------------------------------------------------------------------- names -----

TEST_F(BatchOutput, HasANameThatIsNotTheMarkers)
{
    write_letter("folder/.pfsdoc-run/letter", "Hello");
    EXPECT_EQ(run({"batch", "folder/.pfsdoc-run", "-o", "out", "-t", "text"}).exit_code, 0);
    EXPECT_NE(names().find("letter.txt"), std::string::npos);
    EXPECT_EQ(run({"batch", "--verify", "out"}).exit_code, 0);
}

// --------------------------------------------------------------------------- links -----

TEST_F(BatchOutput, IsNotWrittenThroughALink)
{
    fs::create_directories(directory / "theirs");
    fs::create_directories(directory / "out");
    fs::create_symlink("../theirs", directory / "out/in");
    EXPECT_EQ(run(arguments).exit_code, 1);
    EXPECT_EQ(statuses(), "in/letter: name, out/in/letter.txt cannot be written: a folder in it is "
                          "a symbolic link\n");
    EXPECT_TRUE(fs::is_empty(directory / "theirs"));
}

TEST_F(BatchOutput, HasNoManifestThroughALink)
{
    write("theirs", "");
    fs::create_directories(directory / "out");
    for (const char *name :
         {"manifest.ndjson", "manifest.ndjson.partial", "manifest.ndjson.earlier"}) {
        fs::create_symlink("../theirs", directory / "out" / name);
        expect_failure(run(arguments), 7,
                       std::string("pfsdoc: out/") + name + " is a symbolic link");
        fs::remove(directory / "out" / name);
    }
    EXPECT_EQ(content_of(directory / "theirs"), "");
}

// ---------------------------------------------------------------------------- runs -----

TEST_F(BatchOutput, BelongsToOneRunAtATime)
{
    fs::create_directories(directory / "out");
    const int other = ::open((directory / "out").c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    ASSERT_EQ(::flock(other, LOCK_EX), 0);
    std::vector<std::string> elsewhere = arguments;
    elsewhere.insert(elsewhere.end(), {"--manifest", "m"});
    expect_failure(run(elsewhere), 7, "pfsdoc: another run is writing to out; wait until");
    ::close(other);
    EXPECT_EQ(run(elsewhere).exit_code, 0);
}

// The files that it was for may be gone by then.
TEST_F(BatchOutput, HoldsNothingOfARunThatWasKilled)
{
    write_letters(3000);
    const pid_t child = start({"batch", "in", "-o", "out", "-t", "text", "-j", "2"});
    wait_for_lines(50);
    ::kill(child, SIGKILL);
    int status = 0;
    ::waitpid(child, &status, 0);
    ASSERT_TRUE(WIFSIGNALED(status)) << "was done too early to be killed";
    ASSERT_NE(names().find(".pfsdoc-"), std::string::npos) << "no temporary file to be removed";
    fs::remove_all(directory / "in");
    write_letter("in/letter", "Hello");
    EXPECT_EQ(run(arguments).exit_code, 0);
    EXPECT_EQ(names().find(".pfsdoc-"), std::string::npos) << names();
}

TEST_F(BatchOutput, ReadsNoManifestForever)
{
    fs::create_directories(directory / "out");
    ASSERT_EQ(::mkfifo((directory / "out/manifest.ndjson").c_str(), 0600), 0);
    expect_failure(run(arguments), 7, "pfsdoc: out/manifest.ndjson is not a regular file");
}

} // namespace

} // namespace tests

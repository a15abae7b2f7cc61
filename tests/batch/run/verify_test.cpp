// pfsdoc batch --verify: what it finds, and that it finds nothing where nothing is wrong.
#include "tests/batch/run/batch_bench.h"

#include <sys/file.h>
#include <sys/stat.h>

namespace tests {

namespace {

class Verify : public Batch {
protected:
    void SetUp() override
    {
        Batch::SetUp();
        write_letter("in/a", "Hello");
        write_letter("in/b", "Hello");
        write("in/other", "no document");
        run(arguments);
    }
    Outcome verified() const
    {
        return run({"batch", "--verify", "out"});
    }
    const std::vector<std::string> arguments = {"batch", "in", "-o", "out", "-t", "text"};
};

TEST_F(Verify, FindsNothingWhereNothingIsWrong)
{
    const Outcome outcome = verified();
    EXPECT_EQ(outcome.exit_code, 0);
    EXPECT_EQ(outcome.output, "");
    EXPECT_EQ(outcome.errors, "pfsdoc: 2 outputs verified, 0 differences\n");
    EXPECT_EQ(run({"batch", "--verify", "out", "-q"}).errors, "");
}

TEST_F(Verify, FindsEachDifference)
{
    write_letter("in/c", "Hello");
    write_letter("in/d", "Hello");
    run(arguments);
    fs::remove(directory / "out/in/a.txt");
    const std::string text = content_of(directory / "out/in/b.txt");
    write("out/in/b.txt", std::string(text.size(), 'x'));
    write("out/in/c.txt", "short");
    fs::remove(directory / "out/in/d.txt");
    fs::create_symlink("c.txt", directory / "out/in/d.txt");
    write("out/in/more.txt", "");
    const Outcome outcome = verified();
    EXPECT_EQ(outcome.exit_code, 1);
    EXPECT_EQ(outcome.output, "in/a.txt: is missing\n"
                              "in/b.txt: has changed: its SHA-256 is another one\n"
                              "in/c.txt: has changed: its size is 5, and was " +
                                  std::to_string(text.size()) +
                                  "\n"
                                  "in/d.txt: cannot be read: Too many levels of symbolic links\n"
                                  "in/more.txt: is not in the manifest\n");
    EXPECT_EQ(outcome.errors, "pfsdoc: 0 outputs verified, 5 differences\n");
}

// They are accounted for: as the batch's own, and as somebody else's that it left alone.
TEST_F(Verify, KnowsOutputsOfEarlierRunsAndFilesThatWereKept)
{
    fs::remove(directory / "in/a");
    write("out/in/b.txt", "an hour's work");
    run(arguments);
    const Outcome outcome = verified();
    EXPECT_EQ(outcome.exit_code, 0);
    EXPECT_EQ(outcome.output, "in/a.txt: is an output of an earlier run, not of the last\n");
}

TEST_F(Verify, NeedsAWholeManifest)
{
    fs::rename(directory / "out/manifest.ndjson", directory / "m");
    expect_failure(verified(), 3, "pfsdoc: out/manifest.ndjson does not exist; name the manifest");
    EXPECT_EQ(run({"batch", "--verify", "out", "--manifest", "m"}).exit_code, 0);
    const std::string whole = content_of(directory / "m");
    write("out/manifest.ndjson", whole.substr(0, whole.size() - 1));
    EXPECT_EQ(verified().output, "out/manifest.ndjson: line 3 is not one of a manifest\n");
    write("out/manifest.ndjson.partial", "");
    EXPECT_EQ(verified().exit_code, 1);
    fs::remove(directory / "out/manifest.ndjson");
    expect_failure(verified(), 3, "pfsdoc: out/manifest.ndjson is not finished; run");
    ASSERT_EQ(::mkfifo((directory / "out/manifest.ndjson").c_str(), 0600), 0);
    expect_failure(verified(), 3, "pfsdoc: out/manifest.ndjson is not a regular file");
    expect_failure(run({"batch", "--verify", "none"}), 3, "pfsdoc: none cannot be opened");
}

TEST_F(Verify, BelievesNoEditedManifest)
{
    const std::string line = lines_of(manifest()).front();
    const auto with = [&line](const std::string &name) {
        std::string edited = line;
        return edited.replace(edited.find("in/a.txt"), 8, name) + "\n";
    };
    write("m", with("../in/a") + with("") + with("in/a.txt") + with("in/a.txt") + "[[\n" +
                   std::string(1 << 20, 'x') + "\n");
    const Outcome outcome = run({"batch", "--verify", "out", "--manifest", "m"});
    EXPECT_EQ(outcome.exit_code, 1);
    EXPECT_EQ(outcome.output.substr(0, outcome.output.find("manifest.ndjson: is not")),
              "m: line 1 is not one of a manifest\n"
              "m: line 2 is not one of a manifest\n"
              "in/a.txt: two lines of the manifest have this output\n"
              "m: line 5 is not one of a manifest\n"
              "m: line 6 is not one of a manifest\n");
}

TEST_F(Verify, WaitsForNoRun)
{
    const int other = ::open((directory / "out").c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    ASSERT_EQ(::flock(other, LOCK_EX), 0);
    expect_failure(verified(), 3, "pfsdoc: out is being written to by a run; wait");
    ::close(other);
}

TEST_F(Verify, TakesNothingToConvert)
{
    for (const std::vector<std::string> &more :
         {std::vector<std::string>{"in"}, {"-o", "out"}, {"-t", "text"}}) {
        std::vector<std::string> wrong = {"batch", "--verify", "out"};
        wrong.insert(wrong.end(), more.begin(), more.end());
        expect_failure(run(wrong), 2, "pfsdoc: --verify reads no documents");
    }
}

} // namespace

} // namespace tests

// Outputs beside originals: the originals are safe, and outputs are not read.
#include "tests/batch/run/batch_bench.h"

namespace tests {

namespace {

class Beside : public Batch {
protected:
    void SetUp() override
    {
        Batch::SetUp();
        write_letter("disk/LETTER", "Hello");
        write_letter("disk/LETTER.txt", "another letter");
        original = content_of(directory / "disk/LETTER.txt");
    }
    void expect_original() const
    {
        EXPECT_TRUE(content_of(directory / "disk/LETTER.txt") == original);
    }
    std::string original;
    static constexpr const char *both =
        "disk/LETTER: kept, ./disk/LETTER.txt was not made by this batch, or was changed since; "
        "it was kept\n"
        "disk/LETTER.txt: converted\n";
};

TEST_F(Beside, OriginalsAreKept)
{
    for (int runs = 0; runs < 2; ++runs) {
        EXPECT_EQ(run({"batch", "disk", "-o", ".", "-t", "text"}).exit_code, 1);
        EXPECT_EQ(statuses("manifest.ndjson"), both);
        expect_original();
    }
}

TEST_F(Beside, OriginalsAreKeptEvenWhereFilesAreOverwritten)
{
    write("list", "disk/LETTER\ndisk/LETTER.txt\n");
    fs::create_symlink("disk", directory / "link");
    const std::vector<std::vector<std::string>> inputs = {{"disk"},
                                                          {"disk/LETTER", "disk/LETTER.txt"},
                                                          {"link/"},
                                                          {"--files-from", "list"},
                                                          {"disk/LETTER", "link/LETTER.txt"}};
    for (const auto &input : inputs) {
        for (const std::string folder : {".", "disk"}) {
            std::vector<std::string> arguments = {"batch", "-o",   folder,
                                                  "-t",    "text", "--overwrite"};
            arguments.insert(arguments.end(), input.begin(), input.end());
            run(arguments);
            expect_original();
        }
    }
}

TEST_F(Beside, ListsFromPipesAreNotOverwrittenFrom)
{
    ASSERT_EQ(::mkfifo((directory / "pipe").c_str(), 0600), 0);
    expect_failure(
        run({"batch", "--files-from", "pipe", "-o", "disk", "-t", "text", "--overwrite"}), 2,
        "pfsdoc: --overwrite needs a list that can be read twice");
}

// By its own name as well as by another one of the same file.
TEST_F(Beside, AHardLinkToAnOriginalIsKept)
{
    write_letter("in/LETTER", "Hello");
    fs::create_directories(directory / "out/in");
    fs::create_hard_link(directory / "disk/LETTER.txt", directory / "out/in/LETTER.txt");
    EXPECT_EQ(run({"batch", "in", "disk", "-o", "out", "-t", "text", "--overwrite"}).exit_code, 1);
    EXPECT_EQ(fs::hard_link_count(directory / "disk/LETTER.txt"), 2U);
    expect_original();
}

TEST_F(Beside, OutputsAreNotRead)
{
    fs::remove(directory / "disk/LETTER.txt");
    write("disk/notes", "no document");
    const std::vector<std::string> arguments = {"batch", "disk", "-o", ".", "-t", "text"};
    EXPECT_EQ(run(arguments).exit_code, 0);
    const std::string first = manifest("manifest.ndjson");
    EXPECT_EQ(lines_of(first).size(), 2U);
    EXPECT_TRUE(fs::exists(directory / "disk/LETTER.txt"));
    EXPECT_EQ(run(arguments).exit_code, 0);
    EXPECT_EQ(manifest("manifest.ndjson"), first);
    // As a shell names them.
    EXPECT_EQ(run({"batch", "disk", "manifest.ndjson", "-o", ".", "-t", "text"}).exit_code, 0);
    EXPECT_EQ(manifest("manifest.ndjson"), first);
}

TEST_F(Beside, OutputsOfTheSameRunAreNotRead)
{
    fs::remove(directory / "disk/LETTER.txt");
    write_letter("disk/sub/OTHER", "Hello");
    run({"batch", "disk", "disk/sub", "-o", ".", "-t", "text", "-j", "1"});
    EXPECT_EQ(statuses("manifest.ndjson"), "disk/LETTER: converted\n"
                                           "disk/sub/OTHER: converted\n"
                                           "sub/OTHER: converted\n");
}

TEST_F(Beside, AnOutputFolderAboveTheInputIsNotReadAgain)
{
    write_letter("x/sub/letter", "Hello");
    for (int runs = 0; runs < 2; ++runs) {
        EXPECT_EQ(run({"batch", "x/sub", "-o", "x", "-t", "text"}).exit_code, 0);
        EXPECT_EQ(statuses("x/manifest.ndjson"), "sub/letter: converted\n");
    }
    write("x/sub/letter.txt", "an hour's work");
    run({"batch", "x/sub", "-o", "x", "-t", "text"});
    EXPECT_EQ(content_of(directory / "x/sub/letter.txt"), "an hour's work");
}

} // namespace

} // namespace tests

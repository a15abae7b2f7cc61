// pfsbuild as a program: its output, its messages, its exit code.
#include "tests/builder/descriptions.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sys/wait.h>

using namespace builder_tests;

namespace {

const char *const description = "kind: 1017\n---\n@include text\n";
const char *const faulty_description = "kind: 1017\n---\n\n{bold}\n";

class BuilderProgram : public testing::Test {
protected:
    void SetUp() override
    {
        std::string pattern = (std::filesystem::temp_directory_path() / "pfsbuild-XXXXXX").string();
        ASSERT_NE(mkdtemp(pattern.data()), nullptr);
        directory = pattern;
        write("letter", description);
        write("text", "Hello\n");
        write("faulty", faulty_description);
    }

    void TearDown() override
    {
        std::filesystem::remove_all(directory);
    }

    void write(const std::string &name, const std::string &text) const
    {
        std::ofstream(directory / name, std::ios::binary) << text;
    }

    std::string read(const std::string &name) const
    {
        return read_file((directory / name).string());
    }

    // Runs pfsbuild in the directory and returns its exit code. `output` and `errors` get the rest.
    int run(const std::string &arguments)
    {
        const std::string command = "cd '" + directory.string() + "' && '" + PFSBUILD_PROGRAM +
                                    "' >output 2>errors " + arguments;
        const int status = std::system(command.c_str());
        output = read("output");
        errors = read("errors");
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

    std::size_t files() const
    {
        const std::filesystem::directory_iterator begin(directory);
        return static_cast<std::size_t>(
            std::distance(begin, std::filesystem::directory_iterator()));
    }

    std::filesystem::path directory;
    std::string output;
    std::string errors;
};

} // namespace

TEST_F(BuilderProgram, WritesADocument)
{
    EXPECT_EQ(run("letter letter.doc"), 0);
    EXPECT_EQ(errors, "");
    EXPECT_TRUE(holds(read("letter.doc").substr(512), "'Hello' 0C 0E"));
    EXPECT_EQ(files(),
              6U); // the three files, the document, output and errors: no temporary file
}

TEST_F(BuilderProgram, ReadsAndWritesStandardStreams)
{
    EXPECT_EQ(run("- - <letter"), 0);
    EXPECT_TRUE(holds(output.substr(512), "'Hello' 0C 0E"));
}

TEST_F(BuilderProgram, WritesIntoADeviceWithoutReplacingIt)
{
    EXPECT_EQ(run("letter /dev/null"), 0);
    EXPECT_TRUE(std::filesystem::is_character_file("/dev/null"));
}

TEST_F(BuilderProgram, WritesThroughASymbolicLink)
{
    write("old.doc", "old");
    std::filesystem::create_symlink("old.doc", directory / "link.doc");
    EXPECT_EQ(run("letter link.doc"), 0);
    EXPECT_TRUE(std::filesystem::is_symlink(directory / "link.doc"));
    EXPECT_EQ(read("old.doc").size(), 512U + 7);
}

TEST_F(BuilderProgram, PrintsItsUsageAndVersion)
{
    EXPECT_EQ(run("--help"), 0);
    EXPECT_NE(output.find("DESCRIPTION"), std::string::npos);
    EXPECT_EQ(run("--version"), 0);
    EXPECT_EQ(output.substr(0, 9), "pfsbuild ");
}

TEST_F(BuilderProgram, RefusesWrongUse)
{
    for (const char *const arguments : {"", "letter", "letter a b", "--loud letter a"}) {
        EXPECT_EQ(run(arguments), 2) << arguments;
        EXPECT_EQ(errors.substr(0, 10), "pfsbuild: ");
        EXPECT_NE(errors.find("; see pfsbuild --help\n"), std::string::npos) << errors;
    }
}

TEST_F(BuilderProgram, ReportsWhatItCannotRead)
{
    EXPECT_EQ(run("absent letter.doc"), 3);
    EXPECT_EQ(errors, "pfsbuild: absent: it cannot be read; look at its name and rights\n");
    EXPECT_EQ(run(". letter.doc"), 3);
}

TEST_F(BuilderProgram, ReportsTheLineOfAFault)
{
    write("letter.doc", "old");
    EXPECT_EQ(run("faulty letter.doc"), 4);
    EXPECT_EQ(errors, "pfsbuild: faulty:4: {bold} is no mark; docs/descriptions.md has the list; "
                      "write {{ for a brace\n");
    EXPECT_EQ(read("letter.doc"), "old");
    EXPECT_EQ(run("- letter.doc <faulty"), 4);
    EXPECT_EQ(errors.substr(0, 27), "pfsbuild: standard input:4:");
}

TEST_F(BuilderProgram, ReportsWhatItCannotWrite)
{
    EXPECT_EQ(run("letter absent/letter.doc"), 7);
    EXPECT_EQ(errors,
              "pfsbuild: absent/letter.doc: it cannot be written; look at its directory and "
              "the room left there\n");
    EXPECT_EQ(run("letter ."), 7);
    EXPECT_EQ(run("letter /dev/full"), 7);
    EXPECT_EQ(run("letter - >/dev/full"), 7);
}

TEST_F(BuilderProgram, ReportsThatMemoryRanOut)
{
    if (!MEMORY_CAN_BE_LIMITED) {
        GTEST_SKIP() << "what the program runs under needs more memory than the test allows";
    }
    write("long", "kind: 1017\n---\n" + std::string(3'000'000, 'x') + "\n");
    const std::string command = "cd '" + directory.string() + "' && ulimit -v 100000 && '" +
                                PFSBUILD_PROGRAM + "' long letter.doc 2>errors";
    const int status = std::system(command.c_str());
    EXPECT_EQ(WEXITSTATUS(status), 70);
    EXPECT_EQ(read("errors"),
              "pfsbuild: it failed, most likely for want of memory; give it more\n");
}

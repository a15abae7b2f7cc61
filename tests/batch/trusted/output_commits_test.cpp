// Outputs get their names when they are on the disk, many at a time, and their lines only then.
#include "batch/trusted/output_commits.h"

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using pfsdoc::ErrorKind;
using pfsdoc::batch::FileStatus;
using pfsdoc::batch::ManifestLines;
using pfsdoc::batch::OutputCommits;

class Commits : public testing::Test {
protected:
    void SetUp() override
    {
        std::string name = (fs::temp_directory_path() / "pfsdoc-XXXXXX").string();
        ASSERT_NE(::mkdtemp(name.data()), nullptr);
        directory = name;
        auto opened = pfsdoc::batch::OutputFolder::open(directory);
        ASSERT_TRUE(opened.ok());
        folder.emplace(std::move(opened.value()));
        commits.emplace(
            *folder, recorded,
            OutputCommits::Listener{[this](std::string_view some) { announced += some; },
                                    [this](const std::string &output) { placed += output; }});
    }
    void TearDown() override
    {
        commits.reset();
        folder.reset();
        fs::remove_all(directory);
    }

    void add(const std::string &name)
    {
        auto output = folder->create(name);
        ASSERT_TRUE(output.ok());
        output.value().close();
        commits->add({&lines.add(),
                      {name, name, 0, name},
                      converted(),
                      name + "\n",
                      std::move(output.value()),
                      {}});
    }
    static pfsdoc::batch::Outcome converted()
    {
        pfsdoc::batch::Outcome outcome;
        outcome.status = FileStatus::converted;
        return outcome;
    }
    bool is_there(const std::string &name) const
    {
        return fs::is_regular_file(directory / name);
    }
    std::string taken()
    {
        return lines.take(tally).lines;
    }

    fs::path directory;
    pfsdoc::batch::RecordedRequest recorded{"text", "txt", "", ""};
    std::optional<pfsdoc::batch::OutputFolder> folder;
    std::optional<OutputCommits> commits;
    ManifestLines lines;
    pfsdoc::batch::Tally tally;
    std::string announced;
    std::string placed;
};

TEST_F(Commits, HaveNoLineBeforeTheOutputHasItsName)
{
    add("a");
    EXPECT_TRUE(commits->begin(false).ok());
    EXPECT_LT(commits->descriptor(), 0) << "there may be more in a moment";
    EXPECT_EQ(taken(), "");
    EXPECT_TRUE(commits->begin(true).ok());
    EXPECT_GE(commits->descriptor(), 0);
    EXPECT_FALSE(is_there("a"));
    add("b");
    EXPECT_TRUE(commits->begin(true).ok());
    EXPECT_TRUE(commits->finish().ok());
    EXPECT_TRUE(is_there("a"));
    EXPECT_FALSE(is_there("b")) << "it came when the others were being synced";
    EXPECT_EQ(taken(), "a\n");
    EXPECT_FALSE(commits->is_empty());
    EXPECT_TRUE(commits->finish_all().ok());
    EXPECT_EQ(taken(), "b\n");
    EXPECT_TRUE(commits->is_empty());
}

TEST_F(Commits, SyncManyTogether)
{
    for (std::size_t i = 1; i < OutputCommits::synced_at_once; ++i) {
        add(std::to_string(i));
    }
    EXPECT_TRUE(commits->begin(false).ok());
    EXPECT_LT(commits->descriptor(), 0);
    add("last");
    EXPECT_TRUE(commits->begin(false).ok());
    EXPECT_GE(commits->descriptor(), 0);
    EXPECT_TRUE(commits->finish().ok());
    EXPECT_TRUE(is_there("1") && is_there("last"));
    EXPECT_TRUE(commits->is_empty());
}

TEST_F(Commits, SyncFewInTime)
{
    add("a");
    std::this_thread::sleep_for(1100ms);
    EXPECT_TRUE(commits->begin(false).ok());
    EXPECT_GE(commits->descriptor(), 0);
}

TEST_F(Commits, KeepNothingThatIsNotSynced)
{
    add("a");
    commits.reset();
    folder.reset();
    EXPECT_TRUE(fs::is_empty(directory));
}

// A run that is killed in between must know the file for its own when it goes on.
TEST_F(Commits, AreAnnouncedBeforeTheyHaveTheirNames)
{
    add("a");
    EXPECT_TRUE(commits->begin(false).ok());
    EXPECT_EQ(announced, "");
    EXPECT_TRUE(commits->begin(true).ok());
    EXPECT_EQ(announced, "a\n");
    EXPECT_FALSE(is_there("a"));
    EXPECT_EQ(placed, "");
    EXPECT_TRUE(commits->finish_all().ok());
    EXPECT_EQ(placed, "a");
}

TEST_F(Commits, RecordAFileThatIsKept)
{
    add("a");
    std::ofstream(directory / "a") << "of somebody else";
    EXPECT_TRUE(commits->finish_all().ok());
    const std::string line = taken();
    EXPECT_NE(line.find("\"status\":\"kept\""), std::string::npos) << line;
    EXPECT_NE(line.find("\"output\":null"), std::string::npos) << line;
    EXPECT_EQ(fs::file_size(directory / "a"), std::string_view("of somebody else").size());
}

TEST_F(Commits, RecordANameThatCannotBe)
{
    add("a");
    add("b");
    fs::create_directories(directory / "a" / "full");
    EXPECT_TRUE(commits->finish_all().ok());
    EXPECT_NE(taken().find("\"status\":\"name\""), std::string::npos);
    EXPECT_TRUE(is_there("b"));
    EXPECT_EQ(tally.words(), "2 files: 1 converted, 1 failed (1 name)");
}

TEST_F(Commits, EndTheRunWhereNothingCanBeWritten)
{
    add("folder/a");
    fs::remove_all(directory / "folder");
    const pfsdoc::Status fault = commits->finish_all();
    ASSERT_FALSE(fault.ok());
    EXPECT_EQ(fault.error().kind, ErrorKind::output);
    EXPECT_EQ(taken(), "");
}

TEST_F(Commits, ReportThatTheirProcessHasEnded)
{
    add("a");
    EXPECT_TRUE(commits->finish_all().ok());
    const std::string self = std::to_string(::getpid());
    pid_t process = 0;
    std::ifstream("/proc/" + self + "/task/" + self + "/children") >> process;
    ASSERT_GT(process, 1) << "this kernel does not tell a process's children";
    ASSERT_EQ(::kill(process, SIGKILL), 0);
    add("b");
    const pfsdoc::Status fault = commits->finish_all();
    ASSERT_FALSE(fault.ok());
    EXPECT_EQ(fault.error().kind, ErrorKind::internal);
    EXPECT_EQ(fault.error().what, "the process that syncs outputs was ended by SIGKILL");
    EXPECT_FALSE(is_there("b"));
}

} // namespace

// Output that appears whole or not at all.
#include "lib/base/file_output.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <sys/stat.h>
#include <unistd.h>

namespace {

using namespace pfsdoc;
namespace fs = std::filesystem;

class FileOutputTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        std::string name = (fs::temp_directory_path() / "pfsdoc-XXXXXX").string();
        ASSERT_NE(::mkdtemp(name.data()), nullptr);
        directory = name;
        target = (directory / "out").string();
    }
    void TearDown() override
    {
        fs::remove_all(directory);
    }

    std::string content() const
    {
        std::ifstream file(target, std::ios::binary);
        std::ostringstream text;
        text << file.rdbuf();
        return text.str();
    }
    std::ptrdiff_t files() const
    {
        return std::distance(fs::directory_iterator(directory), fs::directory_iterator());
    }
    static std::unique_ptr<base::FileOutput> open(const std::string &path,
                                                  const base::FileOutputOptions &options = {})
    {
        Result<std::unique_ptr<base::FileOutput>> output = base::FileOutput::create(path, options);
        EXPECT_TRUE(output.ok()) << output.error().what;
        return std::move(output.value());
    }
    // Of the file, open for reading and to append; closed at the end of the test.
    int descriptor_of(const std::string &path)
    {
        opened = base::Descriptor(::open(path.c_str(), O_RDWR | O_APPEND | O_CLOEXEC));
        return opened.get();
    }
    static mode_t mode_of(const std::string &path)
    {
        struct stat status {};
        EXPECT_EQ(::stat(path.c_str(), &status), 0);
        return status.st_mode & 0777;
    }

    fs::path directory;
    std::string target;
    base::Descriptor opened;
};

void expect_output_error(const Status &status, const std::string &what)
{
    ASSERT_FALSE(status.ok());
    EXPECT_EQ(exit_code(status.error().kind), 7);
    EXPECT_NE(status.error().what.find(what), std::string::npos) << status.error().what;
    EXPECT_FALSE(status.error().remedy.empty());
}

TEST_F(FileOutputTest, AppearsWhenItIsCommitted)
{
    const auto output = open(target);
    output->write("one");
    output->write("two");
    output->flush();
    EXPECT_FALSE(fs::exists(target));
    EXPECT_TRUE(output->commit().ok());
    EXPECT_EQ(content(), "onetwo");
    EXPECT_EQ(files(), 1);
}

TEST_F(FileOutputTest, LeavesNothingUnlessCommitted)
{
    open(target)->write("lost");
    EXPECT_EQ(files(), 0);
}

TEST_F(FileOutputTest, LeavesWhatWasThereUntilCommitted)
{
    std::ofstream(target) << "before";
    open(target)->write("lost");
    EXPECT_EQ(content(), "before");
    const auto output = open(target);
    output->write("after");
    EXPECT_TRUE(output->commit().ok());
    EXPECT_EQ(content(), "after");
    EXPECT_EQ(files(), 1);
}

TEST_F(FileOutputTest, WritesMoreThanItsBufferHolds)
{
    const auto output = open(target);
    std::string expected;
    for (int line = 0; line < 20000; ++line) {
        const std::string text = "line " + std::to_string(line) + "\n";
        output->write(text);
        expected += text;
    }
    EXPECT_TRUE(output->commit().ok());
    EXPECT_TRUE(content() == expected);
}

TEST_F(FileOutputTest, KeepsThePermissionsOfWhatItReplaces)
{
    std::ofstream(target) << "before";
    ASSERT_EQ(::chmod(target.c_str(), 0640), 0);
    EXPECT_TRUE(open(target)->commit().ok());
    EXPECT_EQ(mode_of(target), 0640U);
}

TEST_F(FileOutputTest, GivesANewFileWhatTheMaskAllows)
{
    const mode_t before = ::umask(027);
    EXPECT_TRUE(open(target)->commit().ok());
    ::umask(before);
    EXPECT_EQ(mode_of(target), 0640U);
}

// Whoever may not read the file that is replaced must not read the new one while it is written.
TEST_F(FileOutputTest, IsPrivateUntilCommitted)
{
    const mode_t before = ::umask(0);
    const auto output = open(target);
    ::umask(before);
    EXPECT_EQ(mode_of(output->temporary_path()), 0600U);
    EXPECT_TRUE(output->commit().ok());
    EXPECT_EQ(mode_of(target), 0666U);
}

TEST_F(FileOutputTest, KeepsWhatExistsWhenAsked)
{
    std::ofstream(target) << "before";
    const auto refused = base::FileOutput::create(target, {.keep_existing = true});
    ASSERT_FALSE(refused.ok());
    expect_output_error(refused.error(), "exists already");
    EXPECT_EQ(content(), "before");
    EXPECT_EQ(files(), 1);
}

// Between the opening and the commit somebody else may have written a file of that name.
TEST_F(FileOutputTest, KeepsWhatAppearedMeanwhileWhenAsked)
{
    const auto output = open(target, {.keep_existing = true});
    output->write("late");
    std::ofstream(target) << "early";
    expect_output_error(output->commit(), "exists already");
    EXPECT_EQ(content(), "early");
    const auto other = open((directory / "other").string(), {.keep_existing = true});
    EXPECT_TRUE(other->commit().ok());
    EXPECT_TRUE(fs::exists(directory / "other"));
}

TEST_F(FileOutputTest, AsksItsGuardAboutWhatExists)
{
    std::ofstream(target) << "before";
    std::string seen;
    const auto guard = [&seen](const base::ExistingFile &file) -> Status {
        std::array<char, 16> bytes{};
        seen.assign(bytes.data(),
                    static_cast<std::size_t>(::read(file.descriptor, bytes.data(), bytes.size())));
        EXPECT_TRUE(S_ISREG(file.status.st_mode));
        return Error{ErrorKind::output, "is dear", "take another"};
    };
    for (const std::string &path :
         {target, std::string("/dev/fd/") + std::to_string(descriptor_of(target))}) {
        seen.clear();
        const auto output = base::FileOutput::create(path, {.guard = guard});
        ASSERT_FALSE(output.ok());
        expect_output_error(output.error(), "the output " + path + " is dear");
        EXPECT_EQ(seen, "before");
    }
    EXPECT_TRUE(base::FileOutput::create(target + ".new", {.guard = guard}).ok());
    EXPECT_EQ(content(), "before");
}

// Somebody may have put a file there since the output was opened.
TEST_F(FileOutputTest, AsksItsGuardAgainAtTheCommit)
{
    bool is_dear = false;
    const auto guard = [&is_dear](const base::ExistingFile &) -> Status {
        return is_dear ? Status(Error{ErrorKind::output, "is dear", "take another"}) : Status();
    };
    const auto late = open(target, {.guard = guard});
    late->write("late");
    std::ofstream(target) << "early";
    is_dear = true;
    expect_output_error(late->commit(), "the output " + target + " is dear");
    EXPECT_TRUE(late->failed());
    EXPECT_EQ(content(), "early");
    is_dear = false;
    const auto other = open(target, {.guard = guard});
    other->write("after");
    EXPECT_TRUE(other->commit().ok());
    EXPECT_EQ(content(), "after");
}

// It was opened to append, and so it is written.
TEST_F(FileOutputTest, WritesToNamedDescriptorsAsTheyWereOpened)
{
    std::ofstream(target) << "before";
    const auto output = open("/dev/fd/" + std::to_string(descriptor_of(target)));
    output->write(", after");
    EXPECT_TRUE(output->commit().ok());
    EXPECT_EQ(content(), "before, after");
    EXPECT_FALSE(base::FileOutput::create("/dev/fd/9999").ok());
}

TEST_F(FileOutputTest, RefusesALinkThatLeadsNowhere)
{
    fs::create_symlink("none", target);
    const auto output = base::FileOutput::create(target);
    ASSERT_FALSE(output.ok());
    expect_output_error(output.error(), "is a symbolic link that leads nowhere");
    EXPECT_TRUE(fs::is_symlink(target));
    EXPECT_EQ(files(), 1);
}

TEST_F(FileOutputTest, GoesThroughASymbolicLink)
{
    std::ofstream(directory / "real") << "before";
    fs::create_symlink("real", target);
    const auto output = open(target);
    output->write("after");
    EXPECT_TRUE(output->commit().ok());
    EXPECT_TRUE(fs::is_symlink(target));
    EXPECT_EQ(content(), "after");
}

TEST_F(FileOutputTest, FitsWhereOnlyTheLongestNameDoes)
{
    target = (directory / std::string(255, 'n')).string();
    EXPECT_TRUE(open(target)->commit().ok());
    EXPECT_TRUE(fs::exists(target));
}

TEST_F(FileOutputTest, WritesToDevicesDirectly)
{
    const auto output = open("/dev/null");
    output->write("gone");
    EXPECT_TRUE(output->commit().ok());
    EXPECT_TRUE(fs::is_character_file("/dev/null"));
}

TEST_F(FileOutputTest, ReportsAFullDisk)
{
    const auto output = open("/dev/full");
    output->write("no room");
    expect_output_error(output->commit(), "/dev/full cannot be written: No space left");
}

TEST_F(FileOutputTest, ReportsAMissingDirectory)
{
    const auto output = base::FileOutput::create((directory / "none" / "out").string());
    ASSERT_FALSE(output.ok());
    expect_output_error(output.error(), "No such file or directory");
}

TEST_F(FileOutputTest, DoesNotReplaceADirectory)
{
    const auto output = base::FileOutput::create(directory.string());
    ASSERT_FALSE(output.ok());
    expect_output_error(output.error(), "Is a directory");
}

} // namespace

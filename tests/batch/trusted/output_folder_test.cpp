// Outputs have a temporary name until they are given their own, and leave nothing without it.
#include "batch/trusted/output_folder.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <optional>
#include <string>
#include <unistd.h>
#include <vector>

namespace tests {

namespace {

namespace fs = std::filesystem;
using pfsdoc::ErrorKind;
using pfsdoc::batch::PendingOutput;

class Folder : public testing::Test {
protected:
    void SetUp() override
    {
        std::string name = (fs::temp_directory_path() / "pfsdoc-XXXXXX").string();
        ASSERT_NE(::mkdtemp(name.data()), nullptr);
        directory = name;
        auto opened = pfsdoc::batch::OutputFolder::open(directory);
        ASSERT_TRUE(opened.ok());
        folder.emplace(std::move(opened.value()));
    }
    void TearDown() override
    {
        fs::remove_all(directory);
    }

    PendingOutput created(const std::string &name, const std::string &content) const
    {
        auto output = folder->create(name);
        EXPECT_TRUE(output.ok());
        EXPECT_EQ(::write(output.value().descriptor(), content.data(), content.size()),
                  static_cast<ssize_t>(content.size()));
        return std::move(output.value());
    }

    // "a=1 b/c=2 ", sorted by name; temporary names are "?".
    std::string files() const
    {
        std::map<std::string, std::string> found;
        for (const auto &entry : fs::recursive_directory_iterator(directory)) {
            if (entry.is_regular_file()) {
                std::ifstream content(entry.path());
                const std::string name = fs::relative(entry.path(), directory);
                found[name.find(".pfsdoc-") == std::string::npos ? name : "?"] =
                    std::string(std::istreambuf_iterator<char>(content), {});
            }
        }
        std::string words;
        for (const auto &[name, content] : found) {
            words += name + "=" + content + " ";
        }
        return words;
    }

    fs::path directory;
    std::optional<pfsdoc::batch::OutputFolder> folder;
};

TEST_F(Folder, GivesOutputsTheirNames)
{
    PendingOutput first = created("a", "1");
    EXPECT_EQ(files(), "?=1 ") << "has its name before it is on the disk";
    PendingOutput second = created("b/c", "2");
    EXPECT_FALSE(folder->sync());
    EXPECT_TRUE(first.commit().ok());
    EXPECT_TRUE(second.commit().ok());
    EXPECT_EQ(files(), "a=1 b/c=2 ");
}

TEST_F(Folder, GivesThemWhenTheyAreClosed)
{
    PendingOutput output = created("a", "1");
    EXPECT_GE(output.descriptor(), 0);
    output.close();
    EXPECT_LT(output.descriptor(), 0);
    EXPECT_TRUE(output.commit().ok());
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
    const pfsdoc::Status fault = output.commit();
    ASSERT_FALSE(fault.ok());
    EXPECT_EQ(fault.error().kind, ErrorKind::usage);
    for (const std::string &name : {std::string("folder/") + std::string(300, 'x') + "/b",
                                    std::string(200, 'x') + "/" + std::string(300, 'y') + "/c"}) {
        const auto refused = folder->create(name);
        ASSERT_FALSE(refused.ok());
        EXPECT_EQ(refused.error().kind, ErrorKind::usage) << refused.error().what;
    }
}

TEST_F(Folder, TellsWhenNothingCanBeWritten)
{
    PendingOutput output = created("gone/b", "1");
    fs::remove_all(directory / "gone");
    const pfsdoc::Status fault = output.commit();
    ASSERT_FALSE(fault.ok());
    EXPECT_EQ(fault.error().kind, ErrorKind::output);
    const auto none = pfsdoc::batch::OutputFolder::open("/proc/none");
    ASSERT_FALSE(none.ok());
    EXPECT_EQ(none.error().kind, ErrorKind::output);
}

// What a run that was killed has left is not in the way.
TEST_F(Folder, ReplacesWhatIsThere)
{
    for (const std::string content : {"1", "2"}) {
        PendingOutput output = created("a", content);
        EXPECT_TRUE(output.commit().ok());
        EXPECT_EQ(files(), "a=" + content + " ");
    }
    const PendingOutput left = created("b", "killed");
    PendingOutput output = created("b", "3");
    EXPECT_TRUE(output.commit().ok());
    EXPECT_EQ(files(), "a=2 b=3 ");
}

TEST_F(Folder, FindsAnEarlierOutputBySize)
{
    PendingOutput output = created("a", "123");
    EXPECT_TRUE(output.commit().ok());
    EXPECT_GE(folder->open_existing("a", 3).get(), 0);
    EXPECT_LT(folder->open_existing("a", 4).get(), 0);
    EXPECT_LT(folder->open_existing("b", 3).get(), 0);
    fs::create_directory(directory / "folder");
    EXPECT_LT(folder->open_existing("folder", fs::file_size(directory / "a")).get(), 0);
}

} // namespace

} // namespace tests

// Whole outputs get their names, and what keeps one from its name keeps no other from its own.
#include "placement.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <optional>
#include <string>
#include <unistd.h>

namespace tests {

namespace {

namespace fs = std::filesystem;
using pfsdoc::ErrorKind;
using pfsdoc::FileStatus;
using pfsdoc::PlacedOutput;

class Placement : public testing::Test {
protected:
    void SetUp() override
    {
        std::string name = (fs::temp_directory_path() / "pfsdoc-XXXXXX").string();
        ASSERT_NE(::mkdtemp(name.data()), nullptr);
        directory = name;
        auto opened = pfsdoc::OutputFolder::open(directory);
        ASSERT_TRUE(opened.ok());
        folder.emplace(std::move(opened.value()));
    }
    void TearDown() override
    {
        fs::remove_all(directory);
    }

    // Its content is its number.
    void gather(pfsdoc::Placement &placement, uint64_t file, const std::string &name,
                FileStatus status = FileStatus::converted) const
    {
        auto output = folder->create(name);
        ASSERT_TRUE(output.ok());
        const std::string content = std::to_string(file);
        ASSERT_EQ(::write(output.value().descriptor(), content.data(), content.size()),
                  static_cast<ssize_t>(content.size()));
        placement.gather({file, status, std::move(output.value())});
    }

    // "a=1 b/c=2 ", sorted by name.
    std::string files() const
    {
        std::map<std::string, std::string> found;
        for (const auto &entry : fs::recursive_directory_iterator(directory)) {
            if (entry.is_regular_file()) {
                std::ifstream content(entry.path());
                found[fs::relative(entry.path(), directory)] =
                    std::string(std::istreambuf_iterator<char>(content), {});
            }
        }
        std::string words;
        for (const auto &[name, content] : found) {
            words += name + "=" + content + " ";
        }
        return words;
    }

    // "1: converted, 2: converted, fault: ...".
    static std::string words_of(const std::vector<PlacedOutput> &placed)
    {
        std::string words;
        for (const PlacedOutput &output : placed) {
            words += words.empty() ? "" : ", ";
            words += std::to_string(output.file) + ": " +
                     std::string(pfsdoc::status_name(output.status));
            if (output.fault) {
                words += output.fault->kind == ErrorKind::usage ? " but not of that name"
                                                                : " and the run ends";
            }
        }
        return words;
    }

    fs::path directory;
    std::optional<pfsdoc::OutputFolder> folder;
};

TEST_F(Placement, GivesOutputsTheirNames)
{
    pfsdoc::Placement placement(*folder);
    EXPECT_FALSE(placement.is_under_way());
    gather(placement, 1, "a");
    gather(placement, 2, "b/c", FileStatus::damaged);
    EXPECT_EQ(placement.gathered(), 2U);
    EXPECT_EQ(files().find(" a="), std::string::npos) << "has its name before it is on the disk";
    placement.begin();
    EXPECT_TRUE(placement.is_under_way());
    EXPECT_EQ(placement.gathered(), 0U);
    EXPECT_EQ(words_of(placement.finish()), "1: converted, 2: damaged");
    EXPECT_FALSE(placement.is_under_way());
    EXPECT_EQ(files(), "a=1 b/c=2 ");
}

TEST_F(Placement, GathersWhileItPlaces)
{
    pfsdoc::Placement placement(*folder);
    uint64_t file = 0;
    std::string expected;
    for (const char *name : {"a", "b", "c", "d"}) {
        gather(placement, ++file, name);
        placement.begin();
        gather(placement, ++file, std::string(name) + "2");
        EXPECT_EQ(placement.gathered(), 1U);
        placement.pause();
        EXPECT_TRUE(placement.is_over());
        EXPECT_TRUE(placement.is_under_way()) << "what became of them has not been said";
        EXPECT_EQ(placement.finish().size(), file == 2 ? 1U : 2U);
    }
    placement.begin();
    EXPECT_EQ(words_of(placement.finish()), "8: converted");
    EXPECT_EQ(files(), "a=1 a2=2 b=3 b2=4 c=5 c2=6 d=7 d2=8 ");
}

TEST_F(Placement, TellsOfANameThatCannotBe)
{
    pfsdoc::Placement placement(*folder);
    gather(placement, 1, "a");
    gather(placement, 2, "folder");
    gather(placement, 3, "z");
    fs::create_directories(directory / "folder" / "full");
    placement.begin();
    EXPECT_EQ(words_of(placement.finish()),
              "1: converted, 2: converted but not of that name, 3: converted");
    EXPECT_EQ(files(), "a=1 z=3 ");
}

TEST_F(Placement, EndsWhereNothingCanBeWritten)
{
    pfsdoc::Placement placement(*folder);
    gather(placement, 1, "a");
    gather(placement, 2, "gone/b");
    gather(placement, 3, "z");
    fs::remove_all(directory / "gone");
    placement.begin();
    EXPECT_EQ(words_of(placement.finish()), "1: converted, 2: converted and the run ends");
    EXPECT_EQ(files(), "a=1 ") << "what was not placed is gone";
}

TEST_F(Placement, LeavesNothingUnfinished)
{
    {
        pfsdoc::Placement placement(*folder);
        gather(placement, 1, "a");
        placement.begin();
        gather(placement, 2, "b");
    }
    EXPECT_EQ(files(), "a=1 ");
}

TEST_F(Placement, KeepsNoDescriptors)
{
    const auto count = [] {
        return std::distance(fs::directory_iterator("/proc/self/fd"), fs::directory_iterator());
    };
    pfsdoc::Placement placement(*folder);
    const auto before = count();
    for (uint64_t file = 0; file < 20; ++file) {
        gather(placement, file, std::to_string(file));
    }
    EXPECT_EQ(count(), before);
}

TEST_F(Placement, IsOverWithNothingToDo)
{
    pfsdoc::Placement placement(*folder);
    placement.pause();
    placement.begin();
    EXPECT_TRUE(placement.finish().empty());
}

// What a run that was killed has left is not in the way.
TEST_F(Placement, ReplacesWhatIsThere)
{
    for (uint64_t file = 1; file < 3; ++file) {
        pfsdoc::Placement placement(*folder);
        gather(placement, file, "a");
        placement.begin();
        EXPECT_EQ(words_of(placement.finish()), std::to_string(file) + ": converted");
        EXPECT_EQ(files(), "a=" + std::to_string(file) + " ");
    }
    const auto left = folder->create("b");
    ASSERT_TRUE(left.ok());
    pfsdoc::Placement placement(*folder);
    gather(placement, 3, "b");
    placement.begin();
    EXPECT_EQ(words_of(placement.finish()), "3: converted");
    EXPECT_EQ(files(), "a=2 b=3 ");
}

} // namespace

} // namespace tests

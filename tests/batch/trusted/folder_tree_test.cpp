// Folders below one are made and opened, and links to others are not followed.
#include "batch/trusted/folder_tree.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>

namespace {

namespace fs = std::filesystem;
using pfsdoc::batch::FolderTree;
using Missing = FolderTree::Missing;

class Tree : public testing::Test {
protected:
    void SetUp() override
    {
        std::string name = (fs::temp_directory_path() / "pfsdoc-XXXXXX").string();
        ASSERT_NE(::mkdtemp(name.data()), nullptr);
        directory = name;
    }
    void TearDown() override
    {
        fs::remove_all(directory);
    }
    FolderTree tree() const
    {
        return FolderTree(
            pfsdoc::base::Descriptor(::open(directory.c_str(), O_RDONLY | O_DIRECTORY)));
    }
    bool leads_to(int folder, const std::string &name) const
    {
        struct stat opened {};
        struct stat named {};
        return ::fstat(folder, &opened) == 0 && ::stat((directory / name).c_str(), &named) == 0 &&
               opened.st_ino == named.st_ino;
    }

    fs::path directory;
};

TEST_F(Tree, OpensAndMakesFolders)
{
    FolderTree folders = tree();
    EXPECT_TRUE(leads_to(folders.open("", Missing::refused), "."));
    EXPECT_LT(folders.open("a/b", Missing::refused), 0);
    EXPECT_EQ(errno, ENOENT);
    EXPECT_TRUE(leads_to(folders.open("a/b", Missing::made), "a/b"));
    EXPECT_TRUE(leads_to(folders.open("a/b", Missing::refused), "a/b"));
    EXPECT_TRUE(leads_to(folders.open("a", Missing::refused), "a"));
    EXPECT_EQ(folders.volumes().size(), 1U);
}

TEST_F(Tree, LooksAgainForAFolderThatWasForgotten)
{
    FolderTree folders = tree();
    EXPECT_GE(folders.open("a", Missing::made), 0);
    fs::remove(directory / "a");
    folders.forget();
    EXPECT_LT(folders.open("a", Missing::refused), 0);
}

TEST_F(Tree, FollowsNoLink)
{
    fs::create_directories(directory / "there/below");
    fs::create_directory(directory / "a");
    fs::create_symlink("../there", directory / "a/link");
    FolderTree folders = tree();
    for (const char *name : {"a/link", "a/link/below"}) {
        EXPECT_LT(folders.open(name, Missing::made), 0);
        EXPECT_EQ(errno, ELOOP);
    }
    EXPECT_LT(folders.open("a/link/new", Missing::made), 0);
    EXPECT_FALSE(fs::exists(directory / "there/new"));
}

TEST_F(Tree, HasNoFolderWhereAFileIs)
{
    const pfsdoc::base::Descriptor file(
        ::open((directory / "file").c_str(), O_CREAT | O_WRONLY, 0600));
    FolderTree folders = tree();
    EXPECT_LT(folders.open("file/a", Missing::made), 0);
    EXPECT_EQ(errno, ENOTDIR);
}

} // namespace

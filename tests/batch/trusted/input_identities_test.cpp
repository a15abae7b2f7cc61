// Files that are read are known by whatever name.
#include "batch/trusted/input_identities.h"

#include "tests/batch/trusted/batch_folder.h"

#include <sys/stat.h>

namespace tests {

namespace {

using pfsdoc::batch::InputIdentities;

class Identities : public BatchFolder {
protected:
    static bool is_read(const pfsdoc::batch::InputOptions &options, const std::string &path)
    {
        const auto identity = pfsdoc::batch::identity_of(path);
        return identity && InputIdentities(options).has(*identity);
    }
};

TEST_F(Identities, AreThoseOfPathsFoldersAndLists)
{
    for (const char *name : {"a", "in/b", "in/deep/c", "d", "in/out/output", "other"}) {
        write(name, name);
    }
    write("list", "d\nnone\n");
    fs::create_hard_link("in/deep/c", "hard");
    fs::create_symlink("in/b", "link");
    pfsdoc::batch::InputOptions options;
    options.paths = {"a", "in", "none"};
    options.list_files = {"list"};
    options.exclude = "in/out";
    for (const char *name : {"a", "in/b", "in/deep/c", "d", "list", "hard", "link"}) {
        EXPECT_TRUE(is_read(options, name)) << name;
    }
    for (const char *name : {"other", "in/out/output"}) {
        EXPECT_FALSE(is_read(options, name)) << name;
    }
}

TEST_F(Identities, AreNotReadFromPipes)
{
    write("list", "");
    ASSERT_EQ(::mkfifo("pipe", 0600), 0);
    EXPECT_TRUE(pfsdoc::batch::can_be_read_twice("list"));
    EXPECT_FALSE(pfsdoc::batch::can_be_read_twice("pipe"));
}

} // namespace

} // namespace tests

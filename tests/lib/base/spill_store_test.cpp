// A writer's held-back output, in memory and in files.
#include "lib/base/spill_store.h"

#include "lib/base/descriptor.h"
#include "lib/base/scratch_file.h"
#include "lib/base/transfers.h"
#include "pfsdoc/reading_stopped.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <string>
#include <string_view>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

using pfsdoc::ErrorKind;
using pfsdoc::StringOutput;
using pfsdoc::base::Descriptor;
using pfsdoc::base::open_scratch_file;
using pfsdoc::base::SpillStore;
namespace fs = std::filesystem;

constexpr std::size_t fits = SpillStore::most_in_memory;

// In a separate folder, which is the one for temporary files.
class SpillStoreTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        std::string name = (fs::temp_directory_path() / "spill-XXXXXX").string();
        ASSERT_NE(::mkdtemp(name.data()), nullptr);
        directory = name;
        ::setenv("TMPDIR", directory.c_str(), 1);
    }
    void TearDown() override
    {
        ::unsetenv("TMPDIR");
        fs::remove_all(directory);
    }

    fs::path directory;
};

std::string content_of(const SpillStore &store)
{
    StringOutput output;
    store.copy_to(output);
    return output.text;
}

off_t size_of(int descriptor)
{
    struct stat status {};
    EXPECT_EQ(::fstat(descriptor, &status), 0);
    return status.st_size;
}

// The error with which a call stops reading, empty if it does not.
template <typename Call> std::string error_of(Call call)
{
    try {
        call();
    } catch (const pfsdoc::ReadingStopped &stopped) {
        return stopped.error().what;
    }
    return {};
}

std::string words_for(int error_number)
{
    return pfsdoc::base::scratch_error(error_number).what;
}

TEST_F(SpillStoreTest, HoldsWhatFitsInMemory)
{
    SpillStore store;
    EXPECT_EQ(content_of(store), "");
    store.write("Dear ");
    store.write("Sir");
    EXPECT_EQ(content_of(store), "Dear Sir");
    store.write(std::string(fits - 8, 'x'));
    EXPECT_EQ(store.size(), fits);
    EXPECT_TRUE(store.is_in_memory());
}

TEST_F(SpillStoreTest, HoldsTheRestInAFileWithoutAName)
{
    std::string expected;
    SpillStore store;
    for (int line = 0; expected.size() <= 3 * fits; ++line) {
        const std::string text = "line " + std::to_string(line) + "\n";
        store.write(text);
        expected.append(text);
    }
    EXPECT_FALSE(store.is_in_memory());
    EXPECT_EQ(store.size(), expected.size());
    EXPECT_TRUE(content_of(store) == expected); // too long to be shown
    EXPECT_TRUE(fs::is_empty(directory));
}

// ------------------------------------------------------------------------- given files -----

TEST_F(SpillStoreTest, UsesTheFileItIsGiven)
{
    const int file = open_scratch_file();
    ASSERT_GE(file, 0);
    ::setenv("TMPDIR", "/nowhere", 1); // so there can be no other
    for (const char letter : {'a', 'b', 'c'}) {
        const std::string content(fits + static_cast<std::size_t>(letter), letter);
        {
            SpillStore store(file);
            store.write(content.substr(0, 1));
            EXPECT_EQ(size_of(file), 0) << "written to before there is need";
            store.write(content.substr(1));
            EXPECT_EQ(size_of(file), static_cast<off_t>(content.size()));
            EXPECT_TRUE(content_of(store) == content);
        }
        EXPECT_EQ(size_of(file), 0) << "not left empty";
    }
    EXPECT_EQ(::close(file), 0) << "was not the store's to close";
}

TEST_F(SpillStoreTest, TakesNoNoticeOfWhatAFileHolds)
{
    const int file = open_scratch_file();
    const std::string left(3 * fits, 'x');
    ASSERT_EQ(::pwrite(file, left.data(), left.size(), 0), static_cast<ssize_t>(left.size()));
    {
        const std::string content(2 * fits, 'y');
        SpillStore store(file);
        store.write(content);
        EXPECT_TRUE(content_of(store) == content);
    }
    EXPECT_EQ(size_of(file), 0);
    ::close(file);
}

// -------------------------------------------------------------------------------- taken -----

std::string read_from_here(const Descriptor &file)
{
    std::string content(4 * fits, '\0');
    const auto length = pfsdoc::base::read_full(file.get(), content.data(), content.size());
    content.resize(length.value_or(0));
    return content;
}

TEST_F(SpillStoreTest, IsTakenAsAFilePositionedAtItsStart)
{
    for (const std::size_t size : {std::size_t{0}, std::size_t{100}, fits, fits + 1, 3 * fits}) {
        SCOPED_TRACE(size);
        const std::string content(size, 'x');
        Descriptor file;
        {
            SpillStore store;
            store.write(content);
            file = store.take();
        }
        ASSERT_TRUE(file.is_open());
        EXPECT_TRUE(read_from_here(file) == content);
        EXPECT_EQ(size_of(file.get()), static_cast<off_t>(size));
        EXPECT_TRUE(fs::is_empty(directory));
    }
}

TEST_F(SpillStoreTest, FailsWithItsUsersError)
{
    ::setenv("TMPDIR", (directory / "missing").c_str(), 1);
    SpillStore store([](int error_number) {
        return pfsdoc::Error{ErrorKind::input, "not unpacked: " + std::to_string(error_number), ""};
    });
    try {
        store.write(std::string(fits + 1, 'x'));
        FAIL() << "written nowhere";
    } catch (const pfsdoc::ReadingStopped &stopped) {
        EXPECT_EQ(stopped.error().kind, ErrorKind::input);
        EXPECT_EQ(stopped.error().what, "not unpacked: " + std::to_string(ENOENT));
    }
}

// ------------------------------------------------------------------------------ faults -----

TEST_F(SpillStoreTest, FailsWithoutAFolder)
{
    ::setenv("TMPDIR", (directory / "missing").c_str(), 1);
    SpillStore store;
    EXPECT_EQ(error_of([&] { store.write(std::string(fits, 'x')); }), "");
    EXPECT_EQ(error_of([&] { store.write("x"); }), words_for(ENOENT));
}

TEST_F(SpillStoreTest, UsesTheUsualFolderUnlessOneIsNamed)
{
    for (const char *named : {static_cast<const char *>(nullptr), ""}) {
        if (named == nullptr) {
            ::unsetenv("TMPDIR");
        } else {
            ::setenv("TMPDIR", named, 1);
        }
        const int file = open_scratch_file();
        EXPECT_GE(file, 0);
        ::close(file);
    }
}

// The signal is one that the commands ignore too.
TEST_F(SpillStoreTest, FailsWhereFilesMustBeSmaller)
{
    const auto before = std::signal(SIGXFSZ, SIG_IGN);
    rlimit limit{};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &limit), 0);
    rlimit smaller = limit;
    smaller.rlim_cur = 2 * fits;
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &smaller), 0);
    SpillStore store;
    const std::string text(fits + 1, 'x');
    EXPECT_EQ(error_of([&] { store.write(text); }), "");
    EXPECT_EQ(error_of([&] { store.write(text); }), words_for(EFBIG));
    ::setrlimit(RLIMIT_FSIZE, &limit);
    static_cast<void>(std::signal(SIGXFSZ, before));
}

TEST_F(SpillStoreTest, FailsOnAFullDisk)
{
    const int full = ::open("/dev/full", O_RDWR | O_CLOEXEC);
    ASSERT_GE(full, 0);
    {
        SpillStore store(full);
        EXPECT_EQ(error_of([&] { store.write(std::string(fits + 1, 'x')); }), words_for(ENOSPC));
    }
    ::close(full);
}

TEST_F(SpillStoreTest, FailsWhereTheFileWasCut)
{
    const int file = open_scratch_file();
    SpillStore store(file);
    store.write(std::string(2 * fits, 'x'));
    ASSERT_EQ(::ftruncate(file, 100), 0);
    EXPECT_EQ(error_of([&] { content_of(store); }), words_for(EIO));
}

TEST(ScratchError, NamesARemedy)
{
    const pfsdoc::Error full = pfsdoc::base::scratch_error(ENOSPC);
    EXPECT_EQ(full.kind, ErrorKind::output);
    EXPECT_EQ(full.what, "a temporary file cannot be written: No space left on device");
    EXPECT_EQ(full.remedy, "name a folder with room for it in the environment variable TMPDIR");
    const pfsdoc::Error too_large = pfsdoc::base::scratch_error(EFBIG);
    EXPECT_EQ(too_large.kind, ErrorKind::limit);
    EXPECT_EQ(too_large.what, "needs a temporary file larger than the limit");
    EXPECT_EQ(too_large.remedy,
              "allow larger files: with --max-output of pfsdoc batch, or ulimit -f");
}

} // namespace

// What a writer puts aside, in memory and in files.
#include "lib/writers/odf/scratch.h"

#include "lib/base/scratch_file.h"

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
using pfsdoc::base::open_scratch_file;
using pfsdoc::writers::Scratch;
using pfsdoc::writers::ScratchFailure;
namespace fs = std::filesystem;

constexpr std::size_t fits = Scratch::most_in_memory;

// In a folder of its own, which is the one for temporary files.
class ScratchTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        std::string name = (fs::temp_directory_path() / "scratch-XXXXXX").string();
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

std::string content_of(const Scratch &scratch)
{
    StringOutput output;
    scratch.copy_to(output);
    return output.text;
}

off_t size_of(int descriptor)
{
    struct stat status {};
    EXPECT_EQ(::fstat(descriptor, &status), 0);
    return status.st_size;
}

// What a call fails with, 0 where it does not.
template <typename Call> int error_number_of(Call call)
{
    try {
        call();
    } catch (const ScratchFailure &failure) {
        return failure.error_number;
    }
    return 0;
}

TEST_F(ScratchTest, HoldsWhatFitsInMemory)
{
    Scratch scratch;
    EXPECT_EQ(content_of(scratch), "");
    scratch.append("Dear ");
    scratch.append("Sir");
    EXPECT_EQ(content_of(scratch), "Dear Sir");
    scratch.append(std::string(fits - 8, 'x'));
    EXPECT_EQ(scratch.size(), fits);
    EXPECT_TRUE(scratch.is_in_memory());
}

TEST_F(ScratchTest, HoldsTheRestInAFileWithoutAName)
{
    std::string expected;
    Scratch scratch;
    for (int line = 0; expected.size() <= 3 * fits; ++line) {
        const std::string text = "line " + std::to_string(line) + "\n";
        scratch.append(text);
        expected.append(text);
    }
    EXPECT_FALSE(scratch.is_in_memory());
    EXPECT_EQ(scratch.size(), expected.size());
    EXPECT_TRUE(content_of(scratch) == expected); // too long to be shown
    EXPECT_TRUE(fs::is_empty(directory));
}

// As an archive's first bytes are, when its size is known: before and after it is in a file,
// over its end, and where nothing has been written yet.
TEST_F(ScratchTest, IsWrittenAtAnyOffset)
{
    for (const std::size_t size : {std::size_t{100}, fits, fits + 1, 2 * fits}) {
        SCOPED_TRACE(size);
        std::string expected(size, 'x');
        Scratch scratch;
        scratch.append(expected);
        const auto write = [&](std::size_t offset, std::string_view bytes) {
            scratch.write_at(offset, bytes);
            expected.resize(std::max(expected.size(), offset + bytes.size()));
            expected.replace(offset, bytes.size(), bytes);
        };
        write(0, "first");
        write(50, "middle");
        write(size - 2, "across");
        write(size + 10, "beyond");
        EXPECT_EQ(scratch.size(), size + 16);
        EXPECT_EQ(scratch.is_in_memory(), size + 16 <= fits);
        EXPECT_TRUE(content_of(scratch) == expected);
    }
}

// ------------------------------------------------------------------------- given files -----

TEST_F(ScratchTest, UsesTheFileItIsGiven)
{
    const int file = open_scratch_file();
    ASSERT_GE(file, 0);
    ::setenv("TMPDIR", "/nowhere", 1); // so there can be no other
    for (const char letter : {'a', 'b', 'c'}) {
        const std::string content(fits + static_cast<std::size_t>(letter), letter);
        {
            Scratch scratch(file);
            scratch.append("x");
            EXPECT_EQ(size_of(file), 0) << "written to before there is need";
            scratch.write_at(0, content);
            EXPECT_EQ(size_of(file), static_cast<off_t>(content.size()));
            EXPECT_TRUE(content_of(scratch) == content);
        }
        EXPECT_EQ(size_of(file), 0) << "not left empty";
    }
    EXPECT_EQ(::close(file), 0) << "was not the scratch's to close";
}

TEST_F(ScratchTest, TakesNoNoticeOfWhatAFileHolds)
{
    const int file = open_scratch_file();
    const std::string left(3 * fits, 'x');
    ASSERT_EQ(::pwrite(file, left.data(), left.size(), 0), static_cast<ssize_t>(left.size()));
    {
        const std::string content(2 * fits, 'y');
        Scratch scratch(file);
        scratch.append(content);
        EXPECT_TRUE(content_of(scratch) == content);
    }
    EXPECT_EQ(size_of(file), 0);
    ::close(file);
}

// ------------------------------------------------------------------------------ faults -----

TEST_F(ScratchTest, FailsWithoutAFolder)
{
    ::setenv("TMPDIR", (directory / "missing").c_str(), 1);
    Scratch scratch;
    EXPECT_EQ(error_number_of([&] { scratch.append(std::string(fits, 'x')); }), 0);
    EXPECT_EQ(error_number_of([&] { scratch.append("x"); }), ENOENT);
}

TEST_F(ScratchTest, UsesTheUsualFolderUnlessOneIsNamed)
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
TEST_F(ScratchTest, FailsWhereFilesMustBeSmaller)
{
    const auto before = std::signal(SIGXFSZ, SIG_IGN);
    rlimit limit{};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &limit), 0);
    rlimit smaller = limit;
    smaller.rlim_cur = 2 * fits;
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &smaller), 0);
    Scratch scratch;
    const std::string text(fits + 1, 'x');
    EXPECT_EQ(error_number_of([&] { scratch.append(text); }), 0);
    EXPECT_EQ(error_number_of([&] { scratch.append(text); }), EFBIG);
    ::setrlimit(RLIMIT_FSIZE, &limit);
    static_cast<void>(std::signal(SIGXFSZ, before));
}

TEST_F(ScratchTest, FailsOnAFullDisk)
{
    const int full = ::open("/dev/full", O_RDWR | O_CLOEXEC);
    ASSERT_GE(full, 0);
    {
        Scratch scratch(full);
        EXPECT_EQ(error_number_of([&] { scratch.append(std::string(fits + 1, 'x')); }), ENOSPC);
    }
    ::close(full);
}

TEST_F(ScratchTest, FailsWhereTheFileWasCut)
{
    const int file = open_scratch_file();
    Scratch scratch(file);
    scratch.append(std::string(2 * fits, 'x'));
    ASSERT_EQ(::ftruncate(file, 100), 0);
    EXPECT_EQ(error_number_of([&] { content_of(scratch); }), EIO);
}

TEST(ScratchError, SaysWhatCanBeDone)
{
    const pfsdoc::Error full = pfsdoc::base::scratch_error(ENOSPC);
    EXPECT_EQ(full.kind, ErrorKind::output);
    EXPECT_EQ(full.what, "a temporary file cannot be written: No space left on device");
    EXPECT_EQ(full.remedy, "name a folder with room for it in the environment variable TMPDIR");
    const pfsdoc::Error too_large = pfsdoc::base::scratch_error(EFBIG);
    EXPECT_EQ(too_large.kind, ErrorKind::limit);
    EXPECT_EQ(too_large.what, "needs a temporary file that is larger than is allowed");
    EXPECT_EQ(too_large.remedy,
              "allow larger files: with --max-output of pfsdoc batch, or ulimit -f");
}

} // namespace

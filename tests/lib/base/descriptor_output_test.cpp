// Buffered output: what reaches the descriptor, and what is reported if not all of it does.
#include "lib/base/descriptor_output.h"

#include "lib/base/descriptor.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <string>
#include <unistd.h>

namespace {

using namespace pfsdoc;
using namespace pfsdoc::base;

Descriptor nameless_file()
{
    std::string path = (std::filesystem::temp_directory_path() / "output-XXXXXX").string();
    Descriptor file(::mkostemp(path.data(), O_CLOEXEC));
    EXPECT_TRUE(file.is_open());
    ::unlink(path.c_str());
    return file;
}

std::string content_of(const Descriptor &file)
{
    std::string content(static_cast<std::size_t>(::lseek(file.get(), 0, SEEK_END)), '\0');
    EXPECT_EQ(::pread(file.get(), content.data(), content.size(), 0),
              static_cast<ssize_t>(content.size()));
    return content;
}

Descriptor full_device()
{
    return Descriptor(::open("/dev/full", O_WRONLY | O_CLOEXEC));
}

TEST(DescriptorOutput, WritesWhenItIsFlushed)
{
    const Descriptor file = nameless_file();
    DescriptorOutput output(file.get());
    output.write("one ");
    output.write("two");
    EXPECT_EQ(content_of(file), "");
    EXPECT_EQ(output.size(), 7U);
    output.flush();
    EXPECT_EQ(content_of(file), "one two");
    EXPECT_FALSE(output.failed());
    EXPECT_TRUE(output.failure().ok());
}

TEST(DescriptorOutput, WritesInOrderWhatItsBufferDoesNotHold)
{
    const Descriptor file = nameless_file();
    DescriptorOutput output(file.get());
    std::string expected;
    for (int line = 0; line < 20000; ++line) {
        const std::string text = "line " + std::to_string(line) + "\n";
        output.write(text);
        expected += text;
    }
    EXPECT_GT(content_of(file).size(), expected.size() / 2); // without being flushed
    output.flush();
    EXPECT_TRUE(content_of(file) == expected);
    EXPECT_EQ(output.size(), expected.size());
}

TEST(DescriptorOutput, KeepsTheOrderOfPiecesTooLargeToBuffer)
{
    const Descriptor file = nameless_file();
    std::string seen;
    DescriptorOutput output(file.get(), UINT64_MAX, [&](std::string_view bytes) { seen += bytes; });
    std::string expected;
    for (const std::size_t size : {10U, 100000U, 5U, 40000U, 40000U, 7U}) {
        const std::string text(size, static_cast<char>('a' + expected.size() % 26));
        output.write(text);
        expected += text;
    }
    output.flush();
    EXPECT_TRUE(content_of(file) == expected);
    EXPECT_TRUE(seen == expected);
}

TEST(DescriptorOutput, ShowsTheObserverWhatItWrites)
{
    const Descriptor file = nameless_file();
    std::string seen;
    DescriptorOutput output(file.get(), 150000, [&](std::string_view bytes) { seen += bytes; });
    for (int count = 0; count < 200; ++count) {
        output.write(std::string(1000, static_cast<char>('a' + count % 26)));
    }
    output.flush();
    EXPECT_EQ(seen.size(), 150000U);
    EXPECT_TRUE(seen == content_of(file));
}

// -------------------------------------------------------------------------------- limit -----

TEST(DescriptorOutput, StopsAtItsLimit)
{
    const Descriptor file = nameless_file();
    DescriptorOutput output(file.get(), 10);
    output.write("12345");
    output.write("67890");
    EXPECT_FALSE(output.failed());
    output.write("x");
    EXPECT_TRUE(output.failed());
    output.write("y");
    output.flush();
    EXPECT_EQ(content_of(file), "1234567890");
    EXPECT_EQ(output.size(), 10U);
    EXPECT_EQ(output.error_number(), 0);
    const Status failure = output.failure("LETTER.txt");
    ASSERT_FALSE(failure.ok());
    EXPECT_EQ(failure.error().kind, ErrorKind::limit);
    EXPECT_EQ(failure.error().what, "would give more output than the 10 bytes allowed");
    EXPECT_EQ(failure.error().remedy, "allow more with --max-output");
}

TEST(DescriptorOutput, WritesThePartThatFits)
{
    const Descriptor file = nameless_file();
    DescriptorOutput output(file.get(), 10);
    output.write("123456789012");
    output.flush();
    EXPECT_TRUE(output.failed());
    EXPECT_EQ(content_of(file), "1234567890");
}

// A limit that exceeds size_t on a 32-bit machine.
TEST(DescriptorOutput, TakesALimitOf4GiB)
{
    const Descriptor file = nameless_file();
    DescriptorOutput output(file.get(), uint64_t{1} << 32);
    output.write("12345");
    output.flush();
    EXPECT_FALSE(output.failed());
    EXPECT_EQ(content_of(file), "12345");
}

// ------------------------------------------------------------------------------- faults -----

TEST(DescriptorOutput, KeepsTheFirstError)
{
    const Descriptor full = full_device();
    DescriptorOutput output(full.get());
    output.write("no room");
    EXPECT_FALSE(output.failed());
    output.flush();
    EXPECT_TRUE(output.failed());
    EXPECT_EQ(output.error_number(), ENOSPC);
    output.write("more");
    output.flush();
    EXPECT_EQ(output.error_number(), ENOSPC);
    EXPECT_EQ(output.size(), 7U);
    EXPECT_EQ(output.failure().error().kind, ErrorKind::output);
    EXPECT_EQ(output.failure().error().what,
              "the output cannot be written: No space left on device");
    EXPECT_EQ(output.failure().error().remedy, "make room, or write elsewhere with -o");
    EXPECT_EQ(output.failure("LETTER.txt").error().what,
              "the output LETTER.txt cannot be written: No space left on device");
}

TEST(DescriptorOutput, FailsWithoutBeingFlushedWhereItsBufferIsFull)
{
    const Descriptor full = full_device();
    DescriptorOutput output(full.get());
    for (int count = 0; count < 100; ++count) {
        output.write(std::string(1000, 'x'));
    }
    EXPECT_EQ(output.error_number(), ENOSPC);
    EXPECT_LT(output.size(), 100000U);
}

TEST(OutputError, NamesARemedy)
{
    EXPECT_EQ(output_error(EROFS, "a").what, "the output a cannot be written: "
                                             "Read-only file system");
    EXPECT_EQ(output_error(EROFS, "a").remedy, "write elsewhere with -o");
    EXPECT_EQ(output_error(EPIPE).remedy, "let the program that reads the output read all of it");
    EXPECT_EQ(output_error(ENOTDIR).remedy, "make its directory first");
    EXPECT_EQ(output_error(EIO).remedy, "check where the output goes");
}

} // namespace

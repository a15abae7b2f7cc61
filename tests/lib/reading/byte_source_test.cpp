// Byte sources over memory, files and pipes, and the block file that the module reads.
#include "lib/reading/block_file.h"

#include <gtest/gtest.h>

#include <array>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <thread>
#include <unistd.h>

namespace {

using namespace pfsdoc;
using OpenedSource = Result<std::unique_ptr<ByteSource>>;

std::string some_bytes(std::size_t size)
{
    std::string bytes;
    for (std::size_t index = 0; index < size; ++index) {
        bytes.push_back(static_cast<char>(index * 7 + index / 256));
    }
    return bytes;
}

// All of a source as the module reads it, through a character stream.
std::string read_through_stream(ByteSource &source)
{
    reading::BlockFile file(source);
    VwCharStream *stream = VwBlockToChar(file.get());
    std::string bytes;
    for (int32_t byte = VwCharGet(stream); byte >= 0; byte = VwCharGet(stream)) {
        bytes.push_back(static_cast<char>(byte));
    }
    EXPECT_EQ(VwCharToBlock(stream), file.get());
    return bytes;
}

class Files : public ::testing::Test {
protected:
    void SetUp() override
    {
        std::string name = (std::filesystem::temp_directory_path() / "pfsdoc-XXXXXX").string();
        ASSERT_NE(::mkdtemp(name.data()), nullptr);
        directory = name;
    }
    void TearDown() override
    {
        std::filesystem::remove_all(directory);
    }
    std::string write(const std::string &bytes) const
    {
        const std::string path = (directory / "file").string();
        std::ofstream(path, std::ios::binary) << bytes;
        return path;
    }
    // A sparse file of zeros.
    std::string write_sparse(uint64_t size) const
    {
        const std::string path = write("");
        std::filesystem::resize_file(path, size);
        return path;
    }
    std::filesystem::path directory;
};

// The read end of a pipe that delivers these bytes, a few at a time.
class Pipe {
public:
    explicit Pipe(std::string bytes)
    {
        std::signal(SIGPIPE, SIG_IGN); // a reader that is refused more goes away
        std::array<int, 2> ends{};
        EXPECT_EQ(::pipe(ends.data()), 0);
        read_end = ends[0];
        writer_ = std::thread([bytes = std::move(bytes), end = ends[1]] {
            for (std::size_t at = 0; at < bytes.size(); at += 1000) {
                const std::string_view part = std::string_view(bytes).substr(at, 1000);
                if (::write(end, part.data(), part.size()) < 0) {
                    break;
                }
            }
            ::close(end);
        });
    }
    ~Pipe()
    {
        writer_.join();
    }
    int read_end;

private:
    std::thread writer_;
};

void expect_error(const OpenedSource &source, const std::string &what, int code = 3)
{
    ASSERT_FALSE(source.ok());
    EXPECT_EQ(exit_code(source.error().kind), code);
    EXPECT_NE(source.error().what.find(what), std::string::npos) << source.error().what;
    EXPECT_FALSE(source.error().remedy.empty());
}

uint32_t position_of(VwBlockFile *file)
{
    uint32_t position = 0;
    EXPECT_EQ(file->tell(file, &position), 0);
    return position;
}

TEST(MemorySource, GivesItsBytes)
{
    const std::string bytes = some_bytes(5000);
    MemorySource source({bytes.begin(), bytes.end()});
    EXPECT_EQ(source.size(), 5000U);
    EXPECT_EQ(read_through_stream(source), bytes);
    EXPECT_TRUE(source.failure().ok());
}

TEST(MemorySource, EndsWhereItEnds)
{
    MemorySource source({1, 2, 3});
    std::array<uint8_t, 8> bytes{};
    EXPECT_EQ(source.read_at(1, bytes), 2U);
    EXPECT_EQ(bytes[0], 2);
    EXPECT_EQ(source.read_at(3, bytes), 0U);
    EXPECT_EQ(source.read_at(UINT32_MAX, bytes), 0U);
}

TEST(BlockFile, SeeksFromTheStartAndFromTheEnd)
{
    MemorySource source({10, 11, 12, 13});
    reading::BlockFile block(source);
    VwBlockFile *file = block.get();
    EXPECT_EQ(file->seek(file, 2, -1), 0);
    EXPECT_EQ(position_of(file), 3U);
    uint8_t byte = 0;
    uint32_t count = 0;
    EXPECT_EQ(file->read(file, &byte, 1, &count), 0);
    EXPECT_EQ(count, 1U);
    EXPECT_EQ(byte, 13);
    EXPECT_EQ(position_of(file), 4U);
    EXPECT_EQ(file->read(file, &byte, 1, &count), 0);
    EXPECT_EQ(count, 0U);
    EXPECT_EQ(file->seek(file, 0, 1), 0);
    EXPECT_EQ(position_of(file), 1U);
}

TEST(BlockFile, TakesAPositionForUnsigned)
{
    MemorySource source({1});
    reading::BlockFile block(source);
    EXPECT_EQ(block.get()->seek(block.get(), 0, -2), 0);
    EXPECT_EQ(position_of(block.get()), 0xFFFFFFFEU);
}

TEST(BlockFile, RefusesAnInvalidPosition)
{
    MemorySource source({1, 2});
    reading::BlockFile block(source);
    VwBlockFile *file = block.get();
    EXPECT_NE(file->seek(file, 2, -3), 0);
    EXPECT_NE(file->seek(file, 1, 0), 0);
    EXPECT_EQ(file->seek(file, 2, 100), 0);
    EXPECT_EQ(position_of(file), 102U);
}

TEST(BlockFile, OpensNoOtherFile)
{
    MemorySource source({1});
    reading::BlockFile block(source);
    EXPECT_EQ(VwBlockOpen(block.get(), "/etc/passwd", 0),
              reinterpret_cast<VwBlockFile *>(intptr_t{-1}));
}

TEST(BlockFile, ReadsNothingOnceClosed)
{
    MemorySource source({1});
    reading::BlockFile block(source);
    VwBlockFile *file = block.get();
    EXPECT_EQ(VwBlockClose(file), 0);
    uint8_t byte = 0;
    uint32_t count = 5;
    EXPECT_NE(file->read(file, &byte, 1, &count), 0);
    EXPECT_EQ(count, 0U);
    EXPECT_NE(file->seek(file, 2, 0), 0);
}

TEST_F(Files, GivesAFilesBytes)
{
    for (const std::size_t size : {0U, 1U, 2047U, 2048U, 2049U, 100000U}) {
        const std::string bytes = some_bytes(size);
        const OpenedSource source = open_source(write(bytes));
        ASSERT_TRUE(source.ok()) << source.error().what;
        EXPECT_EQ(source.value()->size(), size);
        EXPECT_TRUE(read_through_stream(*source.value()) == bytes) << size;
    }
}

TEST_F(Files, GivesAPipesBytes)
{
    for (const std::size_t size : {0U, 1U, 200000U}) {
        const std::string bytes = some_bytes(size);
        Pipe pipe(bytes);
        const OpenedSource source = source_of(pipe.read_end);
        ASSERT_TRUE(source.ok()) << source.error().what;
        EXPECT_EQ(source.value()->size(), size);
        EXPECT_TRUE(read_through_stream(*source.value()) == bytes) << size;
    }
}

// A descriptor positioned inside its file delivers the rest, as to any program.
TEST_F(Files, BeginsAtTheDescriptorsPosition)
{
    const int descriptor = ::open(write("skipped, read").c_str(), O_RDONLY);
    ASSERT_EQ(::lseek(descriptor, 9, SEEK_SET), 9);
    const OpenedSource source = source_of(descriptor);
    ASSERT_TRUE(source.ok());
    EXPECT_EQ(read_through_stream(*source.value()), "read");
}

TEST_F(Files, RefusesAPipeThatGivesTooMuch)
{
    Pipe enough(some_bytes(5000));
    EXPECT_TRUE(source_of(enough.read_end, 5001).ok());
    Pipe too_much(some_bytes(5000));
    expect_error(source_of(too_much.read_end, 5000), "4 GiB", 6);
}

TEST_F(Files, RefusesFilesWithoutPositionsForAllBytes)
{
    expect_error(open_source(write_sparse(input_size_limit)), "4 GiB", 6);
    const OpenedSource source = open_source(write_sparse(input_size_limit - 1));
    ASSERT_TRUE(source.ok());
    std::array<uint8_t, 16> bytes{};
    bytes.fill(0xFF);
    EXPECT_EQ(source.value()->read_at(0xFFFFFFF5U, bytes), 10U);
    EXPECT_EQ(bytes[0], 0);
}

TEST_F(Files, RefusesDirectories)
{
    expect_error(open_source(directory.string()), "is a directory");
}

TEST_F(Files, RefusesMissingFiles)
{
    expect_error(open_source((directory / "none").string()), "No such file");
    expect_error(open_source(""), "No such file");
}

TEST_F(Files, LeavesNoFileOfASpooledPipe)
{
    ::setenv("TMPDIR", directory.c_str(), 1);
    Pipe pipe("bytes");
    const OpenedSource source = source_of(pipe.read_end);
    ::unsetenv("TMPDIR");
    ASSERT_TRUE(source.ok());
    EXPECT_TRUE(std::filesystem::is_empty(directory));
}

TEST_F(Files, ReportsThatThereIsNowhereToSpoolTo)
{
    ::setenv("TMPDIR", (directory / "none").c_str(), 1);
    Pipe pipe("bytes");
    const OpenedSource source = source_of(pipe.read_end);
    ::unsetenv("TMPDIR");
    expect_error(source, "temporary file");
    EXPECT_NE(source.error().remedy.find("TMPDIR"), std::string::npos);
}

// To the module a failed read is the end of the data: the source has to remember it.
TEST_F(Files, RemembersAFailedRead)
{
    const int write_only = ::open(write("bytes").c_str(), O_WRONLY);
    DescriptorSource source(write_only, 5);
    EXPECT_TRUE(source.failure().ok());
    EXPECT_EQ(read_through_stream(source), "");
    const Status failure = source.failure();
    ASSERT_FALSE(failure.ok());
    EXPECT_EQ(exit_code(failure.error().kind), 3);
    EXPECT_NE(failure.error().what.find("cannot be read"), std::string::npos);
}

} // namespace

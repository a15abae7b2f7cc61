// All bytes are transferred, although a pipe takes and gives them in parts and signals interrupt.
#include "lib/base/transfers.h"

#include "lib/base/descriptor.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <pthread.h>
#include <string>
#include <thread>
#include <unistd.h>

namespace {

using namespace pfsdoc::base;

constexpr std::size_t more_than_a_pipe_holds = 1 << 20;

std::string some_bytes(std::size_t size)
{
    std::string bytes;
    for (std::size_t index = 0; index < size; ++index) {
        bytes.push_back(static_cast<char>(index * 7 + index / 256));
    }
    return bytes;
}

struct Pipe {
    Pipe()
    {
        std::array<int, 2> ends{};
        EXPECT_EQ(::pipe2(ends.data(), O_CLOEXEC), 0);
        reading = Descriptor(ends[0]);
        writing = Descriptor(ends[1]);
    }
    Descriptor reading;
    Descriptor writing;
};

Descriptor nameless_file()
{
    std::string path = (std::filesystem::temp_directory_path() / "transfers-XXXXXX").string();
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

// Interrupts a thread again and again while it lives; calls are not restarted by the system.
class Interruptions {
public:
    Interruptions() : target_(::pthread_self())
    {
        struct sigaction action {};
        action.sa_handler = [](int) {};
        ::sigaction(SIGUSR1, &action, &before_);
        thread_ = std::thread([this] {
            while (!done_) {
                ::pthread_kill(target_, SIGUSR1);
                std::this_thread::sleep_for(std::chrono::microseconds(200));
            }
        });
    }
    ~Interruptions()
    {
        done_ = true;
        thread_.join();
        ::sigaction(SIGUSR1, &before_, nullptr);
    }
    Interruptions(const Interruptions &) = delete;
    Interruptions &operator=(const Interruptions &) = delete;

private:
    pthread_t target_;
    struct sigaction before_ {};
    std::atomic<bool> done_ = false;
    std::thread thread_;
};

// ----------------------------------------------------------------------------- reading -----

TEST(Transfers, ReadWhatIsThereAndTheEnd)
{
    Pipe pipe;
    ASSERT_TRUE(write_all(pipe.writing.get(), "abc"));
    std::array<char, 8> bytes{};
    EXPECT_EQ(read_some(pipe.reading.get(), bytes.data(), bytes.size()), 3);
    pipe.writing = Descriptor();
    EXPECT_EQ(read_some(pipe.reading.get(), bytes.data(), bytes.size()), 0);
}

TEST(Transfers, ReadAtAnOffsetWithoutMoving)
{
    const Descriptor file = nameless_file();
    ASSERT_TRUE(write_all(file.get(), "0123456789"));
    std::array<char, 4> bytes{};
    EXPECT_EQ(read_some_at(file.get(), bytes.data(), bytes.size(), 2), 4);
    EXPECT_EQ(std::string_view(bytes.data(), 4), "2345");
    EXPECT_EQ(read_some_at(file.get(), bytes.data(), bytes.size(), 9), 1);
    EXPECT_EQ(read_some_at(file.get(), bytes.data(), bytes.size(), 10), 0);
    EXPECT_EQ(::lseek(file.get(), 0, SEEK_CUR), 10);
}

TEST(Transfers, FillADestinationFromParts)
{
    Pipe pipe;
    const std::string sent = some_bytes(more_than_a_pipe_holds);
    std::thread writer([&] {
        for (std::size_t at = 0; at < sent.size(); at += 1000) {
            EXPECT_TRUE(write_all(pipe.writing.get(), std::string_view(sent).substr(at, 1000)));
        }
        pipe.writing = Descriptor();
    });
    std::string received(sent.size(), '\0');
    EXPECT_EQ(read_full(pipe.reading.get(), received.data(), received.size()), sent.size());
    EXPECT_TRUE(received == sent);
    EXPECT_EQ(read_full(pipe.reading.get(), received.data(), received.size()), 0U);
    writer.join();
}

TEST(Transfers, FillADestinationUpToTheEnd)
{
    const Descriptor file = nameless_file();
    ASSERT_TRUE(write_all(file.get(), "0123456789"));
    std::array<char, 8> bytes{};
    EXPECT_EQ(read_full_at(file.get(), bytes.data(), bytes.size(), 1), 8U);
    EXPECT_EQ(read_full_at(file.get(), bytes.data(), bytes.size(), 7), 3U);
    EXPECT_EQ(std::string_view(bytes.data(), 3), "789");
    EXPECT_EQ(read_full_at(file.get(), bytes.data(), bytes.size(), 10), 0U);
}

TEST(Transfers, ReportReadsThatFail)
{
    const Descriptor unreadable(::open("/dev/null", O_WRONLY | O_CLOEXEC));
    char byte = 0;
    EXPECT_LT(read_some(unreadable.get(), &byte, 1), 0);
    EXPECT_EQ(errno, EBADF);
    EXPECT_LT(read_some_at(unreadable.get(), &byte, 1, 0), 0);
    EXPECT_FALSE(read_full(unreadable.get(), &byte, 1));
    EXPECT_FALSE(read_full_at(unreadable.get(), &byte, 1, 0));
    EXPECT_EQ(errno, EBADF);
}

// ----------------------------------------------------------------------------- writing -----

TEST(Transfers, WriteMoreThanAPipeHolds)
{
    Pipe pipe;
    const std::string sent = some_bytes(more_than_a_pipe_holds);
    std::string received(sent.size(), '\0');
    std::thread reader([&] {
        EXPECT_EQ(read_full(pipe.reading.get(), received.data(), received.size()), sent.size());
    });
    EXPECT_TRUE(write_all(pipe.writing.get(), sent));
    pipe.writing = Descriptor();
    reader.join();
    EXPECT_TRUE(received == sent);
}

TEST(Transfers, WriteAtAnOffset)
{
    const Descriptor file = nameless_file();
    EXPECT_TRUE(write_all_at(file.get(), "tail", 4));
    EXPECT_TRUE(write_all_at(file.get(), "head", 0));
    EXPECT_TRUE(write_all_at(file.get(), "", 100));
    EXPECT_EQ(content_of(file), "headtail");
}

TEST(Transfers, ReportWritesThatFail)
{
    const Descriptor full(::open("/dev/full", O_RDWR | O_CLOEXEC));
    EXPECT_TRUE(write_all(full.get(), ""));
    EXPECT_FALSE(write_all(full.get(), "x"));
    EXPECT_EQ(errno, ENOSPC);
    errno = 0;
    EXPECT_FALSE(write_all_at(full.get(), "x", 10));
    EXPECT_EQ(errno, ENOSPC);
}

// ------------------------------------------------------------------------- interruptions -----

TEST(Transfers, GoOnWhenSignalsInterrupt)
{
    Pipe pipe;
    const std::string sent = some_bytes(more_than_a_pipe_holds);
    std::string received(sent.size(), '\0');
    std::thread other([&] {
        // Slowly, so that the writing side waits and is interrupted.
        for (std::size_t at = 0; at < received.size();) {
            const std::size_t part = std::min<std::size_t>(received.size() - at, 65536);
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
            ASSERT_EQ(read_full(pipe.reading.get(), received.data() + at, part), part);
            at += part;
        }
    });
    {
        const Interruptions interruptions;
        EXPECT_TRUE(write_all(pipe.writing.get(), sent));
    }
    pipe.writing = Descriptor();
    other.join();
    EXPECT_TRUE(received == sent);
}

TEST(Transfers, WaitForBytesWhenSignalsInterrupt)
{
    Pipe pipe;
    std::thread other([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        EXPECT_TRUE(write_all(pipe.writing.get(), "late"));
    });
    std::array<char, 8> bytes{};
    {
        const Interruptions interruptions;
        EXPECT_EQ(read_some(pipe.reading.get(), bytes.data(), bytes.size()), 4);
    }
    other.join();
}

} // namespace

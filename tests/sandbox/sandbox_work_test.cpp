// What a converter does still works in the sandbox: descriptors, messages, memory, the C and
// C++ libraries, and whole conversions, whose bytes are those from outside of it.
#include "tests/sandbox/sandbox_child.h"

#include "lib/writers/trace.h"
#include "pfsdoc/document.h"
#include "pfsdoc/writer.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <filesystem>
#include <iconv.h>
#include <memory>
#include <poll.h>
#include <stdexcept>
#include <string>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <sys/uio.h>
#include <system_error>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

using namespace tests;
using pfsdoc::Document;
using pfsdoc::Format;
using pfsdoc::sandbox::Mode;

constexpr const char *letter = SAMPLES_DIRECTORY "/1012-pfs-write-a/letter.doc";

// A nameless file with text in it, positioned at its start.
int file_with(const std::string &text)
{
    std::string name = (std::filesystem::temp_directory_path() / "sandbox-XXXXXX").string();
    const int descriptor = ::mkostemp(name.data(), O_CLOEXEC);
    ::unlink(name.c_str());
    EXPECT_EQ(::pwrite(descriptor, text.data(), text.size(), 0), static_cast<ssize_t>(text.size()));
    return descriptor;
}

std::string text_of(int descriptor)
{
    char buffer[256];
    const ssize_t count = ::pread(descriptor, buffer, sizeof buffer, 0);
    return count < 0 ? ::strerrorname_np(errno)
                     : std::string(buffer, static_cast<std::size_t>(count));
}

Ending sandboxed(const std::function<std::string()> &work)
{
    return in_sandbox(Mode::required, work);
}

// ------------------------------------------------------------------- descriptors -----

TEST(SandboxWork, ReadsAndWritesOpenDescriptors)
{
    const int file = file_with("0123456789");
    const Ending ending = sandboxed([&] {
        char digits[4] = {};
        std::string said;
        said += ::read(file, digits, 2) == 2 ? digits : "read fails";
        said += ::pread(file, digits, 2, 4) == 2 ? digits : "pread fails";
        said += ::lseek(file, 0, SEEK_END) == 10 ? " at the end" : "lseek fails";
        iovec part{digits, 2};
        said += ::write(file, "ab", 2) == 2 && ::pwrite(file, "X", 1, 0) == 1 &&
                        ::writev(file, &part, 1) == 2
                    ? ", written"
                    : "write fails";
        said += ::ftruncate(file, 13) == 0 && ::fsync(file) == 0 ? ", cut" : "ftruncate fails";
        struct stat status {};
        said += ::fstat(file, &status) == 0 ? ", size " + std::to_string(status.st_size)
                                            : "fstat fails";
        return said;
    });
    EXPECT_EQ(ending.said, "0145 at the end, written, cut, size 13");
    EXPECT_EQ(text_of(file), "X123456789ab4");
    ::close(file);
}

TEST(SandboxWork, DuplicatesAndClosesDescriptors)
{
    const int file = file_with("text");
    const Ending ending = sandboxed([&] {
        const int copies[] = {::dup(file), ::dup3(file, 200, O_CLOEXEC),
                              ::fcntl(file, F_DUPFD_CLOEXEC, 0)};
        std::string said;
        for (const int copy : copies) {
            said += text_of(copy);
            said += ::close(copy) == 0 ? ", closed, " : ", close fails, ";
        }
        return said + text_of(copies[0]);
    });
    EXPECT_EQ(ending.said, "text, closed, text, closed, text, closed, EBADF");
    ::close(file);
}

TEST(SandboxWork, AsksForTheFlagsOfADescriptor)
{
    const int file = file_with("");
    const Ending ending = sandboxed([&] {
        const bool asked =
            ::fcntl(file, F_GETFD) == FD_CLOEXEC && (::fcntl(file, F_GETFL) & O_ACCMODE) == O_RDWR;
        const bool set = ::fcntl(file, F_SETFD, 0) == 0;
        return std::string(asked ? "asked" : "not asked") + (set ? ", set" : ", not set");
    });
    EXPECT_EQ(ending.said, "asked, set");
    ::close(file);
}

TEST(SandboxWork, MakesPipesOfItsOwn)
{
    const Ending ending = sandboxed([] {
        int ends[2] = {-1, -1};
        char text[8] = {};
        const bool piped = ::pipe(ends) == 0 && ::write(ends[1], "piped", 5) == 5 &&
                           ::read(ends[0], text, sizeof text) == 5;
        return piped ? std::string(text) : ::strerrorname_np(errno);
    });
    EXPECT_EQ(ending.said, "piped");
}

TEST(SandboxWork, UsesStreamsOfTheCLibrary)
{
    const int file = file_with("a line\nanother\n");
    const Ending ending = sandboxed([&] {
        std::FILE *stream = ::fdopen(::dup(file), "r+");
        char line[32] = {};
        std::string said = std::fgets(line, sizeof line, stream) != nullptr ? line : "no line";
        std::fseek(stream, 0, SEEK_END);
        std::fprintf(stream, "%d", 3);
        return said + (std::fclose(stream) == 0 ? "closed" : "not closed");
    });
    EXPECT_EQ(ending.said, "a line\nclosed");
    EXPECT_EQ(text_of(file), "a line\nanother\n3");
    ::close(file);
}

// ---------------------------------------------------------------------- messages -----

// A message of one byte and a descriptor.
struct Parcel {
    char byte = 'd';
    iovec bytes{&byte, 1};
    alignas(cmsghdr) char control[CMSG_SPACE(sizeof(int))] = {};
    msghdr message{};

    Parcel()
    {
        message.msg_iov = &bytes;
        message.msg_iovlen = 1;
        message.msg_control = control;
        message.msg_controllen = sizeof control;
    }
};

bool send_descriptor(int socket, int descriptor)
{
    Parcel parcel;
    cmsghdr *header = CMSG_FIRSTHDR(&parcel.message);
    header->cmsg_level = SOL_SOCKET;
    header->cmsg_type = SCM_RIGHTS;
    header->cmsg_len = CMSG_LEN(sizeof descriptor);
    std::memcpy(CMSG_DATA(header), &descriptor, sizeof descriptor);
    return ::sendmsg(socket, &parcel.message, MSG_NOSIGNAL) == 1;
}

int received_descriptor(int socket)
{
    Parcel parcel;
    if (::recvmsg(socket, &parcel.message, MSG_CMSG_CLOEXEC) != 1) {
        return -1;
    }
    int descriptor = -1;
    if (const cmsghdr *header = CMSG_FIRSTHDR(&parcel.message); header != nullptr) {
        std::memcpy(&descriptor, CMSG_DATA(header), sizeof descriptor);
    }
    return descriptor;
}

class SandboxMessages : public ::testing::Test {
protected:
    void SetUp() override
    {
        int ends[2];
        ASSERT_EQ(::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends), 0);
        outside = ends[0];
        inside = ends[1];
    }
    void TearDown() override
    {
        ::close(outside);
        ::close(inside);
    }

    int outside = -1;
    int inside = -1;
};

TEST_F(SandboxMessages, BringDescriptorsInAndOut)
{
    const int file = file_with("from outside");
    ASSERT_TRUE(send_descriptor(outside, file));
    const Ending ending = sandboxed([&] {
        const int received = received_descriptor(inside);
        const std::string text = text_of(received);
        const bool written = ::pwrite(received, "back", 4, 0) == 4;
        return text + (written && send_descriptor(inside, received) ? ", sent" : ", not sent");
    });
    EXPECT_EQ(ending.said, "from outside, sent");
    const int returned = received_descriptor(outside);
    EXPECT_EQ(text_of(returned), "back outside");
    ::close(returned);
    ::close(file);
}

TEST_F(SandboxMessages, AreWaitedForSentAndReceived)
{
    ASSERT_EQ(::send(outside, "question", 8, 0), 8);
    const Ending ending = sandboxed([&] {
        pollfd waiting{inside, POLLIN, 0};
        const timespec second{1, 0};
        const bool ready =
            ::poll(&waiting, 1, 1000) == 1 && ::ppoll(&waiting, 1, &second, nullptr) == 1;
        char text[16] = {};
        const bool received = ::recv(inside, text, sizeof text, 0) == 8;
        const bool sent = ::send(inside, "answer", 6, MSG_NOSIGNAL) == 6;
        return std::string(ready ? "ready, " : "not ready, ") + (received ? text : "nothing") +
               (sent ? ", sent" : ", not sent");
    });
    EXPECT_EQ(ending.said, "ready, question, sent");
    char answer[16] = {};
    EXPECT_EQ(::recv(outside, answer, sizeof answer, MSG_DONTWAIT), 6);
    EXPECT_STREQ(answer, "answer");
}

// --------------------------------------------------------------------- libraries -----

TEST(SandboxWork, HasMemory)
{
    const Ending ending = sandboxed([] {
        constexpr std::size_t hundred_megabytes = 100'000'000;
        std::vector<char> bytes(hundred_megabytes, 'x');
        bytes.resize(hundred_megabytes + 50'000'000, 'y');
        std::vector<std::unique_ptr<int>> pieces;
        for (int piece = 0; piece < 100'000; ++piece) {
            pieces.push_back(std::make_unique<int>(piece));
        }
        return std::string{bytes[hundred_megabytes - 1], bytes.back()} +
               std::to_string(*pieces.back());
    });
    EXPECT_EQ(ending.said, "xy99999");
}

// By the system calls too: where the C library has another way, a machine may lack it.
TEST(SandboxWork, KnowsTheTime)
{
    const std::time_t before = std::time(nullptr);
    const Ending ending = sandboxed([] {
        timespec time{};
        timeval of_day{};
        const bool called = ::syscall(SYS_clock_gettime, CLOCK_MONOTONIC, &time) == 0 &&
                            ::syscall(SYS_gettimeofday, &of_day, nullptr) == 0;
        return called ? std::to_string(std::time(nullptr)) : "no clock";
    });
    ASSERT_EQ(ending.exit_status, 0);
    EXPECT_GE(std::stoll(ending.said), before);
    EXPECT_LE(std::stoll(ending.said), std::time(nullptr));
}

TEST(SandboxWork, ThrowsAndCatches)
{
    const Ending ending = sandboxed([] {
        std::string said;
        try {
            throw std::runtime_error("caught");
        } catch (const std::runtime_error &error) {
            said = error.what();
        }
        try {
            said.reserve(said.max_size() + 1);
        } catch (const std::length_error &) {
            said += " twice";
        }
        return said;
    });
    EXPECT_EQ(ending.said, "caught twice");
}

TEST(SandboxWork, ConvertsCharactersWithTablesThatAreLoaded)
{
    iconv_t loaded{};
    const Ending ending =
        in_sandbox_after([&] { loaded = ::iconv_open("UTF-8", "IBM437"); },
                         [&] {
                             char stored[] = "caf\x82";
                             char converted[16] = {};
                             char *from = stored;
                             char *to = converted;
                             std::size_t stored_left = 4;
                             std::size_t room = sizeof converted;
                             return ::iconv(loaded, &from, &stored_left, &to, &room) == 0
                                        ? std::string(converted)
                                        : "not converted";
                         });
    EXPECT_EQ(ending.said, "caf\u00e9");
}

TEST(SandboxWork, MakesNoThreadAndSurvivesIt)
{
    const auto work = [] {
        std::thread([] {}).join();
        return std::string("started");
    };
    const Ending inside = sandboxed(work);
    EXPECT_TRUE(inside.said.starts_with("threw: ")) << inside.said;
    EXPECT_EQ(inside.exit_status, 0);
    EXPECT_EQ(in_sandbox(Mode::off, work).said, "started");
}

// ---------------------------------------------------------------------- the end -----

TEST(SandboxWork, EndsWithItsOwnExitStatus)
{
    const Ending ending = sandboxed([]() -> std::string { ::_exit(5); });
    EXPECT_EQ(ending.exit_status, 5);
}

TEST(SandboxWork, AbortsWithSigabrt)
{
    const Ending ending = sandboxed([]() -> std::string { std::abort(); });
    EXPECT_EQ(ending.signal, SIGABRT);
}

TEST(SandboxWork, HandlesSignalsOfItsOwn)
{
    static volatile std::sig_atomic_t handled = 0;
    const Ending ending = sandboxed([] {
        std::signal(SIGUSR1, [](int) { handled = 1; });
        std::raise(SIGUSR1);
        return std::string(handled == 1 ? "handled" : "not handled");
    });
    EXPECT_EQ(ending.said, "handled");
}

// ------------------------------------------------------------------- conversions -----

pfsdoc::Result<Document> letter_of(int descriptor)
{
    auto source = pfsdoc::source_of(descriptor);
    if (!source.ok()) {
        return source.error();
    }
    return Document::from_source(std::move(source.value()));
}

std::string written(const Format &format, Document &document)
{
    pfsdoc::StringOutput output;
    if (format.make_event_writer != nullptr) {
        const auto writer = format.make_event_writer(output, {});
        const auto fault = document.read_events(*writer);
        writer->finish();
        return fault.ok() ? output.text : fault.error().what;
    }
    const auto writer = format.make_writer(output, {document.kind(), "letter"}, {});
    if (!writer.ok()) {
        return writer.error().what;
    }
    const auto fault = document.read(*writer.value());
    return fault.ok() ? output.text : fault.error().what;
}

std::string converted(const Format &format, int descriptor)
{
    auto document = letter_of(descriptor);
    return document.ok() ? written(format, document.value()) : document.error().what;
}

int open_letter()
{
    return ::open(letter, O_RDONLY | O_CLOEXEC);
}

class SandboxConversion : public ::testing::TestWithParam<std::string> {};

TEST_P(SandboxConversion, GivesTheBytesFromOutside)
{
    const Format &format = *pfsdoc::find_format(GetParam());
    const int descriptor = open_letter();
    ASSERT_GE(descriptor, 0);
    const Ending inside = sandboxed([&] { return converted(format, descriptor); });
    EXPECT_EQ(inside.exit_status, 0);
    EXPECT_EQ(inside.signal, 0);
    EXPECT_GT(inside.said.size(), 500U) << inside.said;
    EXPECT_EQ(inside.said, converted(format, descriptor));
}

std::vector<std::string> format_names()
{
    std::vector<std::string> names;
    for (const Format *format : pfsdoc::formats()) {
        names.emplace_back(format->name);
    }
    return names;
}

INSTANTIATE_TEST_SUITE_P(Sandbox, SandboxConversion, ::testing::ValuesIn(format_names()),
                         [](const auto &parameter) { return parameter.param; });

} // namespace

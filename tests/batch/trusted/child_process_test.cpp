#include "batch/trusted/child_process.h"
#include "tests/batch/pipe.h"

#include <gtest/gtest.h>

#include <array>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <functional>
#include <span>
#include <stdexcept>
#include <string>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

namespace {

namespace base = pfsdoc::base;
using pfsdoc::batch::ChildProcess;
using tests::Pipe;

void write_to(int descriptor, const std::string &text)
{
    if (::write(descriptor, text.data(), text.size()) < 0) {
        ::_exit(EXIT_FAILURE);
    }
}

ChildProcess started(std::span<const int> descriptors, const std::function<void()> &role)
{
    auto process = ChildProcess::start(descriptors, role);
    EXPECT_TRUE(process.ok());
    return process.ok() ? std::move(process.value()) : ChildProcess();
}

// A process that stays, and can be heard.
ChildProcess worker(const Pipe &pipe)
{
    const std::array<int, 1> kept = {pipe.writing.get()};
    ChildProcess process = started(kept, [&] {
        write_to(pipe.writing.get(), "worker");
        for (;;) {
            ::pause();
        }
    });
    EXPECT_EQ(pipe.read_some(), "worker");
    return process;
}

TEST(ChildProcess, KeepsItsDescriptorsAndNoOthers)
{
    Pipe pipe;
    const Pipe other;
    const std::array<int, 2> kept = {pipe.writing.get(), other.writing.get()};
    const std::array<int, 6> all = {STDIN_FILENO,        STDOUT_FILENO,       STDERR_FILENO,
                                    other.reading.get(), other.writing.get(), pipe.reading.get()};
    ChildProcess process = started(kept, [&] {
        for (const int descriptor : all) {
            write_to(pipe.writing.get(), ::fcntl(descriptor, F_GETFD) < 0 ? "-" : "+");
        }
        ::_exit(3);
    });
    EXPECT_NE(process.id(), ::getpid());
    EXPECT_EQ(pipe.read_all(), "+++-+-");
    const int status = process.end();
    EXPECT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 3);
}

// Not to what its parent reads, nor to the terminal.
TEST(ChildProcess, HasStandardStreamsThatLeadNowhere)
{
    Pipe pipe;
    const Pipe input;
    write_to(input.writing.get(), "a list");
    const base::Descriptor own_input(::dup(STDIN_FILENO));
    ::dup2(input.reading.get(), STDIN_FILENO);
    const std::array<int, 1> kept = {pipe.writing.get()};
    ChildProcess process = started(kept, [&] {
        struct stat null {};
        struct stat stream {};
        ::stat("/dev/null", &null);
        for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
            ::fstat(descriptor, &stream);
            write_to(pipe.writing.get(), stream.st_rdev == null.st_rdev ? "null " : "other ");
        }
        char byte = 0;
        write_to(pipe.writing.get(), ::read(STDIN_FILENO, &byte, 1) == 0 ? "end" : "byte");
        ::_exit(0);
    });
    ::dup2(own_input.get(), STDIN_FILENO);
    EXPECT_EQ(pipe.read_all(), "null null null end");
    process.end();
    EXPECT_EQ(input.read_some(), "a list");
}

TEST(ChildProcess, IsKilledAndReaped)
{
    Pipe pipe;
    ChildProcess process = worker(pipe);
    const pid_t id = process.id();
    const int status = process.end();
    EXPECT_TRUE(WIFSIGNALED(status));
    EXPECT_EQ(WTERMSIG(status), SIGKILL);
    EXPECT_EQ(pipe.read_all(), "");
    EXPECT_NE(::kill(id, 0), 0) << "its entry in the process table is left";
    EXPECT_EQ(process.id(), 0);
    EXPECT_EQ(WTERMSIG(process.end()), SIGKILL) << "there is none any more";
}

TEST(ChildProcess, EndsWithItsObject)
{
    Pipe first;
    Pipe second;
    Pipe third;
    ChildProcess kept = worker(first);
    {
        const ChildProcess moved = std::move(kept);
        ChildProcess replaced = worker(second);
        replaced = worker(third);
        EXPECT_EQ(second.read_all(), "");
    }
    EXPECT_EQ(first.read_all(), "");
    EXPECT_EQ(third.read_all(), "");
}

// The signals of a terminal reach it, too.
TEST(ChildProcess, LeavesSignalsToItsParent)
{
    const Pipe pipe;
    ChildProcess process = worker(pipe);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        ASSERT_EQ(::kill(process.id(), signal), 0);
    }
    EXPECT_EQ(WTERMSIG(process.end()), SIGKILL);
}

TEST(ChildProcess, EndsWithTheProcessThatStartedIt)
{
    Pipe pipe;
    const pid_t process = ::fork();
    if (process == 0) {
        const std::array<int, 1> kept = {pipe.writing.get()};
        const auto child = ChildProcess::start(kept, [&] {
            write_to(pipe.writing.get(), "worker");
            for (;;) {
                ::pause();
            }
        });
        for (;;) {
            ::pause();
        }
    }
    EXPECT_EQ(pipe.read_some(), "worker");
    ASSERT_EQ(::kill(process, SIGKILL), 0);
    EXPECT_EQ(::waitpid(process, nullptr, 0), process);
    EXPECT_EQ(pipe.read_all(), "") << "a process is left that can write to the pipe";
}

// What belongs to the parent is not destroyed by its child.
TEST(ChildProcess, DoesNotUnwindItsParent)
{
    Pipe pipe;
    struct Parental {
        ~Parental()
        {
            write_to(descriptor, "destroyed");
        }
        int descriptor;
    };
    const std::array<int, 1> kept = {pipe.writing.get()};
    ChildProcess process;
    {
        const Pipe unheard;
        const Parental parental{unheard.writing.get()};
        process = started(kept, [&] {
            ::dup2(pipe.writing.get(), unheard.writing.get());
            ::dup2(pipe.writing.get(), STDERR_FILENO);
            throw std::runtime_error("a fault");
        });
        EXPECT_EQ(pipe.read_all().find("destroyed"), std::string::npos);
    }
    EXPECT_EQ(WTERMSIG(process.end()), SIGABRT);
}

TEST(ChildProcess, HasWordsForItsEnd)
{
    EXPECT_EQ(pfsdoc::batch::words_of_end(W_EXITCODE(3, 0)), "with code 3");
    EXPECT_EQ(pfsdoc::batch::words_of_end(W_EXITCODE(0, SIGSEGV)), "by SIGSEGV");
    EXPECT_EQ(pfsdoc::batch::words_of_end(W_EXITCODE(0, 50)), "by signal 50");
}

} // namespace

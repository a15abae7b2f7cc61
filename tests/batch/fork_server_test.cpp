// Processes that are forked by another one: they begin where they are told to, and none outlives
// its server or the process that started that.
#include "batch/processes/fork_server.h"
#include "batch/processes/records.h"
#include "tests/batch/pipe.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <csignal>
#include <cstdlib>
#include <string>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

using pfsdoc::batch::ForkServer;
using pfsdoc::batch::ProcessRole;
using tests::Pipe;

constexpr int exit_code = 3;

void write_to(int descriptor, const std::string &text)
{
    if (::write(descriptor, text.data(), text.size()) < 0) {
        ::_exit(EXIT_FAILURE);
    }
}

// One role says how many descriptors it was given and ends, the other says its name and stays.
pfsdoc::batch::ProcessRoles roles()
{
    return {.archive_reader =
                [](std::span<const int> descriptors) {
                    write_to(descriptors.back(), std::to_string(descriptors.size()));
                    ::_exit(exit_code);
                },
            .worker =
                [](std::span<const int> descriptors) {
                    write_to(descriptors[0], "worker");
                    for (;;) {
                        ::pause();
                    }
                }};
}

class Forks : public testing::Test {
protected:
    void SetUp() override
    {
        auto started = ForkServer::start(roles());
        ASSERT_TRUE(started.ok());
        server = std::move(started.value());
    }

    // A process that stays, and can be heard.
    pid_t worker(const Pipe &pipe) const
    {
        const std::array<int, 1> descriptors = {pipe.writing.get()};
        const auto process = server->fork(ProcessRole::worker, descriptors);
        EXPECT_TRUE(process.ok());
        EXPECT_EQ(process.ok() ? pipe.read_some() : "", "worker");
        return process.ok() ? process.value() : 0;
    }

    std::unique_ptr<ForkServer> server;
};

TEST_F(Forks, ProcessesWithTheirDescriptors)
{
    for (std::size_t count = 1; count <= pfsdoc::batch::max_descriptors; ++count) {
        Pipe pipe;
        const std::vector<int> descriptors(count, pipe.writing.get());
        const auto process = server->fork(ProcessRole::archive_reader, descriptors);
        ASSERT_TRUE(process.ok());
        EXPECT_NE(process.value(), ::getpid());
        EXPECT_EQ(pipe.read_all(), std::to_string(count)) << "the server keeps none of them";
        const int status = server->end(process.value());
        EXPECT_TRUE(WIFEXITED(status));
        EXPECT_EQ(WEXITSTATUS(status), exit_code);
    }
}

TEST_F(Forks, NoneThatItDoesNotEnd)
{
    Pipe pipe;
    const pid_t process = worker(pipe);
    const int status = server->end(process);
    EXPECT_TRUE(WIFSIGNALED(status));
    EXPECT_EQ(WTERMSIG(status), SIGKILL);
    EXPECT_EQ(pipe.read_all(), "");
    EXPECT_NE(::kill(process, 0), 0) << "its entry in the process table is left";
}

TEST_F(Forks, AndEndsNoOthers)
{
    EXPECT_EQ(WTERMSIG(server->end(::getpid())), SIGKILL);
    EXPECT_EQ(WTERMSIG(server->end(-1)), SIGKILL);
    Pipe pipe;
    worker(pipe);
    server->shut_down();
    EXPECT_EQ(pipe.read_all(), "");
}

TEST_F(Forks, NoMoreWhenItIsShutDown)
{
    Pipe pipe;
    const pid_t process = worker(pipe);
    server->shut_down();
    EXPECT_EQ(pipe.read_all(), "");
    const std::array<int, 1> descriptors = {pipe.reading.get()};
    const auto late = server->fork(ProcessRole::worker, descriptors);
    ASSERT_FALSE(late.ok());
    EXPECT_EQ(late.error().kind, pfsdoc::ErrorKind::internal);
    EXPECT_EQ(WTERMSIG(server->end(process)), SIGKILL);
    server->shut_down();
}

// The signals of a terminal reach it, too.
TEST_F(Forks, WhateverSignalsAreSent)
{
    Pipe before;
    worker(before); // so that the server is at work
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        ASSERT_EQ(::kill(server->process(), signal), 0);
    }
    Pipe pipe;
    const pid_t process = worker(pipe);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        ASSERT_EQ(::kill(process, signal), 0);
    }
    EXPECT_EQ(WTERMSIG(server->end(process)), SIGKILL);
}

TEST_F(Forks, ProcessesThatEndWhenItIsKilled)
{
    Pipe pipe;
    worker(pipe);
    ASSERT_EQ(::kill(server->process(), SIGKILL), 0);
    EXPECT_EQ(pipe.read_all(), "");
    const std::array<int, 1> descriptors = {pipe.reading.get()};
    EXPECT_FALSE(server->fork(ProcessRole::worker, descriptors).ok());
}

TEST(ForkServer, EndsWithTheProcessThatStartedIt)
{
    Pipe pipe;
    const pid_t process = ::fork();
    if (process == 0) {
        const auto server = ForkServer::start(roles());
        const std::array<int, 1> descriptors = {pipe.writing.get()};
        static_cast<void>(server.value()->fork(ProcessRole::worker, descriptors));
        for (;;) {
            ::pause();
        }
    }
    EXPECT_EQ(pipe.read_some(), "worker");
    ASSERT_EQ(::kill(process, SIGKILL), 0);
    EXPECT_EQ(::waitpid(process, nullptr, 0), process);
    EXPECT_EQ(pipe.read_all(), "") << "a process is left that can write to the pipe";
}

TEST_F(Forks, ForManyThreads)
{
    constexpr int thread_count = 4;
    constexpr int processes_each = 20;
    std::atomic<int> ended = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < thread_count; ++i) {
        threads.emplace_back([&] {
            for (int j = 0; j < processes_each; ++j) {
                Pipe pipe;
                const pid_t process = worker(pipe);
                ended += WTERMSIG(server->end(process)) == SIGKILL ? 1 : 0;
            }
        });
    }
    for (std::thread &thread : threads) {
        thread.join();
    }
    EXPECT_EQ(ended, thread_count * processes_each);
}

} // namespace

// The launcher's processes, with roles of this test's own.
#include "batch/trusted/launcher.h"

#include "batch/wire/records.h"
#include "tests/batch/pipe.h"

#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <string>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace {

using namespace pfsdoc::batch;
using tests::Pipe;

// Forks what writes into the pipe it is given, and answers -1 in between, as when there is no room.
void fork_writers(int socket, const LauncherSettings &)
{
    std::vector<int> descriptors;
    for (int number = 1; receive_record<LaunchRequest>(socket, &descriptors); ++number) {
        if (number == 2) {
            send_record(socket, LaunchReply{0, EAGAIN});
            continue;
        }
        const pid_t process = ::fork();
        if (process == 0) {
            const std::string words = "writer " + std::to_string(number);
            ::_exit(::write(descriptors[0], words.data(), words.size()) > 0 ? 0 : 1);
        }
        ::close(descriptors[0]);
        ::waitpid(process, nullptr, 0);
        send_record(socket, LaunchReply{process, 0});
    }
}

void end_at_once(int, const LauncherSettings &) {}

TEST(Launcher, AnswersInAnyOrder)
{
    auto launcher = Launcher::start(fork_writers, {});
    ASSERT_TRUE(launcher.ok());
    std::array<Pipe, 3> pipes;
    std::array<uint64_t, 3> requests{};
    for (std::size_t i = 0; i < pipes.size(); ++i) {
        const std::array<int, 1> descriptors = {pipes[i].writing.get()};
        requests[i] = launcher.value().request(LaunchKind::worker, descriptors);
    }
    EXPECT_TRUE(launcher.value().take(requests[2]).ok());
    EXPECT_EQ(pipes[2].read_all(), "writer 3");
    EXPECT_TRUE(launcher.value().take(requests[0]).ok());
    EXPECT_EQ(pipes[0].read_all(), "writer 1");
    const auto none = launcher.value().take(requests[1]);
    ASSERT_FALSE(none.ok());
    EXPECT_EQ(none.error().what,
              std::string("no process can be started: ") + std::strerror(EAGAIN));
}

TEST(Launcher, ReportsItsOwnEnd)
{
    auto launcher = Launcher::start(end_at_once, {});
    ASSERT_TRUE(launcher.ok());
    const auto none = launcher.value().take(launcher.value().request(LaunchKind::worker, {}));
    ASSERT_FALSE(none.ok());
    EXPECT_EQ(none.error().what, "no process can be started: the one that starts others was ended");
}

} // namespace

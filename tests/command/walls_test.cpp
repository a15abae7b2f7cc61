// A single document is read behind walls, too: by a process that the one people started looks
// after.
#include "tests/batch/pipe.h"
#include "tests/command/command_fixture.h"

#include <csignal>
#include <fstream>
#include <string>

namespace tests {

namespace {

// A run that waits, since nobody reads its output.
class Walls : public Command {
protected:
    void SetUp() override
    {
        Command::SetUp();
        std::string text;
        for (int i = 0; i < 100000; ++i) {
            text += "more text ";
        }
        write("long.pfs",
              document_of(pfsdoc::DocumentKind::write_b, bytes("0D '" + text + "' 0D 0E")));
    }
    pid_t start(const std::string &command) const
    {
        const pid_t run = ::fork();
        if (run == 0) {
            Streams streams;
            streams.output = "/dev/fd/" + std::to_string(pipe.writing.get());
            become(directory, {command, "long.pfs", "--sandbox", "require"}, streams);
        }
        return run;
    }
    // That reads for the run.
    static pid_t reader_of(pid_t run)
    {
        constexpr int longest_wait = 10000;
        const std::string name = std::to_string(run);
        for (int waited = 0; waited < longest_wait; ++waited) {
            pid_t child = 0;
            std::ifstream("/proc/" + name + "/task/" + name + "/children") >> child;
            if (child > 1 && status_of(child).find("Seccomp:\t2") != std::string::npos) {
                return child;
            }
            ::usleep(1000);
        }
        ADD_FAILURE() << "no process in a sandbox";
        return 0;
    }
    static std::string status_of(pid_t process)
    {
        return content_of("/proc/" + std::to_string(process) + "/status");
    }

    Pipe pipe;
};

TEST_F(Walls, HoldWhoeverReadsADocument)
{
    for (const std::string command : {"text", "explain"}) {
        const pid_t run = start(command);
        const pid_t reader = reader_of(run);
        EXPECT_NE(status_of(reader).find("NoNewPrivs:\t1"), std::string::npos);
        EXPECT_EQ(status_of(run).find("Seccomp:\t2"), std::string::npos);
        const fs::path descriptors = "/proc/" + std::to_string(reader) + "/fd";
        EXPECT_EQ(fs::read_symlink(descriptors / "0"), "/dev/null");
        EXPECT_EQ(fs::read_symlink(descriptors / "2"), "/dev/null");
        ::kill(run, SIGTERM);
        EXPECT_EQ(outcome_of(run).exit_code, 130);
    }
}

// What is written and said is what it is without them.
TEST_F(Walls, ChangeNoOutput)
{
    write("short.pfs", content_of(directory / "long.pfs").substr(0, 5000));
    const std::vector<std::vector<std::string>> commands = {
        {"text", "a.pfs"},
        {"text", "short.pfs"},
        {"convert", "-t", "odt", "long.pfs"},
        {"convert", "-t", "markdown", "--report", "a.pfs"},
        {"convert", "-t", "trace", "a.pfs"},
        {"convert", "-t", "html", "--max-output", "1KB", "long.pfs"},
        {"explain", "--json", "short.pfs"}};
    for (std::vector<std::string> command : commands) {
        const Outcome expected = run(command);
        command.insert(command.end(), {"--sandbox", "require"});
        const Outcome found = run(command);
        EXPECT_EQ(found.exit_code, expected.exit_code);
        EXPECT_EQ(found.output, expected.output);
        EXPECT_EQ(found.errors, expected.errors);
    }
    EXPECT_EQ(run({"text", "--sandbox", "require", "-o", "b.txt", "a.pfs"}).exit_code, 0);
    EXPECT_EQ(content_of(directory / "b.txt"), run({"text", "a.pfs"}).output);
}

TEST_F(Walls, ReportAReaderThatWasEnded)
{
    const pid_t run = start("text");
    ::kill(reader_of(run), SIGKILL);
    expect_failure(outcome_of(run), 70,
                   "pfsdoc: long.pfs: the process that read it was ended by signal 9; ");
}

TEST_F(Walls, EndWithTheRun)
{
    const pid_t run = start("text");
    reader_of(run);
    ::kill(run, SIGKILL);
    ::waitpid(run, nullptr, 0);
    pipe.writing = {};
    while (!pipe.read_some().empty()) {
    }
    EXPECT_EQ(pipe.read_all(), "") << "a process is left that can write to the pipe";
}

} // namespace

} // namespace tests

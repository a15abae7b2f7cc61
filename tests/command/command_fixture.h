// Runs the command pfsdoc as its users do: as a program, in a separate directory.
#pragma once

#include "tests/lib/reading/host_bench.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <sys/stat.h>
#include <sys/wait.h>
#include <tuple>
#include <unistd.h>

namespace tests {

namespace fs = std::filesystem;

inline std::string content_of(const fs::path &path)
{
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

struct Outcome {
    int exit_code;
    std::string output;
    std::string errors;
};

// Where a run's standard streams lead; an empty name is a closed one.
struct Streams {
    std::string input = "/dev/null";
    std::string output = "out.captured";
    std::string errors = "err.captured";
};

// A path below /dev/fd is a descriptor that is already open: opening a pipe by such a path would
// wait for its other end.
inline void redirect(int descriptor, const std::string &path, int flags)
{
    constexpr std::string_view open_already = "/dev/fd/";
    if (path.starts_with(open_already)) {
        ::dup2(std::stoi(path.substr(open_already.size())), descriptor);
        return;
    }
    const int opened = ::open(path.c_str(), flags | O_CLOEXEC, 0600);
    if (::dup2(opened, descriptor) != descriptor) {
        ::_exit(126);
    }
}

// The closed ones last, so that no other takes their numbers.
inline void redirect_all(const Streams &streams)
{
    const std::array<std::tuple<int, const std::string &, int>, 3> all = {
        {{STDIN_FILENO, streams.input, O_RDONLY},
         {STDOUT_FILENO, streams.output, O_WRONLY | O_CREAT | O_TRUNC},
         {STDERR_FILENO, streams.errors, O_WRONLY | O_CREAT | O_TRUNC}}};
    for (const auto &[descriptor, path, flags] : all) {
        if (!path.empty()) {
            redirect(descriptor, path, flags);
        }
    }
    for (const auto &[descriptor, path, flags] : all) {
        if (path.empty()) {
            ::close(descriptor);
        }
    }
}

[[noreturn]] inline void become(const fs::path &directory,
                                const std::vector<std::string> &arguments, const Streams &streams)
{
    if (::chdir(directory.c_str()) != 0) {
        ::_exit(126);
    }
    redirect_all(streams);
    std::vector<char *> pointers = {const_cast<char *>(PFSDOC_PROGRAM)};
    for (const std::string &argument : arguments) {
        pointers.push_back(const_cast<char *>(argument.c_str()));
    }
    pointers.push_back(nullptr);
    ::execv(PFSDOC_PROGRAM, pointers.data());
    ::_exit(127);
}

// Runs in a separate directory with `a.pfs`, a PFS: WRITE B document.
class Command : public ::testing::Test {
protected:
    void SetUp() override
    {
        std::string name = (fs::temp_directory_path() / "pfsdoc-XXXXXX").string();
        ASSERT_NE(::mkdtemp(name.data()), nullptr);
        directory = name;
        for (const char *variable : {"VS_PFS_MODULE", "COLUMNS", "NO_COLOR", "CLICOLOR_FORCE"}) {
            ::unsetenv(variable);
        }
        write("a.pfs", write_document("TYPE 2", '2',
                                      bytes("0D '  Hello' 0D 'more *NEW PAGE*'"
                                            "0D 'last' 0D 0E")));
    }
    void TearDown() override
    {
        ::unsetenv("VS_PFS_MODULE");
        fs::remove_all(directory);
    }

    void write(const std::string &name, const std::string &document) const
    {
        std::ofstream(directory / name, std::ios::binary) << document;
    }

    Outcome run(const std::vector<std::string> &arguments, const Streams &streams = {}) const
    {
        const pid_t child = ::fork();
        if (child == 0) {
            become(directory, arguments, streams);
        }
        return outcome_of(child);
    }

    Outcome outcome_of(pid_t child) const
    {
        int status = 0;
        EXPECT_EQ(::waitpid(child, &status, 0), child);
        EXPECT_TRUE(WIFEXITED(status)) << "ended by signal " << WTERMSIG(status);
        return {WEXITSTATUS(status), content_of(directory / "out.captured"),
                content_of(directory / "err.captured")};
    }

    // A run that must succeed without a message.
    std::string output_of(const std::vector<std::string> &arguments,
                          const Streams &streams = {}) const
    {
        const Outcome outcome = run(arguments, streams);
        EXPECT_EQ(outcome.exit_code, 0);
        EXPECT_EQ(outcome.errors, "");
        return outcome.output;
    }

    fs::path directory;
};

// One line on standard error, which begins as all of them do.
inline void expect_failure(const Outcome &outcome, int exit_code, const std::string &beginning)
{
    EXPECT_EQ(outcome.exit_code, exit_code);
    EXPECT_EQ(outcome.errors.substr(0, beginning.size()), beginning);
    EXPECT_EQ(std::count(outcome.errors.begin(), outcome.errors.end(), '\n'), 1) << outcome.errors;
    EXPECT_NE(outcome.errors.find("; "), std::string::npos) << "what can be done is missing";
}

} // namespace tests

#include "bench/commands.h"

#include "bench/subject.h"

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <spawn.h>
#include <sstream>
#include <sys/wait.h>
#include <unistd.h>

namespace bench {

namespace {

[[noreturn]] void give_up(const std::string &why)
{
    static_cast<void>(std::fprintf(stderr, "bench: %s\n", why.c_str()));
    std::exit(EXIT_FAILURE);
}

// Starts a command that writes to the descriptor; -1 on failure.
pid_t start(Command command, int output, int unused_by_child)
{
    std::vector<char *> arguments;
    for (std::string &argument : command) {
        arguments.push_back(argument.data());
    }
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
    posix_spawn_file_actions_addclose(&actions, unused_by_child);
    pid_t child = -1;
    if (posix_spawn(&child, arguments[0], &actions, nullptr, arguments.data(), environ) != 0) {
        child = -1;
    }
    posix_spawn_file_actions_destroy(&actions);
    return child;
}

std::string read_all(int descriptor)
{
    std::string text;
    char buffer[256];
    ssize_t count = 0;
    while ((count = read(descriptor, buffer, sizeof buffer)) > 0) {
        text.append(buffer, static_cast<std::size_t>(count));
    }
    return text;
}

// A command's output. Exits if the command fails.
std::string output_of(const Command &command)
{
    int ends[2] = {-1, -1};
    if (pipe(ends) != 0) {
        give_up("no pipe");
    }
    const pid_t child = start(command, ends[1], ends[0]);
    close(ends[1]);
    std::string text = read_all(ends[0]);
    close(ends[0]);
    int status = 0;
    if (child < 0 || waitpid(child, &status, 0) != child || status != 0) {
        give_up(command.front() + " fails");
    }
    return text;
}

} // namespace

CommandCost cost_of_command(const Command &command, int times)
{
    Command measured = {program_directory() + "measure_command", std::to_string(times)};
    measured.insert(measured.end(), command.begin(), command.end());
    std::istringstream figures(output_of(measured));
    CommandCost cost{};
    figures >> cost.processor_seconds >> cost.clock_seconds >> cost.peak_kilobytes;
    constexpr double nanoseconds = 1e9;
    return {cost.processor_seconds / nanoseconds, cost.clock_seconds / nanoseconds,
            cost.peak_kilobytes};
}

bool is_installed(const std::string &name)
{
    const char *path = std::getenv("PATH");
    std::istringstream directories(path == nullptr ? "" : path);
    for (std::string directory; std::getline(directories, directory, ':');) {
        if (access((directory + "/" + name).c_str(), X_OK) == 0) {
            return true;
        }
    }
    return false;
}

TemporaryDirectory::TemporaryDirectory()
{
    std::string name = (std::filesystem::temp_directory_path() / "vs_pfs-bench-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) {
        give_up("no temporary directory");
    }
    path_ = name;
}

TemporaryDirectory::~TemporaryDirectory()
{
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

std::string TemporaryDirectory::write(const std::string &name, std::string_view bytes) const
{
    std::string path = (path_ / name).string();
    std::ofstream file(path, std::ios::binary);
    file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    file.close();
    if (!file) {
        give_up("cannot write " + path);
    }
    return path;
}

} // namespace bench

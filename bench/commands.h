// Commands and their input files.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace bench {

using Command = std::vector<std::string>;

// Averages of one run, and the peak resident memory of any run.
struct CommandCost {
    double processor_seconds;
    double clock_seconds;
    double peak_kilobytes;
};

// Runs a command in a separate process and discards its output. Exits if the command fails.
CommandCost cost_of_command(const Command &command, int times = 1);

bool is_installed(const std::string &name);

// A directory for as long as the object lives.
class TemporaryDirectory {
public:
    TemporaryDirectory();
    ~TemporaryDirectory();
    TemporaryDirectory(const TemporaryDirectory &) = delete;
    TemporaryDirectory &operator=(const TemporaryDirectory &) = delete;

    // Returns the file's path.
    std::string write(const std::string &name, std::string_view bytes) const;

private:
    std::filesystem::path path_;
};

} // namespace bench

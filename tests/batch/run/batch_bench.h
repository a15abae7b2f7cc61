// Runs batches as their users do, and shows what they leave as text.
#pragma once

#include "tests/command/command_fixture.h"

#include <nlohmann/json.hpp>

#include <csignal>
#include <fstream>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace tests {

inline std::vector<std::string> lines_of(const std::string &text)
{
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

// In a folder of its own, with a folder "in" that is empty.
class Batch : public Command {
protected:
    void SetUp() override
    {
        Command::SetUp();
        fs::create_directories(directory / "in");
    }

    void write_letter(const std::string &name, const std::string &text) const
    {
        fs::create_directories((directory / name).parent_path());
        write(name, document_of(pfsdoc::DocumentKind::write_b, bytes("0D '" + text + "' 0D 0E")));
    }
    void write_letters(int count) const
    {
        for (int i = 0; i < count; ++i) {
            write_letter("in/" + std::to_string(i / 100) + "/letter" + std::to_string(i),
                         "Letter number " + std::to_string(i));
        }
    }

    std::string manifest(const std::string &name = "out/manifest.ndjson") const
    {
        return content_of(directory / name);
    }

    // "name: status", one a line, with the error's words.
    std::string statuses(const std::string &name = "out/manifest.ndjson") const
    {
        std::string words;
        for (const std::string &line : lines_of(manifest(name))) {
            const auto json = nlohmann::json::parse(line);
            words +=
                json.at("name").get<std::string>() + ": " + json.at("status").get<std::string>();
            words += json.at("error").is_null()
                         ? "\n"
                         : ", " + json.at("error").at("words").get<std::string>() + "\n";
        }
        return words;
    }

    // All files below a folder, with their content.
    std::map<std::string, std::string> files(const std::string &folder = "out") const
    {
        std::map<std::string, std::string> found;
        for (const auto &entry : fs::recursive_directory_iterator(directory / folder)) {
            if (entry.is_regular_file()) {
                found[fs::relative(entry.path(), directory / folder)] = content_of(entry.path());
            }
        }
        return found;
    }

    std::string names(const std::string &folder = "out") const
    {
        std::string words;
        for (const auto &[name, content] : files(folder)) {
            words += name + "\n";
        }
        return words;
    }

    pid_t start(const std::vector<std::string> &arguments) const
    {
        const pid_t child = ::fork();
        if (child == 0) {
            become(directory, arguments, {});
        }
        return child;
    }

    // Until a run has written that many lines.
    void wait_for_lines(std::size_t count) const
    {
        wait_until([&] { return lines_of(manifest(partial)).size() >= count; });
    }
    void wait_for_manifest() const
    {
        wait_until([&] { return fs::exists(directory / partial); });
    }
    static void wait_until(const std::function<bool()> &is_so)
    {
        constexpr int longest_wait = 20000;
        for (int waited = 0; waited < longest_wait && !is_so(); ++waited) {
            ::usleep(1000);
        }
        EXPECT_TRUE(is_so());
    }

    // One that waits for a file or reads one, of a run that has begun; 0 where there is none, or
    // the kernel does not tell.
    static pid_t first_worker(pid_t run)
    {
        const std::string name = std::to_string(run);
        std::ifstream children("/proc/" + name + "/task/" + name + "/children");
        for (pid_t child = 0; children >> child;) {
            std::string program;
            std::getline(std::ifstream("/proc/" + std::to_string(child) + "/comm"), program);
            if (program == "pfsdoc-worker") {
                return child;
            }
        }
        return 0;
    }

    static constexpr const char *partial = "out/manifest.ndjson.partial";
};

} // namespace tests

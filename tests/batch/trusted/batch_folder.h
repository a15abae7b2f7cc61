// A folder of its own for each test, and what a batch finds in it as text, one input a line:
// its name, and its content or its error.
#pragma once

#include "batch/sandboxed/archive_reader.h"
#include "batch/sandboxed/limits.h"
#include "batch/trusted/inputs.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#include <poll.h>
#include <string>
#include <unistd.h>

namespace tests {

namespace fs = std::filesystem;

inline std::string content_of(const pfsdoc::base::Descriptor &file)
{
    std::string content;
    std::array<char, 65536> part{};
    for (;;) {
        const ssize_t count = ::read(file.get(), part.data(), part.size());
        if (count <= 0) {
            return count == 0 ? content : "cannot be read";
        }
        content.append(part.data(), static_cast<std::size_t>(count));
    }
}

inline std::string_view kind_of(const pfsdoc::Error &error)
{
    switch (error.kind) {
    case pfsdoc::ErrorKind::input: return "input";
    case pfsdoc::ErrorKind::limit: return "limit";
    case pfsdoc::ErrorKind::damaged: return "damaged";
    case pfsdoc::ErrorKind::not_a_document: return "skipped";
    default: return "other";
    }
}

inline std::string line_of(const pfsdoc::batch::BatchInput &input)
{
    if (input.error) {
        EXPECT_LT(input.file.get(), 0) << input.name << " has an error and is open";
        EXPECT_FALSE(pfsdoc::batch::has_output(input.status)) << input.name;
        return input.name + " !" + std::string(kind_of(*input.error)) + " " + input.error->what +
               "\n";
    }
    EXPECT_EQ(::lseek(input.file.get(), 0, SEEK_CUR), 0) << input.name;
    const std::string content = content_of(input.file);
    EXPECT_EQ(content.size(), input.size) << input.name;
    return input.name + " = " + content + "\n";
}

inline bool wait_for_input(int descriptor, std::chrono::steady_clock::time_point deadline)
{
    using std::chrono::milliseconds;
    constexpr milliseconds for_ever = std::chrono::hours(1);
    const auto now = std::chrono::steady_clock::now();
    const milliseconds left =
        deadline - now > for_ever ? for_ever : std::chrono::ceil<milliseconds>(deadline - now);
    pollfd polled{descriptor, POLLIN, 0};
    return ::poll(&polled, 1, static_cast<int>(left.count())) == 1;
}

inline pfsdoc::Result<pfsdoc::batch::ChildProcess>
start_archive_reader(int archive, int output, const pfsdoc::batch::ArchiveSettings &settings)
{
    const std::array<int, 2> kept = {archive, output};
    return pfsdoc::batch::ChildProcess::start(kept, [&] {
        const auto walls = pfsdoc::sandbox::Sandbox::build(settings.sandbox);
        pfsdoc::batch::run_archive_reader(archive, output, settings,
                                          {walls, pfsdoc::batch::address_space()});
    });
}

// As a run opens them, but for the waiting, where it has workers to look after.
inline std::unique_ptr<pfsdoc::batch::BatchInputs> opened(pfsdoc::batch::InputOptions options)
{
    const pfsdoc::batch::ArchiveSettings settings = options;
    options.start_archive_reader = [settings](int archive, int output) {
        return start_archive_reader(archive, output, settings);
    };
    if (!options.wait) {
        options.wait = wait_for_input;
    }
    return pfsdoc::batch::open_inputs(options);
}

// The process that reads an archive; 0 where there is none.
inline pid_t archive_reader()
{
    const std::string self = std::to_string(::getpid());
    pid_t child = 0;
    std::ifstream("/proc/" + self + "/task/" + self + "/children") >> child;
    return child;
}

// "name < source", one a line, and the status of those that are not read.
inline std::string sources_of(const pfsdoc::batch::InputOptions &options)
{
    std::string lines;
    const auto inputs = opened(options);
    while (const std::optional<pfsdoc::batch::BatchInput> input = inputs->next()) {
        lines += input->name + " < " + input->source;
        lines += input->error ? " " + std::string(status_name(input->status)) + "\n" : "\n";
    }
    return lines;
}

inline std::string lines_of(const pfsdoc::batch::InputOptions &options)
{
    std::string lines;
    const auto inputs = opened(options);
    while (const std::optional<pfsdoc::batch::BatchInput> input = inputs->next()) {
        lines += line_of(*input);
    }
    EXPECT_FALSE(inputs->next().has_value()) << "there is more behind the end";
    return lines;
}

// The tests run in it, so that paths in the goldens are short.
class BatchFolder : public ::testing::Test {
protected:
    void SetUp() override
    {
        std::string name = (fs::temp_directory_path() / "pfsdoc-XXXXXX").string();
        ASSERT_NE(::mkdtemp(name.data()), nullptr);
        directory = name;
        before = fs::current_path();
        fs::current_path(directory);
    }
    void TearDown() override
    {
        fs::current_path(before);
        fs::remove_all(directory);
    }

    // With the folders that it lies in.
    static void write(const fs::path &path, const std::string &content)
    {
        if (path.has_parent_path()) {
            fs::create_directories(path.parent_path());
        }
        std::ofstream(path, std::ios::binary) << content;
    }

    static std::string found(const std::vector<std::string> &paths)
    {
        pfsdoc::batch::InputOptions options;
        options.paths = paths;
        return lines_of(options);
    }

    static std::string listed(const std::string &content)
    {
        write("list", content);
        pfsdoc::batch::InputOptions options;
        options.list_files = {"list"};
        return lines_of(options);
    }

    fs::path directory;
    fs::path before;
};

} // namespace tests

// An output folder of its own for each test, and what is in it as text.
#pragma once

#include "batch/trusted/output_folder.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <optional>
#include <string>
#include <unistd.h>

namespace tests {

namespace fs = std::filesystem;
using pfsdoc::ErrorKind;
using pfsdoc::batch::CommitRule;
using pfsdoc::batch::OutputContent;
using pfsdoc::batch::PendingOutput;
using pfsdoc::batch::Placement;

inline OutputContent content(const std::string &text)
{
    return {text.size(), pfsdoc::batch::sha256_of(text)};
}

class OutputBench : public testing::Test {
protected:
    void SetUp() override
    {
        std::string name = (fs::temp_directory_path() / "pfsdoc-XXXXXX").string();
        ASSERT_NE(::mkdtemp(name.data()), nullptr);
        directory = name;
        open_folder();
    }
    void TearDown() override
    {
        folder.reset();
        fs::remove_all(directory);
    }

    void open_folder()
    {
        auto opened = pfsdoc::batch::OutputFolder::open(directory);
        ASSERT_TRUE(opened.ok()) << opened.error().what;
        folder.emplace(std::move(opened.value()));
    }

    // With the folders that it lies in.
    void write(const std::string &name, const std::string &text) const
    {
        fs::create_directories((directory / name).parent_path());
        std::ofstream(directory / name) << text;
    }

    PendingOutput created(const std::string &name, const std::string &text) const
    {
        auto output = folder->create(name);
        EXPECT_TRUE(output.ok());
        EXPECT_EQ(::write(output.value().descriptor(), text.data(), text.size()),
                  static_cast<ssize_t>(text.size()));
        return std::move(output.value());
    }

    static Placement placement(PendingOutput &output, const CommitRule &rule = {})
    {
        const auto placed = output.commit(rule);
        EXPECT_TRUE(placed.ok()) << placed.error().what;
        return placed.ok() ? placed.value() : Placement::kept;
    }

    std::string content_of(const std::string &name) const
    {
        std::ifstream file(directory / name);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    // "a=1 b/c=2 ", sorted by name; temporary names are "?".
    std::string files() const
    {
        std::map<std::string, std::string> found;
        for (const auto &entry : fs::recursive_directory_iterator(directory)) {
            const std::string name = fs::relative(entry.path(), directory);
            if (entry.is_regular_file() && name != pfsdoc::batch::marker_name) {
                found[name.find(".pfsdoc-") == std::string::npos ? name : "?"] = content_of(name);
            }
        }
        std::string words;
        for (const auto &[name, text] : found) {
            words += name + "=" + text + " ";
        }
        return words;
    }

    fs::path directory;
    std::optional<pfsdoc::batch::OutputFolder> folder;
};

} // namespace tests

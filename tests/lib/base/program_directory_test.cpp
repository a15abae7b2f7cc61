// The running program's folder, here this test's own.
#include "lib/base/program_directory.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace {

namespace fs = std::filesystem;

TEST(ProgramDirectory, IsThisProgramsOwn)
{
    const fs::path directory = pfsdoc::base::program_directory();
    EXPECT_TRUE(directory.is_absolute()) << directory;
    EXPECT_TRUE(fs::exists(directory / fs::canonical("/proc/self/exe").filename())) << directory;
}

} // namespace

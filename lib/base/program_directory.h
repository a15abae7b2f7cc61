// Where the running program stands, to find what was installed or built beside it.
// Test: tests/lib/base/program_directory_test.cpp.
#pragma once

#include <filesystem>

namespace pfsdoc::base {

// The folder of its file, links followed; empty where the system does not say.
std::filesystem::path program_directory();

} // namespace pfsdoc::base

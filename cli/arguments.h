// What programs of this project do with what they were started with, before anything else.
// Test: tests/command/command_test.cpp.
#pragma once

#include <string>
#include <vector>

namespace pfsdoc::cli {

// The arguments without the program's name, in the reverse order in which CLI11 takes them.
// Names that would be misread are given a path that leads to the same file.
std::vector<std::string> reversed_arguments(int argument_count, char **arguments);

// A standard stream that is closed would give its number to the next file that is opened, and
// messages would go into a document. The stand-ins fail when they are used.
void occupy_standard_streams();

} // namespace pfsdoc::cli

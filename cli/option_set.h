// Which of a command's options it has to know for the arguments that it was given. Setting an
// option up costs as much as reading some hundred characters, and most calls give no others
// than those that say what is read, in what format and to where. Test:
// tests/command/command_test.cpp.
#pragma once

#include <string>
#include <vector>

namespace pfsdoc::cli {

enum class OptionSet {
    usual, // operands, -o and -t
    all
};

// All of them as soon as an argument may be one of the others: an option that no argument
// names cannot be found by whoever looks for it. A help text names them all.
OptionSet wanted_options(const std::vector<std::string> &arguments);

} // namespace pfsdoc::cli

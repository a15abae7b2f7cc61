#include "cli/arguments.h"

#include <algorithm>
#include <fcntl.h>
#include <unistd.h>

namespace pfsdoc::cli {

namespace {

// Whether an argument that can only be a file's name would be taken for something else: for
// an option after "--", for a list of names in brackets.
bool is_misread_name(const std::string &argument, bool only_names)
{
    const bool is_bracketed =
        argument.size() > 1 && argument.front() == '[' && argument.back() == ']';
    return is_bracketed || (only_names && argument.size() > 1 && argument.front() == '-');
}

} // namespace

std::vector<std::string> reversed_arguments(int argument_count, char **arguments)
{
    std::vector<std::string> result;
    bool only_names = false;
    for (int index = 1; index < argument_count; ++index) {
        const std::string argument = arguments[index];
        if (!only_names && argument == "--") {
            only_names = true;
        } else {
            result.push_back(is_misread_name(argument, only_names) ? "./" + argument : argument);
        }
    }
    std::reverse(result.begin(), result.end());
    return result;
}

void occupy_standard_streams()
{
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (::fcntl(descriptor, F_GETFD) < 0) {
            ::open("/dev/null", descriptor == STDIN_FILENO ? O_WRONLY : O_RDONLY);
        }
    }
}

} // namespace pfsdoc::cli

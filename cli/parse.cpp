#include "cli/parse.h"

#include "cli/report.h"

#include <algorithm>
#include <span>
#include <string>
#include <utility>
#include <vector>

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

// In the reverse order, as the parser takes a vector. Names that would be misread become paths
// to the same file; "--" is not the parser's to see, which takes no subcommand after it.
std::vector<std::string> reversed(int argument_count, char **arguments)
{
    std::vector<std::string> result;
    bool only_names = false;
    for (const std::string argument : std::span(arguments, arguments + argument_count).subspan(1)) {
        if (!only_names && argument == "--") {
            only_names = true;
        } else {
            result.push_back(is_misread_name(argument, only_names) ? "./" + argument : argument);
        }
    }
    std::reverse(result.begin(), result.end());
    return result;
}

} // namespace

std::optional<int> parse(CLI::App &app, int argument_count, char **arguments, const char *remedy)
{
    try {
        app.parse(reversed(argument_count, arguments));
    } catch (const CLI::CallForHelp &) {
        return print(app.help());
    } catch (const CLI::CallForVersion &version) {
        return print(std::string(version.what()) + "\n");
    } catch (const CLI::ParseError &error) {
        return report("", {ErrorKind::usage, error.what(), remedy});
    }
    return std::nullopt;
}

} // namespace pfsdoc::cli

#include "cli/parse.h"

#include "cli/near_miss.h"
#include "cli/report.h"

#include <algorithm>
#include <cstddef>
#include <span>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace pfsdoc::cli {

namespace {

constexpr std::size_t help_width = 80; // columns

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

// Where a line continues: below the last stretch of text behind two spaces or more.
std::size_t continuation_column(const std::string &line)
{
    const std::size_t gap = line.rfind("  ", help_width);
    const std::size_t start = line.find_first_not_of(' ');
    return gap == std::string::npos || gap + 2 < start ? start : gap + 2;
}

// Of the command that was called, as far as they have long names.
std::vector<std::string> option_names(const CLI::App &app)
{
    const auto called = app.get_subcommands();
    const CLI::App &command = called.empty() ? app : *called.front();
    std::vector<std::string> names;
    for (const CLI::Option *option : command.get_options()) {
        for (const std::string &name : option->get_lnames()) {
            names.push_back("--" + name);
        }
    }
    return names;
}

// For arguments that nothing takes: an option may have been mistyped.
std::string remedy_for_extras(const CLI::App &app, const char *otherwise)
{
    for (const std::string &extra : app.remaining(true)) {
        if (extra.starts_with("--")) {
            return did_you_mean(extra.substr(0, extra.find('=')), option_names(app), otherwise);
        }
    }
    return otherwise;
}

// The text with its lines filled to the width of a terminal. What is too long continues below its
// description, which begins behind two spaces, or below the line's own beginning.
std::string wrapped(const std::string &text)
{
    std::string result;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        while (line.size() > help_width) {
            const std::size_t start = continuation_column(line);
            std::size_t end = line.rfind(' ', help_width);
            if (end == std::string::npos || end <= start) {
                break; // a word of its own length
            }
            result.append(line, 0, end).append("\n");
            line = std::string(start, ' ') + line.substr(end + 1);
        }
        result.append(line).append("\n");
    }
    return result;
}

} // namespace

std::optional<int> parse(CLI::App &app, int argument_count, char **arguments, const char *remedy)
{
    try {
        app.parse(reversed(argument_count, arguments));
    } catch (const CLI::CallForHelp &) {
        return print(wrapped(app.help()));
    } catch (const CLI::CallForVersion &version) {
        return print(std::string(version.what()) + "\n");
    } catch (const CLI::ExtrasError &error) {
        return report("", {ErrorKind::usage, error.what(), remedy_for_extras(app, remedy)});
    } catch (const CLI::ParseError &error) {
        return report("", {ErrorKind::usage, error.what(), remedy});
    }
    return std::nullopt;
}

} // namespace pfsdoc::cli

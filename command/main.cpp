// The command pfsdoc: finds the subcommand that is called. The manual page is
// docs/man/pfsdoc.1, which must agree with the help text. Test: tests/command/command_test.cpp.
#include "cli/interruption.h"
#include "cli/near_miss.h"
#include "cli/parse.h"
#include "cli/program.h"
#include "cli/report.h"
#include "command/batch_command.h"
#include "command/subcommand.h"

#include <algorithm>
#include <cstdio>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <vector>

namespace {

using namespace pfsdoc;
using namespace pfsdoc::cli;

constexpr const char *description =
    "Reads documents of PFS: WRITE, Professional Write, IBM Writing Assistant\n"
    "and PFS: First Choice.";

constexpr const char *short_help =
    R"(pfsdoc reads documents of PFS: WRITE, Professional Write, IBM Writing Assistant
and PFS: First Choice.

  pfsdoc LETTER                         shows a document as text
  pfsdoc convert LETTER -o letter.odt   writes it in another format
  pfsdoc identify *                     says what each file is
  pfsdoc batch letters/ -o out -t odt   converts whole folders
  pfsdoc help                           lists everything else
)";

constexpr const char *examples =
    R"(Without a subcommand a file is shown as text, or converted where -o or -t is
given. "pfsdoc help SUBCOMMAND" is the help of that subcommand.

Examples:
  pfsdoc identify *            what each file is, by its content
  pfsdoc LETTER                the letter as text, on the screen
  pfsdoc convert LETTER -o letter.html
                               as a page for the browser
  pfsdoc trace --fold LETTER   what the module reports, one event a line
  pfsdoc explain LETTER        every byte of it, and what it was read as
  pfsdoc text - < LETTER       from standard input
  pfsdoc batch letters/ -o out -t odt
                               a whole folder, and what became of each file

The exit code is 0 if all went well; pfsdoc(1) lists the others.)";

constexpr const Subcommand *subcommands[] = {
    &identify_subcommand, &text_subcommand,  &convert_subcommand,
    &explain_subcommand,  &trace_subcommand, &batch_subcommand,
};

// The one of this name; all where there is none, as for the help text. Setting one up takes as
// long as reading a page.
std::span<const Subcommand *const> candidates(std::string_view name)
{
    const std::span<const Subcommand *const> all = subcommands;
    const auto found = std::find_if(all.begin(), all.end(), [name](const Subcommand *subcommand) {
        return subcommand->name == name;
    });
    return found == all.end() ? all : all.subspan(static_cast<std::size_t>(found - all.begin()), 1);
}

bool is_command(std::string_view word)
{
    return candidates(word).size() == 1;
}

// Whether a first word can only be a file: one is there, or it looks like a file's name.
bool is_file(const std::string &word)
{
    struct stat status {};
    return word == "-" || word.find_first_of("./") != std::string::npos ||
           ::lstat(word.c_str(), &status) == 0;
}

// The command of a command line that begins with a file: an output's name may select its format.
const char *command_for_files(const std::vector<std::string> &words)
{
    const auto end = std::find(words.begin(), words.end(), "--");
    const bool has_output = std::any_of(words.begin(), end, [](const std::string &word) {
        return word.starts_with("-o") || word.starts_with("--output") || word.starts_with("-t") ||
               word.starts_with("--to");
    });
    return has_output ? convert_subcommand.name : text_subcommand.name;
}

// Whether the words begin with an option of pfsdoc itself, or name a command after one that is
// none: then they are the parser's.
bool begins_with_own_option(const std::vector<std::string> &words)
{
    const std::string &first = words.front();
    return first == "-h" || first == "--help" || first == "--version" || first == "--" ||
           std::any_of(words.begin(), words.end(), is_command);
}

// Puts in front what a person left out, or writes otherwise than the parser takes it.
Status complete(std::vector<std::string> &words)
{
    if (words.front() == "help") {
        words = words.size() == 1 ? std::vector<std::string>{"--help"}
                                  : std::vector<std::string>{words[1], "--help"};
    }
    const std::string first = words.front();
    const bool is_option = first.starts_with("-") && first != "-";
    if (is_command(first) || (is_option && begins_with_own_option(words))) {
        return {};
    }
    if (is_option || is_file(first)) {
        words.insert(words.begin(), command_for_files(words));
        return {};
    }
    std::vector<std::string> known = {"help"};
    for (const Subcommand *subcommand : subcommands) {
        known.emplace_back(subcommand->name);
    }
    return Error{ErrorKind::usage, "there is no command and no file " + first,
                 did_you_mean(first, known, "see pfsdoc --help")};
}

// The one subcommand that is called, by the program's name and the completed words.
int run_subcommand(std::vector<char *> &arguments)
{
    CLI::App app(description, "pfsdoc");
    app.set_version_flag("--version", "pfsdoc " PFSDOC_VERSION, "Print the version and exit");
    app.require_subcommand(1);
    app.footer(examples);
    Options options;
    const Subcommand *called = nullptr;
    for (const Subcommand *subcommand : candidates(arguments[1])) {
        CLI::App *parser = app.add_subcommand(subcommand->name, subcommand->description);
        parser->preparse_callback([&options, &called, parser, subcommand](std::size_t) {
            called = subcommand;
            parser->footer(subcommand->footer);
            options.add_to(*parser, subcommand->command);
        });
    }
    const std::optional<int> ended =
        parse(app, static_cast<int>(arguments.size()) - 1, arguments.data(), "see pfsdoc --help");
    return ended ? *ended : called->run(options);
}

int run(int argument_count, char **arguments)
{
    handle_interruptions();
    if (argument_count < 2) {
        static_cast<void>(std::fputs(short_help, stderr));
        return exit_code(ErrorKind::usage);
    }
    std::vector<std::string> words(arguments + 1, arguments + argument_count);
    if (const Status failure = complete(words); !failure.ok()) {
        return report("", failure.error());
    }
    std::vector<char *> completed = {arguments[0]};
    for (std::string &word : words) {
        completed.push_back(word.data());
    }
    completed.push_back(nullptr);
    return words.front() == batch_subcommand.name ? become_batch(completed.data() + 1)
                                                  : run_subcommand(completed);
}

} // namespace

int main(int argument_count, char **arguments)
{
    return run_program(run, argument_count, arguments);
}

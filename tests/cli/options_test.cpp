// The table of options, and what a command makes of its part of it.
#include "cli/options.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <initializer_list>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

namespace {

using namespace pfsdoc;
using namespace pfsdoc::cli;

constexpr Command all_commands[] = {identify_command, text_command,    convert_command,
                                    trace_command,    explain_command, batch_command};

std::vector<std::string> names_of(const OptionEntry &entry)
{
    std::vector<std::string> names;
    std::istringstream all(entry.names);
    for (std::string name; std::getline(all, name, ',');) {
        names.push_back(name);
    }
    return names;
}

TEST(OptionTable, NamesEachOptionOnceACommand)
{
    for (const Command command : all_commands) {
        std::set<std::string> seen;
        for (const OptionEntry &entry : option_table()) {
            for (const std::string &name : names_of(entry)) {
                EXPECT_TRUE((entry.commands & command) == 0 || seen.insert(name).second) << name;
            }
        }
        EXPECT_FALSE(seen.empty());
    }
}

// What excludes another option must find it in every command that has both.
TEST(OptionTable, IsSetUpForEachCommand)
{
    for (const Command command : all_commands) {
        CLI::App app;
        Options options;
        ASSERT_NO_THROW(options.add_to(app, command));
        const std::string help = app.help();
        for (const OptionEntry &entry : option_table()) {
            if ((entry.commands & command) != 0) {
                EXPECT_NE(help.find(entry.names), std::string::npos) << entry.names;
            }
        }
    }
}

// A command line without its first word, parsed.
struct Parsed {
    Parsed(Command command, std::vector<std::string> arguments)
    {
        options.add_to(app, command);
        std::reverse(arguments.begin(), arguments.end());
        app.parse(std::move(arguments));
    }

    CLI::App app;
    Options options;
};

TEST(Options, HaveValuesWithoutBeingGiven)
{
    const Parsed parsed(text_command, {"LETTER"});
    const Arguments &arguments = parsed.options.arguments();
    EXPECT_EQ(arguments.paths, std::vector<std::string>{"LETTER"});
    EXPECT_TRUE(arguments.writer.page_breaks);
    EXPECT_TRUE(arguments.writer.headers);
    EXPECT_FALSE(arguments.writer.wrap);
    EXPECT_FALSE(arguments.max_output);
}

TEST(Options, TakeTheValuesThatAreGiven)
{
    const Parsed parsed(convert_command,
                        {"--no-headers", "LETTER", "--wrap", "0", "--max-output=2KB", "-tjson"});
    const Arguments &arguments = parsed.options.arguments();
    EXPECT_FALSE(arguments.writer.headers);
    EXPECT_TRUE(arguments.writer.page_breaks);
    EXPECT_EQ(arguments.writer.wrap, 0U);
    EXPECT_EQ(arguments.max_output, 2048U);
    EXPECT_EQ(arguments.format, "json");
}

TEST(Options, OfABatchTakeListsOneByOne)
{
    const Parsed parsed(batch_command, {"--files-from", "a", "in", "--files-from", "b", "-o", "out",
                                        "-t", "text", "--max-time", "0.5", "-j", "3"});
    const Arguments &arguments = parsed.options.arguments();
    EXPECT_EQ(arguments.list_files, (std::vector<std::string>{"a", "b"}));
    EXPECT_EQ(arguments.paths, (std::vector<std::string>{"in"}));
    EXPECT_EQ(arguments.max_seconds, 0.5);
    EXPECT_EQ(arguments.jobs, 3U);
}

TEST(Options, RefuseSizesThatAreNone)
{
    for (const char *option : {"--max-output", "--max-input", "--max-memory"}) {
        for (const char *size : {"-3", "ten", "1x", "", "99999999999999999999"}) {
            EXPECT_THROW(Parsed(batch_command, {"-o", "out", "-t", "text", option, size}),
                         CLI::ParseError)
                << option << " " << size;
        }
    }
}

// Every option of a writer, by a format that reads it and by one that does not.
TEST(Options, AreRefusedWhereTheFormatDoesNotReadThem)
{
    struct Expectation {
        const char *option;
        const char *read_by;
        const char *not_read_by;
    };
    for (const auto &[option, read_by, not_read_by] :
         {Expectation{"--no-page-breaks", "json", "trace"},
          Expectation{"--no-headers", "html", "trace"}, Expectation{"--commands", "text", "json"},
          Expectation{"--wrap=6", "text", "html"}, Expectation{"--raw-lines", "text", "json"},
          Expectation{"--lines", "json", "text"}, Expectation{"--offsets", "trace", "json"},
          Expectation{"--fold", "trace", "text"}}) {
        const Parsed parsed(convert_command, {"LETTER", option});
        EXPECT_TRUE(parsed.options.check_format(*find_format(read_by)).ok()) << option;
        const Status refused = parsed.options.check_format(*find_format(not_read_by));
        ASSERT_FALSE(refused.ok()) << option;
        EXPECT_EQ(refused.error().kind, ErrorKind::usage);
        EXPECT_TRUE(std::string_view(option).starts_with(
            refused.error().what.substr(0, refused.error().what.find(' '))))
            << refused.error().what;
    }
}

TEST(Options, SayWhichFormatAloneReadsThem)
{
    for (const OptionEntry &entry : option_table()) {
        if (std::string_view(entry.names) == "--fold") {
            CLI::App convert;
            Options of_convert;
            of_convert.add_to(convert, convert_command);
            EXPECT_NE(convert.help().find(std::string("trace: ") + entry.help), std::string::npos);
            CLI::App trace;
            Options of_trace;
            of_trace.add_to(trace, trace_command);
            EXPECT_EQ(trace.help().find("trace: "), std::string::npos);
        }
    }
}

TEST(OptionSet, HasWhatWasPutIn)
{
    constexpr OptionSet none;
    constexpr OptionSet two = WriterOption::lines | WriterOption::wrap;
    EXPECT_TRUE(two.has_all(WriterOption::lines) && two.has_all(WriterOption::wrap));
    EXPECT_TRUE(two.has_all(two) && two.has_all(none) && none.has_all(none));
    EXPECT_FALSE(two.has_all(WriterOption::raw_lines) || none.has_all(WriterOption::lines));
    EXPECT_FALSE(OptionSet(WriterOption::raw_lines).has_all(WriterOption::lines));
}

} // namespace

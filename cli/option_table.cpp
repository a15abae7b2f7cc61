#include "cli/option_table.h"

#include "cli/number_checks.h"

#include <algorithm>

namespace pfsdoc::cli {

namespace {

constexpr double shortest_time = 0.001; // seconds
constexpr double longest_time = 86400;

// ------------------------------------------- how an option reaches its value ----------
// A path leads to the value: members of Arguments, and of what is inside it.

template <auto... path>
CLI::Option *flag(CLI::App &app, const OptionEntry &entry, Arguments &arguments)
{
    return app.add_flag(entry.names, (arguments.*....*path), entry.help);
}

// For what is on unless the option turns it off.
template <auto... path>
CLI::Option *turn_off(CLI::App &app, const OptionEntry &entry, Arguments &arguments)
{
    bool &value = (arguments.*....*path);
    return app.add_flag_callback(
        entry.names, [&value] { value = false; }, entry.help);
}

template <auto... path>
CLI::Option *value(CLI::App &app, const OptionEntry &entry, Arguments &arguments)
{
    return app.add_option(entry.names, (arguments.*....*path), entry.help)
        ->option_text(entry.argument);
}

template <auto... path>
CLI::Option *required(CLI::App &app, const OptionEntry &entry, Arguments &arguments)
{
    return value<path...>(app, entry, arguments)->required();
}

// One value each time that it is given: what follows is an operand.
template <auto... path>
CLI::Option *repeated(CLI::App &app, const OptionEntry &entry, Arguments &arguments)
{
    return value<path...>(app, entry, arguments)
        ->allow_extra_args(false)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
}

template <auto... path>
CLI::Option *size(CLI::App &app, const OptionEntry &entry, Arguments &arguments)
{
    return value<path...>(app, entry, arguments)->transform(number_of_bytes);
}

CLI::Option *color(CLI::App &app, const OptionEntry &entry, Arguments &arguments)
{
    return value<&Arguments::color>(app, entry, arguments)
        ->check(CLI::IsMember({"auto", "always", "never"}));
}

CLI::Option *jobs(CLI::App &app, const OptionEntry &entry, Arguments &arguments)
{
    return value<&Arguments::jobs>(app, entry, arguments)->transform([](const std::string &text) {
        return whole_number(text, 1, most_jobs);
    });
}

CLI::Option *files_per_process(CLI::App &app, const OptionEntry &entry, Arguments &arguments)
{
    return value<&Arguments::files_per_process>(app, entry, arguments)
        ->transform(
            [](const std::string &text) { return whole_number(text, 1, most_files_per_process); });
}

CLI::Option *max_time(CLI::App &app, const OptionEntry &entry, Arguments &arguments)
{
    return value<&Arguments::max_seconds>(app, entry, arguments)
        ->transform([](const std::string &text) {
            return number_of_seconds(text, shortest_time, longest_time);
        });
}

CLI::Option *columns(CLI::App &app, const OptionEntry &entry, Arguments &arguments)
{
    return value<&Arguments::writer, &WriterOptions::wrap>(app, entry, arguments)
        ->transform(
            [](const std::string &text) { return whole_number(text, 0, max_wrap_columns); });
}

CLI::Option *sandbox(CLI::App &app, const OptionEntry &entry, Arguments &arguments)
{
    return value<&Arguments::sandbox>(app, entry, arguments)
        ->check(CLI::IsMember({"off", "available", "require"}));
}

// With a line for each format.
CLI::Option *format(CLI::App &app, const OptionEntry &entry, Arguments &arguments)
{
    constexpr std::size_t name_width = 10;
    CLI::Option *option = value<&Arguments::format>(app, entry, arguments);
    std::string help = entry.help;
    for (const Format *one : formats()) {
        std::string name(one->name);
        name.resize(std::max(name_width, name.size() + 1), ' ');
        help.append("\n  ").append(name).append(one->description);
    }
    return option->description(help);
}

// ------------------------------------------------------------------------- the table -----

constexpr unsigned one_document = text_command | convert_command | trace_command | explain_command;
constexpr unsigned converting = text_command | convert_command | batch_command;

using enum WriterOption;

constexpr OptionEntry all_options[] = {
    {trace_command | explain_command, "FILE", " ", "the document; - is standard input",
     required<&Arguments::file>},
    {text_command | convert_command, "FILE", "...", "the documents; - is standard input",
     required<&Arguments::paths>},
    {identify_command, "FILE", "...", "the files; - is standard input",
     required<&Arguments::paths>},
    {batch_command, "IN", " ", "files, folders, and zip and tar archives",
     value<&Arguments::paths>},
    {batch_command, "--files-from", "FILE",
     "read file names from this file, one a line or each\n"
     "ended by a NUL byte; - is standard input",
     repeated<&Arguments::list_files>},
    {text_command | convert_command, "-o,--output", "FILE",
     "write to this file, whole or not at all, or to files in this folder",
     value<&Arguments::output>},
    {trace_command | explain_command, "-o,--output", "FILE",
     "write to this file, whole or not at all", value<&Arguments::output>},
    {one_document, "--no-clobber", nullptr, "replace no file that exists already",
     flag<&Arguments::no_clobber>},
    {batch_command, "-o,--output", "OUT", "the folder to write to; created if missing",
     value<&Arguments::output>},
    {convert_command, "-t,--to", "FORMAT", "the output format:", format},
    {batch_command, "-t,--to", "FORMAT", "the output format; see pfsdoc convert --help",
     value<&Arguments::format>},
    {batch_command, "--manifest", "FILE", "the manifest; default: OUT/manifest.ndjson",
     value<&Arguments::manifest>},
    {identify_command, "-v,--verbose", nullptr, "say how certain it is, and why",
     flag<&Arguments::verbose>},
    {batch_command, "--verify", "OUT",
     "convert nothing; compare the outputs in this folder\nwith the manifest",
     value<&Arguments::verified>},
    {batch_command, "--overwrite", nullptr,
     "replace files that no earlier run wrote, or that\nwere changed since; never one that is read",
     flag<&Arguments::overwrite>},
    {identify_command, "--json", nullptr, "write an array of JSON objects", flag<&Arguments::json>},
    {identify_command,
     "--lines",
     nullptr,
     "write JSON objects, one a line",
     flag<&Arguments::json_lines>,
     {},
     "--json"},
    {explain_command, "--json", nullptr, "write JSON objects, one a line", flag<&Arguments::json>},

    {converting, "--no-page-breaks", nullptr, "leave page breaks out",
     turn_off<&Arguments::writer, &WriterOptions::page_breaks>, page_breaks},
    {converting, "--no-headers", nullptr, "leave header and footer lines out",
     turn_off<&Arguments::writer, &WriterOptions::headers>, headers},
    {converting, "--commands", nullptr, "show the commands embedded in the text",
     flag<&Arguments::writer, &WriterOptions::commands>, commands},
    {converting, "--wrap", "COLUMNS",
     "fill lines to this many columns; 0 gives each paragraph one line", columns, wrap},
    {converting, "--raw-lines", nullptr, "end lines where they end in the file",
     flag<&Arguments::writer, &WriterOptions::raw_lines>, raw_lines, "--wrap"},
    {convert_command | batch_command, "--lines", nullptr, "one object a line",
     flag<&Arguments::writer, &WriterOptions::lines>, lines},
    {convert_command | trace_command, "--offsets", nullptr,
     "put the position in the file before each event",
     flag<&Arguments::writer, &WriterOptions::offsets>, offsets},
    {convert_command | trace_command, "--fold", nullptr,
     "join consecutive characters into one line", flag<&Arguments::writer, &WriterOptions::fold>,
     fold},
    {trace_command, "--stop", nullptr,
     "stop at every paragraph, resume from the saved state; same output", flag<&Arguments::stop>},
    {converting | explain_command, "--charset", "NAME",
     "the character set of the input, such as 850; default: 437", value<&Arguments::charset>},
    {convert_command | text_command, "--report", nullptr,
     "list on standard error what the format cannot represent", flag<&Arguments::report>},
    {explain_command, "--color", "WHEN", "auto (on a terminal), always or never", color},

    {batch_command, "-v,--verbose", nullptr, "also say what holds the processes that read",
     flag<&Arguments::verbose>},
    {batch_command, "-q,--quiet", nullptr, "show neither progress nor the summary",
     flag<&Arguments::quiet>},
    {batch_command, "--strict", nullptr, "exit with 1 also when a file is not a document",
     flag<&Arguments::strict>},
    {batch_command, "-j,--jobs", "NUMBER",
     "how many files at a time; default: one for each processor", jobs},
    {batch_command, "--files-per-process", "NUMBER",
     "how many files a process reads before a fresh one takes over; default: 8; 1: a process for "
     "each file",
     files_per_process},
    {batch_command, "--max-input", "SIZE", "skip larger files; default: 4GB",
     size<&Arguments::max_input>},
    {batch_command, "--max-time", "SECONDS", "limit for each file; default: 30", max_time},
    {batch_command, "--max-memory", "SIZE", "limit for each file; default: 1GB",
     size<&Arguments::max_memory>},
    {batch_command, "--max-output", "SIZE", "limit for each file; default: 1GB",
     size<&Arguments::max_output>},
    {one_document, "--max-output", "SIZE",
     "end with code 6 when the output grows larger, such as 64MB", size<&Arguments::max_output>},
    {converting | explain_command, "--sandbox", "MODE",
     "off, available (as far as the system supports it), require", sandbox},
    {batch_command,
     "--no-sandbox",
     nullptr,
     "the same as --sandbox=off",
     flag<&Arguments::no_sandbox>,
     {},
     "--sandbox"},
    {one_document | batch_command, "--module", "PATH",
     "the filter module to read with, or \"linked\" for the built-in one",
     value<&Arguments::module>},
};

} // namespace

std::span<const OptionEntry> option_table()
{
    return all_options;
}

} // namespace pfsdoc::cli

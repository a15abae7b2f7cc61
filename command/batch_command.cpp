#include "command/batch_command.h"

#include "cli/report.h"
#include "command/subcommand.h"
#include "lib/base/program_directory.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <string>
#include <unistd.h>

namespace pfsdoc::cli {

namespace {

constexpr const char *program_name = "pfsdoc-batch";

// It was not the first word, so nothing of it can be meant.
int refuse(const Options &)
{
    return report(
        "", {ErrorKind::usage, "batch must be the first argument", "see pfsdoc batch --help"});
}

} // namespace

int become_batch(char **arguments)
{
    const std::filesystem::path own = base::program_directory();
    int reason = ENOENT;
    for (const std::filesystem::path &folder : {own, own / PFSDOC_LIBEXEC_DIRECTORY}) {
        ::execv((folder / program_name).c_str(), arguments);
        reason = errno == ENOENT ? reason : errno;
    }
    return report("", {ErrorKind::internal,
                       std::string(program_name) + " cannot be started: " + std::strerror(reason),
                       "install it beside pfsdoc"});
}

const Subcommand batch_subcommand = {
    .name = "batch",
    .description = "Write many documents in another format",
    .footer = "",
    .command = batch_command,
    .run = refuse,
};

} // namespace pfsdoc::cli

#include "command/batch_command.h"

#include "lib/base/program_directory.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <string>
#include <unistd.h>

namespace pfsdoc::cli {

namespace {

constexpr const char *program_name = "pfsdoc-batch";

class BatchCommandLine final : public CommandLine {
public:
    const char *name() const override
    {
        return batch_command.data();
    }
    const char *description() const override
    {
        return "Write many documents in another format";
    }
    // It was not the first word, so nothing of it can be meant.
    void add_options(CLI::App &, OptionSet) override {}
    int run(const CLI::App &) override
    {
        return report(
            "", {ErrorKind::usage, "batch must be the first argument", "see pfsdoc batch --help"});
    }
};

} // namespace

std::unique_ptr<CommandLine> batch_command_line()
{
    return std::make_unique<BatchCommandLine>();
}

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

} // namespace pfsdoc::cli

#include "cli/interruption.h"

#include <algorithm>
#include <array>
#include <csignal>
#include <limits.h>
#include <string_view>
#include <unistd.h>

namespace pfsdoc::cli {

namespace {

constexpr std::array<int, 3> ending_signals = {SIGINT, SIGTERM, SIGHUP};

// A handler may use nothing but what is set before it runs. Empty without a temporary file.
// Once the file has its own name, or is gone, the name belongs to nobody: it has this
// process's number in it.
std::array<char, PATH_MAX> temporary_path{};

void end_at_once(int)
{
    constexpr std::string_view message = "pfsdoc: interrupted\n";
    if (temporary_path[0] != '\0') {
        ::unlink(temporary_path.data());
    }
    [[maybe_unused]] const ssize_t written = ::write(STDERR_FILENO, message.data(), message.size());
    ::_exit(exit_code(ErrorKind::interrupted));
}

sigset_t ending_signal_set()
{
    sigset_t set;
    sigemptyset(&set);
    for (const int signal : ending_signals) {
        sigaddset(&set, signal);
    }
    return set;
}

} // namespace

void on_ending_signals(void (*handler)(int signal))
{
    struct sigaction action {};
    action.sa_handler = handler;
    action.sa_mask = ending_signal_set();
    for (const int signal : ending_signals) {
        struct sigaction before {};
        if (::sigaction(signal, nullptr, &before) == 0 && before.sa_handler != SIG_IGN) {
            ::sigaction(signal, &action, nullptr);
        }
    }
}

void handle_interruptions()
{
    on_ending_signals(end_at_once);
}

Result<std::unique_ptr<base::FileOutput>>
create_interruptible(const std::string &path, const base::FileOutputOptions &options)
{
    const sigset_t set = ending_signal_set();
    sigset_t before;
    ::sigprocmask(SIG_BLOCK, &set, &before);
    Result<std::unique_ptr<base::FileOutput>> output = base::FileOutput::create(path, options);
    if (output.ok() && output.value()->temporary_path().size() < temporary_path.size()) {
        const std::string &path_for_now = output.value()->temporary_path();
        std::copy_n(path_for_now.c_str(), path_for_now.size() + 1, temporary_path.data());
    }
    ::sigprocmask(SIG_SETMASK, &before, nullptr);
    return output;
}

} // namespace pfsdoc::cli

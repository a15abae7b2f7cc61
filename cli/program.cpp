#include "cli/program.h"

#include "cli/report.h"

#include <csignal>
#include <exception>
#include <fcntl.h>
#include <new>
#include <unistd.h>

namespace pfsdoc::cli {

namespace {

// A standard stream that is closed would give its number to the next file that is opened, and
// messages would go into a document. The stand-ins fail when they are used.
void occupy_standard_streams()
{
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (::fcntl(descriptor, F_GETFD) < 0) {
            ::open("/dev/null", descriptor == STDIN_FILENO ? O_WRONLY : O_RDONLY);
        }
    }
}

// As it was when the program began.
struct sigaction broken_pipe_action {};

// A reader that goes away, or a file that may not grow, is an output that cannot be written: what
// is begun is cleared away before the program ends.
void ignore_output_signals()
{
    ::sigaction(SIGPIPE, nullptr, &broken_pipe_action);
    for (const int signal : {SIGPIPE, SIGXFSZ}) {
        static_cast<void>(std::signal(signal, SIG_IGN));
    }
}

} // namespace

void end_if_reader_is_gone(const base::FileOutput &output)
{
    if (output.reader_is_gone()) {
        ::sigaction(SIGPIPE, &broken_pipe_action, nullptr);
        static_cast<void>(std::raise(SIGPIPE));
    }
}

int run_program(int (*run)(int argument_count, char **arguments), int argument_count,
                char **arguments)
{
    ignore_output_signals();
    occupy_standard_streams();
    try {
        return run(argument_count, arguments);
    } catch (const std::bad_alloc &) {
        return report("", {ErrorKind::internal, "there is not enough memory",
                           "close other programs and try again"});
    } catch (const std::exception &fault) {
        return report(
            "", {ErrorKind::internal, fault.what(), "please report this as a fault of pfsdoc"});
    }
}

} // namespace pfsdoc::cli

// The program pfsdoc-batch, which `pfsdoc batch` becomes. Test: tests/batch/run/batch_test.cpp.
#include "batch/command_line.h"
#include "batch/progress.h"
#include "cli/arguments.h"

#include <csignal>
#include <cstdio>
#include <exception>
#include <new>

namespace {

int run(int argument_count, char **arguments)
{
    pfsdoc::batch::BatchCommandLine line;
    try {
        line.app().parse(pfsdoc::cli::reversed_arguments(argument_count, arguments));
    } catch (const CLI::CallForHelp &) {
        return std::fputs(line.app().help().c_str(), stdout) >= 0 && std::fflush(stdout) == 0
                   ? 0
                   : pfsdoc::batch::report_error(
                         {pfsdoc::ErrorKind::output, "standard output cannot be written", ""});
    } catch (const CLI::ParseError &error) {
        return pfsdoc::batch::report_error(
            {pfsdoc::ErrorKind::usage, error.what(), "see pfsdoc batch --help"});
    }
    const pfsdoc::Result<pfsdoc::batch::BatchRequest> request = line.request();
    return request.ok() ? pfsdoc::batch::run_batch(request.value())
                        : pfsdoc::batch::report_error(request.error());
}

} // namespace

int main(int argument_count, char **arguments)
{
    for (const int signal : {SIGPIPE, SIGXFSZ}) {
        static_cast<void>(std::signal(signal, SIG_IGN));
    }
    pfsdoc::cli::occupy_standard_streams();
    try {
        return run(argument_count, arguments);
    } catch (const std::bad_alloc &) {
        return pfsdoc::batch::report_error({pfsdoc::ErrorKind::internal,
                                            "there is not enough memory",
                                            "end other programs and try again"});
    } catch (const std::exception &fault) {
        return pfsdoc::batch::report_error(
            {pfsdoc::ErrorKind::internal, fault.what(), "please report this as a fault of pfsdoc"});
    }
}

// The program pfsdoc-batch, which `pfsdoc batch` becomes. Test: tests/batch/run/batch_test.cpp.
#include "batch/command_line.h"
#include "cli/parse.h"
#include "cli/program.h"
#include "cli/report.h"

#include <optional>

namespace {

int run(int argument_count, char **arguments)
{
    pfsdoc::batch::BatchCommandLine line;
    if (const std::optional<int> ended = pfsdoc::cli::parse(line.app(), argument_count, arguments,
                                                            "see pfsdoc batch --help")) {
        return *ended;
    }
    const pfsdoc::Result<pfsdoc::batch::BatchRequest> request = line.request();
    return request.ok() ? pfsdoc::batch::run_batch(request.value())
                        : pfsdoc::cli::report("", request.error());
}

} // namespace

int main(int argument_count, char **arguments)
{
    return pfsdoc::cli::run_program(run, argument_count, arguments);
}

// The program pfsdoc-batch, which `pfsdoc batch` becomes. Test: tests/batch/run/batch_test.cpp.
#include "batch/sandboxed/launcher_process.h"
#include "batch/sandboxed/test_hook.h"
#include "batch/trusted/command_line.h"
#include "batch/trusted/run_batch.h"
#include "cli/parse.h"
#include "cli/program.h"
#include "cli/report.h"

#include <optional>

namespace {

int run(int argument_count, char **arguments)
{
    pfsdoc::batch::BatchCommandLine line;
    pfsdoc::batch::add_test_hook_option(line.app());
    if (const std::optional<int> ended =
            pfsdoc::cli::parse(line.app(), argument_count, arguments, "see pfsdoc batch --help")) {
        return *ended;
    }
    if (line.verifies()) {
        const auto verification = line.verification();
        return verification.ok() ? pfsdoc::batch::verify_outputs(verification.value())
                                 : pfsdoc::cli::report("", verification.error());
    }
    const pfsdoc::Result<pfsdoc::batch::BatchRequest> request = line.request();
    return request.ok() ? pfsdoc::batch::run_batch(request.value(), pfsdoc::batch::run_launcher)
                        : pfsdoc::cli::report("", request.error());
}

} // namespace

int main(int argument_count, char **arguments)
{
    return pfsdoc::cli::run_program(run, argument_count, arguments);
}

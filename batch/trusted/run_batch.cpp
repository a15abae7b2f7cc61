#include "batch/trusted/run_batch.h"

#include "batch/trusted/batch_run.h"
#include "batch/trusted/interruption.h"
#include "batch/trusted/launcher.h"
#include "batch/wire/sha256.h"
#include "cli/report.h"

#include <string>
#include <utility>

namespace pfsdoc::batch {

namespace {

constexpr int some_failed = 1;

int report_end(const BatchRequest &request, const BatchRun &run, const Status &fault)
{
    if (!request.quiet && !run.sandbox_words().empty()) {
        cli::report_line("sandbox: " + run.sandbox_words());
    }
    const bool has_failures = run.tally().failures() > 0 ||
                              (request.strict && run.tally().count(FileStatus::not_a_document) > 0);
    if (!request.quiet) {
        const std::string where = request.manifest + (fault.ok() ? "" : ".partial");
        cli::report_line(run.tally().words() +
                         (has_failures || !fault.ok() ? "; see " + where : ""));
    }
    if (!fault.ok()) {
        return cli::report("", fault.error());
    }
    return has_failures ? some_failed : 0;
}

} // namespace

// The library behind the digests reads files when it is first used: that comes before the
// processes that cannot. The launcher comes before anything is known that no reader shall know.
int run_batch(const BatchRequest &request, LauncherRole role)
{
    if (const Status misplaced = check_paths(request); !misplaced.ok()) {
        return cli::report("", misplaced.error());
    }
    static_cast<void>(sha256_of(""));
    watch_interruptions();
    Result<Launcher> launcher = Launcher::start(role, {request.worker, request.inputs});
    if (!launcher.ok()) {
        return cli::report("", launcher.error());
    }
    Result<OutputFolder> folder = OutputFolder::open(request.output);
    if (!folder.ok()) {
        return cli::report("", folder.error());
    }
    Result<Manifest> manifest = Manifest::open(request.manifest);
    if (!manifest.ok()) {
        return cli::report("", manifest.error());
    }
    BatchRun run(request, launcher.value(), std::move(folder.value()), std::move(manifest.value()));
    const Status fault = run.run();
    return report_end(request, run, fault);
}

} // namespace pfsdoc::batch

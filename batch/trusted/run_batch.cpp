#include "batch/trusted/run_batch.h"

#include "batch/trusted/batch_run.h"
#include "batch/trusted/interruption.h"
#include "batch/trusted/launcher.h"
#include "batch/trusted/recorded_line.h"
#include "batch/wire/sha256.h"
#include "cli/report.h"

#include <string>
#include <utility>

namespace pfsdoc::batch {

namespace {

constexpr int some_failed = 1;

std::string words_of_others(const BatchRequest &request, uint64_t count)
{
    const bool is_default = request.manifest == request.output + "/" + manifest_name;
    return std::to_string(count) +
           (count == 1 ? " output of earlier runs is" : " outputs of earlier runs are") +
           " still there, not of this one; list with pfsdoc batch --verify " + request.output +
           (is_default ? "" : " --manifest " + request.manifest);
}

// Said where a part is missing that was not declined.
bool is_worth_saying(const BatchRequest &request, const std::string &sandbox_words)
{
    const auto has = [&sandbox_words](const char *part) {
        return sandbox_words.find(part) != std::string::npos;
    };
    const bool is_declined = request.worker.sandbox == SandboxMode::off;
    return !sandbox_words.empty() && !request.quiet &&
           (request.verbose || (!is_declined && !(has("seccomp") && has("Landlock"))));
}

int report_end(const BatchRequest &request, const BatchRun &run, const Status &fault)
{
    if (is_worth_saying(request, run.sandbox_words())) {
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
    if (!request.quiet && run.outputs_of_others() > 0) {
        cli::report_line(words_of_others(request, run.outputs_of_others()));
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
    Result<Manifest> manifest = Manifest::open(request.manifest, output_of_line);
    if (!manifest.ok()) {
        return cli::report("", manifest.error());
    }
    BatchRun run(request, launcher.value(), std::move(folder.value()), std::move(manifest.value()));
    const Status fault = run.run();
    return report_end(request, run, fault);
}

} // namespace pfsdoc::batch

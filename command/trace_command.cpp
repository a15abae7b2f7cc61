// pfsdoc trace: what the filter module reports of a document.
#include "cli/report.h"
#include "command/subcommand.h"
#include "command/write_document.h"
#include "lib/writers/trace.h"

namespace pfsdoc::cli {

namespace {

constexpr const char *footer = R"(Example:
  pfsdoc trace --fold --offsets LETTER)";

Status trace(const Arguments &arguments)
{
    Result<Job> job = begin_job(arguments, arguments.writer.offsets);
    if (!job.ok()) {
        return job.error();
    }
    writers::TraceWriter writer(*job.value().output,
                                {arguments.writer.offsets, arguments.writer.fold});
    return write_events(job.value(), writer, arguments.stop);
}

int run(const Options &options)
{
    const Status failure = trace(options.arguments());
    return failure.ok() ? 0 : report(subject_of(options.arguments().file), failure.error());
}

} // namespace

const Subcommand trace_subcommand = {
    .name = "trace",
    .description = "Write what the module reports, one event a line",
    .footer = footer,
    .command = trace_command,
    .run = run,
};

} // namespace pfsdoc::cli

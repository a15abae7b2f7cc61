// pfsdoc trace: what the filter module reports of a document.
#include "cli/report.h"
#include "command/conversion.h"
#include "command/document_job.h"
#include "command/subcommand.h"

#include <utility>

namespace pfsdoc::cli {

namespace {

constexpr const char *footer = R"(Example:
  pfsdoc trace --fold --offsets LETTER)";

Status trace(const Arguments &arguments)
{
    const ProtectedFiles protected_files({arguments.file});
    Result<Input> input = open_input(arguments.file, arguments);
    if (!input.ok()) {
        return input.error();
    }
    const auto output = make_output(arguments.output, protected_files, arguments);
    if (!output.ok()) {
        return output.error();
    }
    const Conversion conversion = {.format = find_format("trace"),
                                   .options = arguments.writer,
                                   .source_offsets = arguments.writer.offsets,
                                   .in_steps = arguments.stop};
    const Converted converted =
        convert_document(std::move(input.value().source), input.value().module, "", conversion,
                         output.value()->stream());
    return finish(*output.value(), converted.status);
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

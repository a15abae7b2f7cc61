#include "cli/report.h"

#include "cli/program.h"
#include "lib/base/file_output.h"
#include "lib/base/printable.h"

#include <cstdio>
#include <memory>

namespace pfsdoc::cli {

int report(const std::string &file, const Error &error)
{
    std::string line = file;
    line.append(file.empty() ? "" : ": ").append(error.what);
    if (error.offset) {
        line.append(" (at byte ").append(std::to_string(*error.offset)).append(")");
    }
    line.append(error.remedy.empty() ? "" : "; ").append(error.remedy);
    report_line(line);
    return exit_code(error.kind);
}

void report_line(const std::string &line)
{
    // A standard error that is gone leaves nobody to report it to.
    static_cast<void>(std::fprintf(stderr, "pfsdoc: %s\n", base::printable(line).c_str()));
}

int print(std::string_view text)
{
    const auto output = base::FileOutput::create("");
    if (!output.ok()) {
        return report("", output.error());
    }
    output.value()->write(text);
    const Status failure = output.value()->commit();
    end_if_reader_is_gone(*output.value());
    return failure.ok() ? 0 : report("", failure.error());
}

} // namespace pfsdoc::cli

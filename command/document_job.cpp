#include "command/document_job.h"

#include "cli/interruption.h"
#include "cli/program.h"
#include "lib/reading/read_document.h"

#include <utility>

namespace pfsdoc::cli {

std::string subject_of(const std::string &file)
{
    return file.empty() ? "\"\"" : file;
}

bool is_standard_output(const std::string &output)
{
    return output.empty() || output == "-";
}

Result<Input> open_input(const std::string &file, const Arguments &arguments)
{
    Result<std::unique_ptr<ByteSource>> source = open_source(file);
    if (!source.ok()) {
        return source.error();
    }
    const Result<Identity> identity = identify(*source.value());
    if (!identity.ok()) {
        return identity.error();
    }
    const Result<Module> module = find_module(arguments.module, PFSDOC_LIBRARY_DIRECTORY);
    if (!module.ok()) {
        return module.error();
    }
    return Input{std::move(source.value()), identity.value(), module.value()};
}

Result<std::unique_ptr<base::FileOutput>> make_output(const std::string &output,
                                                      const ProtectedFiles &protected_files,
                                                      const Arguments &arguments)
{
    return create_interruptible(output,
                                {.max_bytes = arguments.max_output.value_or(UINT64_MAX),
                                 .keep_existing = arguments.no_clobber,
                                 .guard = [&protected_files](const base::ExistingFile &file) {
                                     return protected_files.check(file);
                                 }});
}

Status finish(base::FileOutput &output, const Status &failure)
{
    Status unwritten;
    if (reading::is_read_to_end(failure)) {
        unwritten = output.commit();
    } else {
        output.flush();
        unwritten = output.failure();
    }
    end_if_reader_is_gone(output);
    return unwritten.ok() ? failure : unwritten;
}

} // namespace pfsdoc::cli

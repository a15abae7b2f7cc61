// What every command that reads one document begins and ends with: the document recognised and
// the module found, then the output made, and at last committed. Test:
// tests/command/output_command_test.cpp.
#pragma once

#include "cli/arguments.h"
#include "command/protected_files.h"
#include "lib/base/file_output.h"
#include "pfsdoc/identify.h"
#include "pfsdoc/module.h"

#include <memory>
#include <string>

namespace pfsdoc::cli {

// A document that was recognised, and what to read it with.
struct Input {
    std::unique_ptr<ByteSource> source;
    Identity identity;
    Module module;
};

Result<Input> open_input(const std::string &file, const Arguments &arguments);

// To be made last: nothing that is wrong with the document may touch it. Empty is standard output.
Result<std::unique_ptr<base::FileOutput>> make_output(const std::string &output,
                                                      const ProtectedFiles &protected_files,
                                                      const Arguments &arguments);

// Commits the output if all went well, or as well as it can with a document that is not whole.
// What has gone to standard output before any other error is out; a named file is not made. Ends
// the program where nobody reads the output any more.
Status finish(base::FileOutput &output, const Status &failure);

bool is_standard_output(const std::string &output);

// A file as a message names it.
std::string subject_of(const std::string &file);

} // namespace pfsdoc::cli

// What every command that reads one document begins with: the document recognised, the module
// found, the output made. Test: tests/host/command_test.cpp.
#pragma once

#include "commands.h"
#include "file_output.h"
#include "identify.h"
#include "module.h"

#include <memory>
#include <string>

namespace pfsdoc {

// A document that was recognised, and where its output goes.
struct Job {
    std::unique_ptr<ByteSource> source;
    Identity identity;
    Module module;
    std::unique_ptr<FileOutput> output;
};

// The output is made last: nothing that is wrong with the document may touch it.
Result<Job> begin(const DocumentRequest &request);

// A file as a message names it.
std::string subject_of(const std::string &file);

} // namespace pfsdoc

// Reads one open document into one open output. Everything that parses a document's bytes for
// convert, text and trace is behind this; it opens no file by name and commits nothing, so it can
// run in a process that may do neither. Test: tests/command/command_test.cpp.
#pragma once

#include "lib/base/descriptor_output.h"
#include "pfsdoc/byte_source.h"
#include "pfsdoc/error.h"
#include "pfsdoc/module.h"
#include "pfsdoc/writer.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace pfsdoc::cli {

// What is wanted of a document. The format and the options' code page outlive it.
struct Conversion {
    const Format *format = nullptr;
    WriterOptions options;
    bool source_offsets = false;
    bool in_steps = false; // for formats of events: stops at every paragraph, and resumes
};

struct Converted {
    Status status; // where the output failed, as it says without its name
    std::vector<LossEntry> losses;
    std::optional<AfterEnd> after_end; // not for formats of events
};

// Goes on for as long as the output takes what it gets: what is not wanted need not be read.
Converted convert_document(std::unique_ptr<ByteSource> source, const Module &module,
                           const std::string &title, const Conversion &conversion,
                           base::DescriptorOutput &output);

} // namespace pfsdoc::cli

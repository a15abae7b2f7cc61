// Reads a document into a writer, for as long as the output takes what it gets: what is not
// wanted need not be read. Test: tests/command/command_test.cpp.
#pragma once

#include "command/document_job.h"
#include "pfsdoc/document.h"
#include "pfsdoc/writer.h"

namespace pfsdoc::cli {

// A document to be read, and where its output goes.
struct Job {
    Document document;
    std::unique_ptr<base::FileOutput> output;
};

// The output is made last: nothing that is wrong with the document may touch it.
Result<Job> begin_job(const Arguments &arguments, bool source_offsets);

Status write_blocks(Job &job, Writer &writer);
// In steps: stopping at every paragraph and going on from a saved state.
Status write_events(Job &job, EventWriter &writer, bool in_steps);

} // namespace pfsdoc::cli

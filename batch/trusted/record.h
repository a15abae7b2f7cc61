// A file's line in the manifest: one JSON object, and how it is read again by a later run.
// Nothing in it depends on when or how fast the run was, so that the same files give the same
// bytes. Test: tests/batch/trusted/record_test.cpp.
#pragma once

#include "batch/wire/outcome.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace pfsdoc::batch {

// What a line says of its file beside the outcome.
struct RecordedFile {
    std::string name;
    std::string source; // where it was found: any bytes
    uint64_t size = 0;
    std::string output; // its name in the output folder, where there is one
};

// What was asked for, the same in all lines of a run: lines of a run that was asked for
// something else are of no use to this one.
struct RecordedRequest {
    std::string format;
    std::string extension; // of the outputs, without the dot
    std::string options;   // as the command line has them: "--charset 850 --wrap 72"
    std::string module;    // as it was named; empty for the built-in one
};

// With a line end.
std::string record_line(const RecordedFile &file, const RecordedRequest &request,
                        const Outcome &outcome);

// What an earlier run's line promises.
struct EarlierRecord {
    FileStatus status;
    Digest input;
    std::string output; // empty where there is none
    uint64_t output_size = 0;
    Digest output_digest{};
};

// Nothing where the line is no line of a manifest, is of another file or request, or has an
// outcome that may be another one now.
std::optional<EarlierRecord> usable_record(std::string_view line, const RecordedFile &file,
                                           const RecordedRequest &request);

} // namespace pfsdoc::batch

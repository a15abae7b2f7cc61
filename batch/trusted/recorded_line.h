// What a line of a manifest says of its output, read with the care that a file from outside
// needs: it may have been edited. Test: tests/batch/trusted/recorded_line_test.cpp.
#pragma once

#include "batch/trusted/pending_output.h"

#include <nlohmann/json_fwd.hpp>

#include <optional>
#include <string>
#include <string_view>

namespace pfsdoc::batch {

// Throws what the library throws where the line is not JSON, or nested more deeply than a
// manifest's lines are.
nlohmann::json parsed_line(std::string_view line);

struct RecordedOutput {
    std::string name; // in the output folder; safe to be opened there
    OutputContent content;
};

// Of a line's members; nothing where it has none. Throws as parsed_line does.
std::optional<RecordedOutput> recorded_output(const nlohmann::json &members);

struct RecordedLine {
    std::string name;   // of the file that was read
    std::string status; // as manifests have it
    std::optional<RecordedOutput> output;
    // Where its output is or would be.
    std::string output_name;
};

// Nothing where it is no line of a manifest: members are missing, or their values are none that
// are ever written.
std::optional<RecordedLine> recorded_line(std::string_view line);

// The output that the line is about, whether there is one or not; empty where it is no line of
// a manifest.
std::string output_of_line(std::string_view line);

} // namespace pfsdoc::batch

// Whether an output folder still is as its manifest says. Reads outputs, but only to sum them up.
// Test: tests/batch/run/verify_test.cpp.
#pragma once

#include <string>

namespace pfsdoc::batch {

struct VerificationRequest {
    std::string output;   // a folder
    std::string manifest; // a file
    bool quiet = false;
};

// Writes a line to standard output for each difference; the exit code.
int verify_outputs(const VerificationRequest &request);

} // namespace pfsdoc::batch

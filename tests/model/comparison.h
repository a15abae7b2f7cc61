// Reads one document with the module and with the model, in step, and reports where they differ:
// in an output call, in the position or the state that a host could save during the call, or in
// those after a read.
#pragma once

#include "tests/model/answers.h"
#include "tests/model/model.h"

#include <cstdint>
#include <optional>
#include <string>

namespace tests::model {

// How a document is read. Everything random follows from the seed.
struct Plan {
    Answers::To stop_at = Answers::To::none;
    uint32_t most_per_read = UINT32_MAX; // bytes that one read of the file delivers
    uint32_t resume_percent = 0;         // of stops: another instance resumes from a saved point
    uint32_t foreign_percent = 0;        // of stops: reading resumes with a state that nobody saved
    uint32_t reads_after_end = 0;
    uint64_t seed = 0;
};
std::string text_of(const Plan &plan);

struct Difference {
    std::string what;
    std::size_t call = 0; // of the read in question: where they first differ
    Events expected;      // what the read in question reported: the model's
    Events recorded;      // and the module's
};
// What differs, and the calls before and after the first that does.
std::string text_of(const Difference &difference);

// With two documents the module is given one and the model the other.
std::optional<Difference> compare(const std::string &document, const Plan &plan);
std::optional<Difference> compare(const std::string &module_document,
                                  const std::string &model_document, const Plan &plan);

// A smaller document that still shows a difference, if one is found in a few thousand steps.
std::string reduced(const std::string &document, const Plan &plan);

} // namespace tests::model

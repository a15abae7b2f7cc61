// Generated documents one after the other, each read by module and model in two ways.
#pragma once

#include "tests/model/comparison.h"
#include "tests/model/kinds.h"

#include <cstdint>
#include <optional>
#include <string>

namespace tests::model {

struct Trial {
    std::string document;
    Plan plain;  // read in one call, or stopping at all paragraph ends
    Plan varied; // everything else that a host may do
};

// The document and the plans that belong to a number.
Trial trial_of(Kind kind, uint64_t number);

// Reads the document of a number both ways. If model and module differ, returns what is needed to
// locate and to reproduce it.
std::optional<std::string> failure_of(Kind kind, uint64_t number);

} // namespace tests::model

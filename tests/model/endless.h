// Pieces so long that 16-bit counters wrap around.
#pragma once

#include "tests/model/kinds.h"
#include "tests/model/random.h"

#include <string>

namespace tests::model {

// Inserts one into a body, mostly at the start of a line.
void add_endless_piece(Kind kind, std::string &body, Random &random);

} // namespace tests::model

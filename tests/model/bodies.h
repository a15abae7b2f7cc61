// The text of generated documents: what people write, and what only an attacker would.
#pragma once

#include "tests/model/kinds.h"
#include "tests/model/random.h"

#include <string>

namespace tests::model {

std::string random_body(Kind kind, Random &random);

// A margin record, right or wrong, with the mark that introduces it.
std::string random_margin_record(Random &random);

} // namespace tests::model

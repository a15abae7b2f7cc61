// Whole generated documents: a header of the kind, a body, and in some of them damage.
#pragma once

#include "tests/model/kinds.h"
#include "tests/model/random.h"

#include <string>

namespace tests::model {

std::string random_document(Kind kind, Random &random);

} // namespace tests::model

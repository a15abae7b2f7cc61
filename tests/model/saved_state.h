// The 328 bytes that the module saves, as fields. The tests for foreign states need their
// offsets; hosts do not.
#pragma once

#include "tests/model/model.h"

#include <array>
#include <cstdint>
#include <string>

namespace tests::model {

using SavedBytes = std::array<uint8_t, VW_SAVED_STATE_SIZE>;

SavedState fields_of(const SavedBytes &bytes);

// The meaningful differences between the model's fields and the module's, empty if there are none.
// Tab slots after the terminator mean nothing, and neither do positions past the end.
std::string difference_of(const SavedState &model, const SavedState &module_state,
                          uint32_t document_size);

} // namespace tests::model

// Looks through what follows a document's end mark: once, in pieces, to the end of the file.
// Test: tests/lib/reading/after_end_test.cpp.
#pragma once

#include "pfsdoc/after_end.h"
#include "pfsdoc/byte_source.h"
#include "pfsdoc/error.h"

#include <cstdint>
#include <optional>

namespace pfsdoc::reading {

// `end` is the offset behind the end mark. Nothing where only padding follows. Fails where the
// source cannot be read.
Result<std::optional<AfterEnd>> find_after_end(ByteSource &source, uint32_t end);

} // namespace pfsdoc::reading

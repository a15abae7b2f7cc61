// Explaining what stands before a document's text: the fixed header of each family, by a table
// of its fields, and in the Write family what lies between the header and the text.
// Tests: tests/lib/explain/header_test.cpp, golden_test.cpp.
#pragma once

#include "lib/explain/span_builder.h"
#include "lib/reading/kind_tables.h"

#include <cstdint>

namespace pfsdoc::explaining {

// Claims everything up to `body`, where the module found the text to begin.
void explain_header(SpanBuilder &builder, DocumentKind kind, uint32_t body);

} // namespace pfsdoc::explaining

// Records in Write-family documents: 0x07, the record's length with these two bytes, its type
// and what belongs to that. Test: tests/lib/explain/partition_test.cpp, golden_test.cpp.
#pragma once

#include "lib/explain/span_builder.h"

namespace pfsdoc::explaining {

// Claims the record whose 0x07 comes next.
void claim_margin_record(SpanBuilder &builder);

} // namespace pfsdoc::explaining

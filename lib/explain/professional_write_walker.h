// Explaining the text of Professional Write. Each line begins with a type byte, which is also
// what ends the line before it; so the type byte's span holds how that line ended.
//
//   0x00  goes on in the next line       0x01  ends its paragraph, single spacing
//   0x02  goes on, may hide text         0x03  ends its paragraph, double spacing
//
// A second 0x02, or a 0x03, within a line that 0x02 began hides the rest of the line.
// 0x07 begins a record, 0x0C is passed over. Tests: tests/lib/explain/partition_test.cpp.
#pragma once

#include "lib/explain/body_walker.h"

#include <memory>

namespace pfsdoc::explaining {

std::unique_ptr<BodyWalker> make_professional_write_walker(SpanBuilder &builder);

} // namespace pfsdoc::explaining

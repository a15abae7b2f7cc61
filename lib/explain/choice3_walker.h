// Explaining the text of First Choice 3. Each line is a chain of header bytes, each with bit
// 0x40 followed by another, then text, then 0x0D. The first header byte says what the line is:
//
//   0x10 clear, 0x08 and 0x04 set   a ruler in characters
//   0x10 clear, 0x08 set            a page break
//   else                            text; it ends its paragraph if the chain is two bytes
//                                   long and the second has bit 0x01
//
// Tests: tests/lib/explain/partition_test.cpp, golden_test.cpp.
#pragma once

#include "lib/explain/body_walker.h"

#include <memory>

namespace pfsdoc::explaining {

std::unique_ptr<BodyWalker> make_choice3_walker(SpanBuilder &builder);

} // namespace pfsdoc::explaining

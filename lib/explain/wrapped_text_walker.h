// Explaining the text of PFS: WRITE, IBM Writing Assistant and First Choice 2.0, which store
// all line ends alike: a line was wrapped if the first word of the next one would have passed
// the right margin.
//
//                        line ends     characters with attribute bytes
//   PFS: WRITE           0x0D          0x80-0xFF, one
//   Writing Assistant    0x0D          0xC0-0xFF, one; all characters are translated
//   First Choice 2.0     0x0C, 0x0D    0x80-0xFF, one or two
//
// Tests: tests/lib/explain/line_end_test.cpp, partition_test.cpp.
#pragma once

#include "lib/explain/body_walker.h"

#include <memory>

namespace pfsdoc::explaining {

std::unique_ptr<BodyWalker> make_wrapped_text_walker(SpanBuilder &builder, ByteSource &source,
                                                     const BodyStart &start);

} // namespace pfsdoc::explaining

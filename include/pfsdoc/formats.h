// The list of output formats; writer.h describes one. Test:
// tests/lib/writers/every_format_test.cpp.
#pragma once

#include "pfsdoc/export.h"

#include <span>
#include <string_view>

namespace pfsdoc {

struct Format; // writer.h

// All formats, in the order in which help texts list them.
PFSDOC_API std::span<const Format *const> formats();
// Null for an unknown name.
PFSDOC_API const Format *find_format(std::string_view name);

} // namespace pfsdoc

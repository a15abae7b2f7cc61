// What the extension of a file's name says about a document in it.
// Test: tests/lib/reading/extensions_test.cpp.
#pragma once

#include "pfsdoc/export.h"
#include "pfsdoc/identify.h"

#include <string>
#include <string_view>

namespace pfsdoc {

// A note if the name's extension, in either case, belongs to another well-known format or to
// another of these kinds; empty if it fits or is unknown. Many of these documents have no
// extension, or one that their author made up.
PFSDOC_API std::string extension_mismatch(std::string_view file_name, DocumentKind kind);

} // namespace pfsdoc

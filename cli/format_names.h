// Output formats by the names that people give them. Test: tests/cli/format_names_test.cpp.
#pragma once

#include "pfsdoc/error.h"
#include "pfsdoc/writer.h"

#include <string>
#include <string_view>

namespace pfsdoc::cli {

// A format by its name or its extension, or an extension that others have for it, in any case:
// text, txt, TEXT, htm. The error for any other says how to get there, where there is a way.
Result<const Format *> format_named(std::string_view name);

// The format that a file's name asks for by its ending, null where it has none of the above.
const Format *format_of_file(std::string_view file);

} // namespace pfsdoc::cli

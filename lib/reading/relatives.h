// Files of the programs whose documents these are that are no documents: databases, graphs and
// others, each somebody's work too. Test: tests/lib/reading/identify_test.cpp.
#pragma once

#include "pfsdoc/byte_source.h"

#include <array>
#include <string_view>

namespace pfsdoc::reading {

// Known by bytes where First Choice documents have theirs.
struct Relative {
    std::string_view magic;
    std::string_view name;
};
inline constexpr std::array<Relative, 3> relatives = {{
    {"GERBILDB", "a First Choice database"},
    {"GERBILCLIP", "a First Choice clipboard"},
    {"RABBITGRAPH", "a First Choice graph"},
}};

// What a file is that is no document, "a First Choice database"; empty where nothing shows that it
// is of these programs. What is marked as PFS: WRITE is, whatever its variant.
std::string_view relative_of_documents(ByteSource &source);

} // namespace pfsdoc::reading

// One document of each kind with all its features, for tests that must hold for any document.
#pragma once

#include <ostream>
#include <string>
#include <vector>

namespace tests {

struct NamedDocument {
    std::string name;
    std::string bytes;
};

// For the list of tests, which would show the structure's bytes.
inline void PrintTo(const NamedDocument &document, std::ostream *stream)
{
    *stream << document.name;
}

const std::vector<NamedDocument> &rich_documents();

} // namespace tests

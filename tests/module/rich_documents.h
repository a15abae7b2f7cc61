// One document of each kind that uses what its kind can do, for tests that must hold of any
// document.
#pragma once

#include <ostream>
#include <string>
#include <vector>

namespace tests {

struct NamedDocument {
    std::string name;
    std::string bytes;
};

// For the list of tests, which would show the record's bytes.
inline void PrintTo(const NamedDocument &document, std::ostream *stream)
{
    *stream << document.name;
}

const std::vector<NamedDocument> &rich_documents();

} // namespace tests

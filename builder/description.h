// From a description, a text that reads much like the letter it describes, to a document.
// docs/descriptions.md describes the language.
#pragma once

#include "builder/document.h"

#include <functional>

namespace pfs_builder {

// A file that a description includes: the name by which faults call it, and its text.
struct Included {
    std::string name;
    std::string text;
};

// Finds an included file by the path in the description; none if it cannot be read.
using IncludeReader = std::function<std::optional<Included>(const std::string &path)>;

struct Parsed {
    Document document;
    std::optional<Fault> fault; // set: the document is not to be used
};

Parsed parse_description(const std::string &text, const std::string &file_name,
                         const IncludeReader &include);

} // namespace pfs_builder

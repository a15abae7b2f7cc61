// From a description, a text that reads like the letter that it describes, to a document.
// docs/descriptions.md describes the language.
#pragma once

#include "builder/document.h"

#include <functional>

namespace pfs_builder {

// A file that a description includes: its name in fault messages, and its text.
struct Included {
    std::string name;
    std::string text;
};

// Finds an included file by the path in the description; none if it cannot be read.
using IncludeReader = std::function<std::optional<Included>(const std::string &path)>;

struct Parsed {
    Document document;
    std::optional<Fault> fault; // set: the document must not be used
};

Parsed parse_description(const std::string &text, const std::string &file_name,
                         const IncludeReader &include);

} // namespace pfs_builder

// Shortcuts from a description to what a test checks.
#pragma once

#include "builder/build.h"
#include "builder/description.h"

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace builder_tests {

// The files that `@include` finds, by path.
using Includes = std::map<std::string, std::string>;

// A file as std::string; "" and a failed test if it cannot be read.
std::string read_file(const std::string &path);

// The document of a description named "letter"; a fault fails the test.
pfs_builder::Document parsed(const std::string &description, const Includes &includes = {});

// The whole file. A fault fails the test.
std::string file_of(const std::string &description);

// What follows the header: in the Write family all after the form feed, including records.
std::string body_of(const std::string &description);
std::string body_of(pfs_builder::Kind kind, const std::string &file);

// The fault as pfsbuild reports it, "" if there is none.
std::string fault_of(const std::string &description, const Includes &includes = {});

// Whether `actual` equals the bytes in the notation of tests/support/notation.h. The message
// shows both in that notation.
testing::AssertionResult holds(const std::string &actual, std::string_view notation);

// The bytes of a file from `offset` on.
std::string at(const std::string &file, std::size_t offset, std::size_t count);

// The kinds with the Write family's header layout.
bool is_write_family(pfs_builder::Kind kind);

// What should be reported of a document's body: each visible character with its style, each
// paragraph end as '\n'. Commands and indents are not part of it.
struct Heard {
    uint8_t character;
    pfs_builder::Style style;
    bool operator==(const Heard &) const = default;
};
std::vector<Heard> said_by(const pfs_builder::Document &document);

// What the module reports of the file, in the same form.
std::vector<Heard> heard_from(const std::string &file);

// Whether both are equal. Styles of spaces are ignored: where lines are joined, and in kinds that
// store no styled space, a space has the style of what came before, or none.
testing::AssertionResult same(const std::vector<Heard> &heard, const std::vector<Heard> &said);

} // namespace builder_tests

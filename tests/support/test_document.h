// The files of tests/documents: each shows one property of a format, in prose, in bytes and in the
// resulting trace.
//
//   What the document shows.
//
//   Prose, as long as it likes.
//
//   == document
//   write 2, margins 1 65          a header of the Write family, by its format type;
//                                  or: choice 3, margins 1 61 (by its generation byte)
//   header 1 'Top'                 a header or footer line, as bytes
//   at 822: 02 00                  bytes at an offset of the file
//   body:
//   0D '  Hello' 0D   # comment    the text, in the notation for bytes; to the next section
//   == trace
//   section 0                      to the end of the file: a folded trace
//
// Margins are written as they are stored, counted from 1.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace tests {

struct TestDocument {
    std::string name;  // of the file, without extension
    std::string bytes; // the document itself
    std::string trace;
};

// Throws std::invalid_argument, with the file and the line, if a file does not have this form.
TestDocument read_test_document(const std::filesystem::path &path);

// All .txt files of a directory, by name.
std::vector<std::filesystem::path> test_document_paths(const std::filesystem::path &directory);

} // namespace tests

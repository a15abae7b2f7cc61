// The committed documents that every test of this directory is run over.
#pragma once

#include <filesystem>
#include <ostream>
#include <string>
#include <vector>

namespace tests {

struct DocumentFile {
    std::string name; // of the test case: letters, digits and underscores
    std::filesystem::path path;

    std::string bytes() const;
};
std::ostream &operator<<(std::ostream &stream, const DocumentFile &file);

// All documents below samples/, in order. Never empty: without them the tests fail.
std::vector<DocumentFile> sample_files();

std::string file_bytes(const std::filesystem::path &path);

} // namespace tests

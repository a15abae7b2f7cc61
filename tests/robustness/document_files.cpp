#include "tests/robustness/document_files.h"

#include <algorithm>
#include <cctype>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace tests {
namespace {

namespace fs = std::filesystem;

std::string case_name(const fs::path &path)
{
    std::string name = path.parent_path().filename().string() + "_" + path.stem().string();
    std::replace_if(
        name.begin(), name.end(), [](unsigned char c) { return std::isalnum(c) == 0; }, '_');
    return name;
}

} // namespace

std::string file_bytes(const fs::path &path)
{
    std::ifstream stream(path, std::ios::binary);
    if (!stream) {
        throw std::runtime_error("cannot read " + path.string());
    }
    return {std::istreambuf_iterator<char>(stream), {}};
}

std::string DocumentFile::bytes() const
{
    return file_bytes(path);
}

std::ostream &operator<<(std::ostream &stream, const DocumentFile &file)
{
    return stream << file.name;
}

std::vector<DocumentFile> sample_files()
{
    std::vector<DocumentFile> files;
    for (const auto &entry : fs::recursive_directory_iterator(SAMPLES_DIRECTORY)) {
        if (entry.path().extension() == ".doc") {
            files.push_back({case_name(entry.path()), entry.path()});
        }
    }
    if (files.empty()) {
        throw std::runtime_error("no documents below " SAMPLES_DIRECTORY);
    }
    std::sort(files.begin(), files.end(),
              [](const auto &a, const auto &b) { return a.path < b.path; });
    return files;
}

} // namespace tests

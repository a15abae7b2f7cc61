// A package taken apart again, with minizip's own reader: for the tests of OpenDocument.
#pragma once

#include <gtest/gtest.h>

#include <minizip/unzip.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <unistd.h>
#include <vector>

namespace tests {

struct Entry {
    std::string name;
    std::string content;
    bool operator==(const Entry &) const = default;
};

inline Entry current_entry(unzFile archive)
{
    unz_file_info info{};
    char name[64] = {};
    EXPECT_EQ(unzGetCurrentFileInfo(archive, &info, name, sizeof name, nullptr, 0, nullptr, 0),
              UNZ_OK);
    Entry entry{name, std::string(info.uncompressed_size, '\0')};
    EXPECT_EQ(unzOpenCurrentFile(archive), UNZ_OK);
    EXPECT_EQ(unzReadCurrentFile(archive, entry.content.data(),
                                 static_cast<unsigned>(entry.content.size())),
              static_cast<int>(entry.content.size()));
    EXPECT_EQ(unzCloseCurrentFile(archive), UNZ_OK); // which compares the checksum
    return entry;
}

inline std::vector<Entry> unpacked(const std::string &package)
{
    std::string path = (std::filesystem::temp_directory_path() / "package-XXXXXX").string();
    const int descriptor = ::mkstemp(path.data());
    EXPECT_GE(descriptor, 0);
    ::close(descriptor);
    std::ofstream(path, std::ios::binary) << package;
    std::vector<Entry> entries;
    const unzFile archive = unzOpen(path.c_str());
    for (int more = unzGoToFirstFile(archive); more == UNZ_OK; more = unzGoToNextFile(archive)) {
        entries.push_back(current_entry(archive));
    }
    unzClose(archive);
    std::filesystem::remove(path);
    return entries;
}

} // namespace tests

// What the directory at the end of a zip archive lists a second time: entries that begin where
// another one does. libarchive leaves all but one of them out without a word. Test:
// tests/batch/trusted/archive_inputs_test.cpp.
#pragma once

#include <string_view>
#include <vector>

namespace pfsdoc::batch {

// Their names, as they stand in the archive, in the directory's order; none for other archives.
std::vector<std::string_view> repeated_entries(std::string_view archive);

} // namespace pfsdoc::batch

// The bytes of a paragraph that show nothing. DOS shows 0x00 as a blank, as 0x20; a tab is
// told from both where columns count. Tests: tests/lib/writers/text_writer_test.cpp,
// tests/lib/page/page_geometry_test.cpp, paragraph_words_test.cpp.
#pragma once

#include <string_view>

namespace pfsdoc::page {

inline constexpr char tab_byte = '\t';
inline constexpr char zero_blank = '\0';
inline constexpr std::string_view blank_bytes{" \0", 2};
inline constexpr std::string_view gap_bytes{" \0\t", 3}; // what parts words

} // namespace pfsdoc::page

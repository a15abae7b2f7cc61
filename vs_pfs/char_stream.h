// Buffered bytes over the host's block file: what the filter's own files share beside the
// operations that vs_pfs.h declares. Tests: tests/module/char_stream_test.cpp.
#pragma once

#include "vs_pfs.h"

namespace vs_pfs {

// What VwCharGet delivers when there is no byte left.
inline constexpr int32_t end_of_data = -1;

inline constexpr int32_t seek_absolute = 0;
inline constexpr int32_t seek_relative = 1;
inline constexpr int32_t seek_from_end = 2;

} // namespace vs_pfs

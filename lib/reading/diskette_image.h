// Whether a file is the image of a diskette with the file system of DOS: one that a person would
// not want to be replaced. Test: tests/lib/reading/diskette_image_test.cpp.
#pragma once

#include "pfsdoc/byte_source.h"

namespace pfsdoc::reading {

// Either its first sector describes such a file system (the jump, sizes that are powers of two,
// at least one allocation table, a media byte), or, as on the oldest diskettes, nothing does:
// then the file has a diskette's exact size, and its allocation table begins with a media byte.
bool is_diskette_image(ByteSource &source);

} // namespace pfsdoc::reading

// Where the texts of PfsInit stand. The table itself is public: see vs_pfs.h.
#pragma once

#include "vs_pfs.h"

namespace vs_pfs {

inline constexpr int init_magic_size = 9; // "GERBILDOC" without its NUL
inline constexpr int init_keywords_offset = 10;
inline constexpr int init_keyword_size = 9;
inline constexpr int init_keywords = 18;
inline constexpr int init_signatures_offset =
    init_keywords_offset + init_keywords * init_keyword_size;
inline constexpr int init_signature_size = 7;
inline constexpr int init_signatures = 5;

} // namespace vs_pfs

// Where the texts of PfsInit stand. The table itself is public: see vs_pfs.h.
#pragma once

#include "vs_pfs.h"

#include <cstddef>

namespace vs_pfs {

inline constexpr int init_magic_size = 9; // "GERBILDOC" without its NUL
inline constexpr int init_keywords = 18;
inline constexpr int init_signatures = 5;

inline constexpr std::ptrdiff_t init_keywords_offset = 10;
inline constexpr std::ptrdiff_t init_keyword_size = 9;
inline constexpr std::ptrdiff_t init_signature_size = 7;
inline constexpr std::ptrdiff_t init_signatures_offset =
    init_keywords_offset + init_keywords * init_keyword_size;

// The texts by their index, from 0; all end in NUL.
inline const char *init_keyword(int index)
{
    return PfsInit + init_keywords_offset + index * init_keyword_size;
}

inline const char *init_signature(int index)
{
    return PfsInit + init_signatures_offset + index * init_signature_size;
}

} // namespace vs_pfs

// Whether a sanitizer watches the memory: its shadow of it is larger than any limit. Test:
// tests/batch/run/canary_test.cpp.
#pragma once

namespace pfsdoc::sandbox {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
inline constexpr bool memory_is_shadowed = true;
#elif !defined(__has_feature)
inline constexpr bool memory_is_shadowed = false;
#elif __has_feature(address_sanitizer) || __has_feature(memory_sanitizer) ||                       \
    __has_feature(thread_sanitizer)
inline constexpr bool memory_is_shadowed = true;
#else
inline constexpr bool memory_is_shadowed = false;
#endif

} // namespace pfsdoc::sandbox

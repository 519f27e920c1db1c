// Internal: is the library built under a sanitizer that watches memory? Its blocks are then all
// allocations of their own, so that one that is lost or used too late is seen, and its frames on
// the native stack are several times as large.
#pragma once

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define IXOMEP_WATCHED_MEMORY 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(memory_sanitizer) || \
    __has_feature(thread_sanitizer) || __has_feature(leak_sanitizer)
#define IXOMEP_WATCHED_MEMORY 1
#endif
#endif
#if !defined(IXOMEP_WATCHED_MEMORY)
#define IXOMEP_WATCHED_MEMORY 0
#endif

namespace ixomep {
inline constexpr bool kWatchedMemory = IXOMEP_WATCHED_MEMORY != 0;
}  // namespace ixomep

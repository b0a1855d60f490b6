#pragma once

// Which sanitizer the tests are built with. g++ says it with a macro, clang with a feature.
#if defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define ZEL_SANITIZED
#endif
#if __has_feature(thread_sanitizer)
#define ZEL_THREAD_SANITIZED
#endif
#else
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define ZEL_SANITIZED
#endif
#if defined(__SANITIZE_THREAD__)
#define ZEL_THREAD_SANITIZED
#endif
#endif

namespace zel::test {

#ifdef ZEL_SANITIZED
inline constexpr bool kSanitized = true;
#else
inline constexpr bool kSanitized = false;
#endif
// A sanitizer does, so that a process grows; it finds leaks by itself.
inline constexpr bool kKeepsFreedMemory = kSanitized;

#ifdef ZEL_THREAD_SANITIZED
inline constexpr bool kThreadSanitized = true;
#else
inline constexpr bool kThreadSanitized = false;
#endif

// Built for another processor, whose instructions are imitated while the tests run.
#ifdef ZEL_IMITATED
inline constexpr bool kImitated = true;
#else
inline constexpr bool kImitated = false;
#endif

}  // namespace zel::test

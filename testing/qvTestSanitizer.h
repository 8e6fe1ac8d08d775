// Tells tests that take long whether a sanitizer makes them many times slower.
#pragma once

namespace qvTest {

#if defined(__SANITIZE_THREAD__) || defined(__SANITIZE_ADDRESS__) // as GCC tells
inline constexpr bool isSanitized = true;
#elif !defined(__has_feature)
inline constexpr bool isSanitized = false;
#elif __has_feature(thread_sanitizer) || __has_feature(address_sanitizer) // as Clang tells
inline constexpr bool isSanitized = true;
#else
inline constexpr bool isSanitized = false;
#endif

} // namespace qvTest
